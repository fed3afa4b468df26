#include "core/store/received_mail.h"

#include "core/message/attachment_files.h"
#include "core/message/message_file.h"
#include "core/services/file_subs.h"
#include "core/store/folder_lists.h"
#include "core/store/tag_files.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = "frmMain";
constexpr std::size_t kLongestName = 50;
constexpr std::size_t kShortenedName = 35;

fs::path targetFolder(const AppContext& context, const message::clsMessage& message) {
  if (message.DestFolder.empty()) return context.folders.InboxFolderPath;
  return StoreFolder(context.folders.MessageFolderPath, message.DestFolder);
}

// The inbox path is left as it was; only the root moves to the program's folder.
fs::path madeTargetFolder(AppContext& context, const message::clsMessage& message) {
  fs::path folder = targetFolder(context, message);
  files::MkMissingDir(folder);
  if (files::FolderExists(folder)) return folder;
  const fs::path fallbackRoot = context.installFolder() / "Messages";
  context.prompt.ask("Cannot find mail folder: " + files::TextFromPath(context.folders.MessageFolderPath) +
                         ". Mail will be saved to " + files::TextFromPath(context.installFolder()) + " instead.",
                     Buttons::Ok, "Vonel");
  context.folders.MessageFolderPath = fallbackRoot;
  files::MkMissingDir(fallbackRoot);
  folder = targetFolder(context, message);
  files::MkMissingDir(folder);
  if (!files::FolderExists(folder)) throw AppError(76, "Path not found: " + files::TextFromPath(folder));
  return folder;
}

void saveRequestedAttachments(AppContext& context, const message::clsMessage& message) {
  if (message.AttachmentsFolder.empty()) return;
  const fs::path folder = files::PathFromText(message.AttachmentsFolder);
  if (files::FolderExists(folder)) {
    message::SaveAllAttachmentsNoUserInput(message, folder, &context.log);
  } else {
    context.log.AddAction("Filter calls for save all attachments, but folder " + message.AttachmentsFolder +
                              " does not exist.",
                          "fGetMail_MessageReceived", kModule);
  }
}

}  // namespace

StoredMessage SaveReceivedMessage(AppContext& context, message::clsMessage& message) {
  StoredMessage stored;
  stored.folder = madeTargetFolder(context, message);
  const std::string_view subject = message.Subject;
  const std::string_view name = subject.size() > kLongestName ? subject.substr(0, kShortenedName) : subject;
  stored.file = message::GetUnusedFilename(message.Read, stored.folder, name, ".eml", context.clock);
  files::MkMissingDir(stored.folder);
  message.setFilename(stored.file.string());
  files::WriteTextFile(stored.file, message.RawMessage());
  context.log.AddAction(files::TextFromPath(stored.file) + " saved", "fGetMail_MessageReceived", kModule);
  saveRequestedAttachments(context, message);
  return stored;
}

void AnnounceNewMessage(AppContext& context, const StoredMessage& stored, const message::clsMessage& message,
                        NewMessageSink* mailer) {
  if (mailer != nullptr) {
    mailer->AddNewMessage(stored.file, stored.folder, message);
    return;
  }
  AddToUnreadTag(context.log, stored.folder, 0);
  AddToLastMessageTag(context.log, context.clock, stored.folder, message);
}

}  // namespace vonel::store
