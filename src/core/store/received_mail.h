#pragma once
// What becomes of a downloaded message: its file in the folder its verdict
// names (the inbox by default), its attachments saved when a rule asks, and
// the news of it left for the mail window.
#include <filesystem>

#include "core/message/message.h"
#include "core/services/app_context.h"

namespace vonel::store {

// The mail window, when it is open, takes new mail into its own view and tag files.
class NewMessageSink {
 public:
  virtual ~NewMessageSink() = default;
  virtual void AddNewMessage(const std::filesystem::path& file, const std::filesystem::path& folder,
                             const message::clsMessage& message) = 0;
};

struct StoredMessage {
  std::filesystem::path file;
  std::filesystem::path folder;
};

// Writes the message whole (through a temporary file) into its folder, made
// when missing. A store root that can't be made is replaced for this run by
// "Messages" in the program's folder, after telling the user once. Throws
// AppError when the message could not be written.
StoredMessage SaveReceivedMessage(AppContext& context, message::clsMessage& message);

// Tells the open mail window, or else the folder's tag files, that the message arrived.
void AnnounceNewMessage(AppContext& context, const StoredMessage& stored, const message::clsMessage& message,
                        NewMessageSink* mailer);

}  // namespace vonel::store
