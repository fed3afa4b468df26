#pragma once
// What becomes of a downloaded message: its file in the folder its verdict
// names (the inbox by default), its attachments saved when a rule asks, and
// the news of it left for the mail window.
#include <filesystem>
#include <string_view>

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

// The start of a stored message's file name: the subject, cut to its first
// 35 characters when it is longer than 50.
std::string_view fileBaseName(std::string_view subject);

// Writes the message whole (through a temporary file) into its folder, made
// when missing, as it came from the server with the store's header lines
// added. A store root that can't be made is replaced for this run by
// "Messages" in the program's folder, after telling the user once. A message
// with the server's unique id has that id recorded for its account once its
// file is on disk. Throws AppError when the message could not be written.
StoredMessage saveReceivedMessage(AppContext& context, message::Message& message);

// Tells the open mail window, or else the folder's tag files, that the message arrived.
void announceNewMessage(AppContext& context, const StoredMessage& stored, const message::Message& message,
                        NewMessageSink* mailer);

}  // namespace vonel::store
