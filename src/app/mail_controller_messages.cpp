// Whole messages from the server: those a download stores, and single ones
// fetched to be read, viewed as source or saved; and the trace of those
// deleted there from their headers.
#include "app/mail_controller.h"

#include <QProcess>
#include <optional>

#include "app/qtext.h"
#include "core/files/atomic_file.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/message/message_file.h"
#include "core/store/received_mail.h"
#include "core/store/screened_folder.h"

namespace vonel {

// The message is only reported kept once its file is whole on disk, so a
// failed store never lets the session delete it on the server.
bool MailController::onMessageReceived(message::Message& message) {
  std::optional<store::StoredMessage> stored;
  try {
    stored = store::saveReceivedMessage(ctx_, message);
  } catch (...) {
    const AppError error = AppError::from(std::current_exception());
    logFailure(ctx_.log, error, log_places::kFGetMailMessageReceived, kLogModule);
    pop3::Pop3Failure failure(pop3::storeFailure(error.number()), error.description());
    failure.account = message.fromAccount;
    onFailure(failure);
    return false;
  }
  tally_.failures.countStored(message.fromAccount);
  // The session deletes what is kept, as this setting asks.
  if (!message.ignored && ctx_.settings.get("DELETEONRETRIEVE", Value(0)).numberOr(0) == 1) {
    tally_.failures.countDeleted(message.fromAccount, 1);
  }
  if (!message.runThisFile.empty()) runRuleProgram(message, stored->file);
  guardedStep(ctx_.log, log_places::kFGetMailMessageReceived, kLogModule,
              [&] { store::announceNewMessage(ctx_, *stored, message, windows_.openMailer()); });
  windows_.messageStored(message, stored->file);
  return true;
}

// Its header goes to "Screened" and a line to the log before the message is
// deleted on the server; without them it stays there.
bool MailController::onScreenedDelete(message::Message& message) {
  std::optional<std::filesystem::path> kept;
  guardedStep(ctx_.log, log_places::kFGetMailScreenedDelete, kLogModule,
              [&] { kept = store::keepScreenedHeader(ctx_, message); });
  if (!kept) return false;
  logAction("Screened \"" + message.subject + "\" from " + message.from + " on " +
            accountTitle(ctx_.settings, message.fromAccount) + ": deleted on server, " +
            store::screenedVerdict(message) + "; header kept in " + files::textFromPath(*kept));
  return true;
}

// Started directly, never through a shell, with the message file as its one argument.
void MailController::runRuleProgram(const message::Message& message, const std::filesystem::path& file) {
  const QString program = toQString(message.runThisFile);
  const bool started = QProcess::startDetached(program, {QString::fromStdString(file.string())});
  ctx_.log.addAction((started ? "Ran " : "Could not run ") + message.runThisFile + " for " +
                         files::textFromPath(file) + ", as a rule asked",
                     log_places::kFGetMailMessageReceived, kLogModule);
}

void MailController::fetchSpecificMessage(FetchPurpose purpose, int account, int number) {
  if (passRunning_ || !pop3_) return;
  fetchPurpose_ = purpose;
  sessionAccount_ = account;
  pop3_->session().getSpecificMessage(account, number);
}

void MailController::onSpecificMessage(message::Message& message) {
  const FetchPurpose purpose = fetchPurpose_;
  fetchPurpose_ = FetchPurpose::None;
  guardedStep(ctx_.log, log_places::kFGetMailSpecificMessage, kLogModule, [&] {
    switch (purpose) {
      case FetchPurpose::ViewSource: {
        windows_.setStatusText("Viewing source");
        // Left for the viewer to read; removed at the next start.
        const auto file =
            message::getUnusedFilename(message.read, ctx_.folders.messageFolderPath, "temp", ".eml", ctx_.clock);
        files::writeTextFile(file, message.messageText());
        windows_.openFile(file);
        break;
      }
      case FetchPurpose::Read:
        windows_.setStatusText("Viewing email");
        windows_.showMessage(message);
        break;
      case FetchPurpose::Download:
        files::writeTextFile(message::getUnusedFilename(message.read, ctx_.folders.inboxFolderPath, "download",
                                                        ".eml", ctx_.clock),
                             message.messageText());
        break;
      case FetchPurpose::None:
        break;
    }
  });
}

}  // namespace vonel
