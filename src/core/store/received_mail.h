#pragma once
// What becomes of a downloaded message: its file in the folder its verdict
// names (the inbox by default), its attachments saved when a rule asks, and
// the news of it left for the mail window.
#include <filesystem>

#include "core/message/message.h"
#include "core/context/app_context.h"

namespace vonel::store {

// The mail window, when it is open, takes new mail into its own view and tag files.
class NewMessageSink {
 public:
  virtual ~NewMessageSink() = default;
  virtual void addNewMessage(const std::filesystem::path& file, const std::filesystem::path& folder,
                             const message::Message& message) = 0;
};

struct StoredMessage {
  std::filesystem::path file;
  std::filesystem::path folder;
};

// Writes the message whole (through a temporary file) into its folder, made
// when missing. A store root that can't be made is replaced for this run by
// "Messages" in the program's folder, after telling the user once. Throws
// AppError when the message could not be written.
StoredMessage saveReceivedMessage(AppContext& context, message::Message& message);

// Tells the open mail window, or else the folder's tag files, that the message arrived.
void announceNewMessage(AppContext& context, const StoredMessage& stored, const message::Message& message,
                        NewMessageSink* mailer);

}  // namespace vonel::store
