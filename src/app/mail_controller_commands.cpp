// The entry points of the mail cycle: one method a row of the command table.
#include "app/mail_controller.h"

#include "core/settings/accounts.h"

namespace vonel {

void MailController::scanAll() {
  if (checkingMail) return;
  stopMailTimer();
  processMail(autoDelete, false, 0, false, false);
}

void MailController::scanAccount(int account) {
  if (!checkingMail) processMail(false, true, account, false, false);
}

void MailController::stopPass() {
  if (getMail_) getMail_->session().cancelMail();
  windows_.showPassRunning(false);
}

template <typename Start>
void MailController::startOrStop(Start start) {
  if (checkingMail) {
    stopPass();
    return;
  }
  start();
}

void MailController::toolbarScan() {
  startOrStop([this] { processMail(false, false, 0, false, false); });
}

void MailController::toolbarScanAndDelete() {
  startOrStop([this] { processMail(true, false, 0, false, false); });
}

void MailController::toolbarSendReceiveDelete() {
  startOrStop([this] {
    downloadMail(true);
    uploadMail();
  });
}

void MailController::toolbarSendReceive() {
  startOrStop([this] {
    downloadMail(false);
    uploadMail();
  });
}

void MailController::deleteAllFromAccount(int account) {
  const std::string server = ctx_.settings.get(accountKey("SERVER", account), Value("")).text();
  const std::string question = "You're about to erase all mail, good and bad, from server\r\n'" +
                               accountTitle(ctx_.settings, account) + "' (" + server +
                               ")\r\nAre you absolutely certain you want to do this?";
  if (ctx_.prompt.ask(question, Buttons::YesNo, "Vonel") == Answer::Yes) processMail(false, true, account, false, true);
}

void MailController::onKeyF2(bool ctrl) {
  if (!checkingMail) processMail(ctrl, false, 0, true, false);
}

void MailController::onKeyF3() {
  if (!checkingMail) uploadMail();
}

void MailController::onKeyF5(bool ctrl) {
  if (!checkingMail) processMail(ctrl, false, 0, false, false);
}

void MailController::downloadAndSend() {
  downloadMail(false);
  uploadMail();
}

void MailController::downloadOnly() { downloadMail(false); }

void MailController::downloadDeleteAndSend() {
  downloadMail(true);
  uploadMail();
}

void MailController::downloadDeleteAndSendFrom(int account) {
  downloadFromAccount(true, account);
  uploadMail();
}

void MailController::downloadAndDelete() { downloadMail(true); }

void MailController::downloadFrom(int account) { downloadFromAccount(false, account); }

void MailController::sendReceiveDelete() {
  if (!checkingMail) downloadMail(true);
  uploadMail();
}

void MailController::sendReceiveDeleteFrom(int account) {
  if (!checkingMail) processMail(true, true, account, true, false);
  uploadMail();
}

void MailController::scan() {
  if (!checkingMail) processMail(false, false, 0, false, false);
}

void MailController::scanFrom(int account) {
  if (!checkingMail) processMail(false, true, account, false, false);
}

void MailController::scanAndDelete() {
  if (!checkingMail) processMail(true, false, 0, false, false);
}

void MailController::scanAndDeleteFrom(int account) {
  if (!checkingMail) processMail(true, true, account, false, false);
}

}  // namespace vonel
