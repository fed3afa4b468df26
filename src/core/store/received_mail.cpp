#include "core/store/received_mail.h"

#include <optional>

#include "core/message/attachment_files.h"
#include "core/message/message_file.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/store/fetched_ids.h"
#include "core/store/folder_lists.h"
#include "core/store/tag_files.h"
#include "core/log/log_places.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kControllerModule;
constexpr std::size_t kLongestName = 50;
constexpr std::size_t kShortenedName = 35;

fs::path targetFolder(const AppContext& context, const message::Message& message) {
  if (message.destFolder.empty()) return context.folders.inboxFolderPath;
  return storeFolder(context.folders.messageFolderPath, message.destFolder);
}

// Only the store root moves to the program's folder: mail without a folder
// of its own still goes to the inbox path.
fs::path madeTargetFolder(AppContext& context, const message::Message& message) {
  fs::path folder = targetFolder(context, message);
  files::ensureFolder(folder);
  if (files::folderExists(folder)) return folder;
  const fs::path fallbackRoot = context.installFolder() / "Messages";
  context.prompt.ask("Cannot find mail folder: " + files::textFromPath(context.folders.messageFolderPath) +
                         ". Mail will be saved to " + files::textFromPath(context.installFolder()) + " instead.",
                     Buttons::Ok, "Vonel");
  context.folders.messageFolderPath = fallbackRoot;
  files::ensureFolder(fallbackRoot);
  folder = targetFolder(context, message);
  files::ensureFolder(folder);
  if (!files::folderExists(folder)) throw AppError(76, "Path not found: " + files::textFromPath(folder));
  return folder;
}

void saveRequestedAttachments(AppContext& context, const message::Message& message) {
  if (message.attachmentsFolder.empty()) return;
  const fs::path folder = files::pathFromText(message.attachmentsFolder);
  if (files::folderExists(folder)) {
    message::saveAllAttachmentsNoUserInput(message, folder, &context.log);
  } else {
    context.log.addAction("Filter calls for save all attachments, but folder " + message.attachmentsFolder +
                              " does not exist.",
                          log_places::kFGetMailMessageReceived, kModule);
  }
}

}  // namespace

std::string_view fileBaseName(std::string_view subject) {
  return subject.size() > kLongestName ? subject.substr(0, kShortenedName) : subject;
}

StoredMessage saveReceivedMessage(AppContext& context, message::Message& message) {
  StoredMessage stored;
  stored.folder = madeTargetFolder(context, message);
  stored.file = message::getUnusedFilename(message.read, stored.folder, fileBaseName(message.subject), ".eml", context.clock);
  files::ensureFolder(stored.folder);
  message.setFilename(stored.file.string());
  std::optional<FetchedIds> fetched;
  if (!message.serverUniqueId.empty()) {
    fetched.emplace(context.folders.dataFolderPath, message.fromAccount, context.writes);
    fetched->beginStoring(message.serverUniqueId, stored.file);
  }
  files::writeTextFile(stored.file, message.arrivedMessage(), context.writes);
  context.log.addAction(files::textFromPath(stored.file) + " saved", log_places::kFGetMailMessageReceived, kModule);
  // The message is kept even when its id can't be: at worst it comes again.
  if (fetched) {
    guardedStep(context.log, log_places::kFGetMailMessageReceived, kModule, [&] { fetched->finishStoring(); });
  }
  saveRequestedAttachments(context, message);
  return stored;
}

void announceNewMessage(AppContext& context, const StoredMessage& stored, const message::Message& message,
                        NewMessageSink* mailer) {
  if (mailer != nullptr) {
    mailer->addNewMessage(stored.file, stored.folder, message);
    return;
  }
  addToUnreadTag(context.log, stored.folder, 0);
  addToLastMessageTag(context.log, context.clock, stored.folder, message);
}

}  // namespace vonel::store
