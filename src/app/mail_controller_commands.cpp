// The commands that start a pass or the upload, one method each for the
// menus, the toolbar, the keys and the mail window.
#include "app/mail_controller.h"

#include "core/settings/accounts.h"

namespace vonel {

void MailController::scanAll() {
  if (passRunning_) return;
  autoScan_.stop();
  startPass({.kind = PassKind::Scan, .deleteSpam = autoDelete_, .account = std::nullopt});
}

void MailController::scan() {
  startPass({.kind = PassKind::Scan, .deleteSpam = false, .account = std::nullopt});
}

void MailController::scanAndDelete() {
  startPass({.kind = PassKind::Scan, .deleteSpam = true, .account = std::nullopt});
}

void MailController::scanFrom(int account) {
  startPass({.kind = PassKind::Scan, .deleteSpam = false, .account = account});
}

void MailController::scanAndDeleteFrom(int account) {
  startPass({.kind = PassKind::Scan, .deleteSpam = true, .account = account});
}

void MailController::downloadOnly() {
  startPass({.kind = PassKind::Download, .deleteSpam = false, .account = std::nullopt});
}

void MailController::downloadAndDelete() {
  startPass({.kind = PassKind::Download, .deleteSpam = true, .account = std::nullopt});
}

void MailController::downloadFrom(int account) {
  startPass({.kind = PassKind::Download, .deleteSpam = false, .account = account});
}

void MailController::downloadAndDeleteFrom(int account) {
  startPass({.kind = PassKind::Download, .deleteSpam = true, .account = account});
}

// The upload starts whether or not a pass could, and runs beside it.
void MailController::downloadAndSend() {
  downloadOnly();
  sendOutbox();
}

void MailController::downloadDeleteAndSend() {
  downloadAndDelete();
  sendOutbox();
}

void MailController::downloadDeleteAndSendFrom(int account) {
  downloadAndDeleteFrom(account);
  sendOutbox();
}

void MailController::startOrStop(void (MailController::*command)()) {
  if (passRunning_) {
    stopPass();
    return;
  }
  (this->*command)();
}

void MailController::toolbarScan() { startOrStop(&MailController::scan); }

void MailController::toolbarScanAndDelete() { startOrStop(&MailController::scanAndDelete); }

void MailController::toolbarSendReceive() { startOrStop(&MailController::downloadAndSend); }

void MailController::toolbarSendReceiveDelete() { startOrStop(&MailController::downloadDeleteAndSend); }

void MailController::deleteAllFromAccount(int account) {
  const std::string server = ctx_.settings.get(accountKey("SERVER", account), Value("")).text();
  const std::string question = "You're about to erase all mail, good and bad, from server\r\n'" +
                               accountTitle(ctx_.settings, account) + "' (" + server +
                               ")\r\nAre you absolutely certain you want to do this?";
  if (ctx_.prompt.ask(question, Buttons::YesNo, "Vonel") == Answer::Yes) {
    startPass({.kind = PassKind::DeleteAll, .deleteSpam = false, .account = account});
  }
}

void MailController::sendOutbox() {
  if (outbox_) outbox_->start();
}

void MailController::sendOutboxIfIdle() {
  if (!passRunning_) sendOutbox();
}

}  // namespace vonel
