#pragma once
// A delivery-failure notice that sends a message back to its sender as if
// the address it came to did not exist, so that the sender's list drops it.
#include <optional>

#include "core/message/message.h"
#include "core/send/message_spooler.h"
#include "core/settings/settings_store.h"

namespace vonel::send {

struct BounceNotice {
  message::Message message;
  std::string sender;  // the failing host's mailer address; the notice's From, name and all
};

// The notice for `original`; none when no address of its sender can be found.
std::optional<BounceNotice> bounceNotice(const SettingsStore& settings, const message::Message& original);

// Builds the notice and puts it in the outbox; false, with nothing spooled,
// when there is no sender to send it to.
bool bounceMessage(const SettingsStore& settings, MessageSpooler& spooler, const message::Message& original);

// What the windows tell after a bounce or when it can't be made.
inline constexpr const char* kBouncedOne =
    "Selected message has been bounced. If you change your mind, delete the outbound message before you do another "
    "'send/receive mail'";
inline constexpr const char* kBouncedSeveral =
    "Selected messages have been bounced. If you change your mind, delete the outbound messages before you do another "
    "'send/receive mail'";
inline constexpr const char* kNoBounceSender = "Couldn't bounce message - can't determine the sender's email.";

}  // namespace vonel::send
