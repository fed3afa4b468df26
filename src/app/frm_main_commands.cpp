// The entry points of the mail cycle: one method a row of the command table.
#include "app/frm_main.h"

#include "core/settings/accounts.h"

namespace vonel {

void frmMain::mnuScan_Click() {
  if (CheckingMail) return;
  StopMailTimer();
  ProcessMail(AutoDelete, false, 0, false, false);
}

void frmMain::mnuScanAcc_Click(int account) {
  if (!CheckingMail) ProcessMail(false, true, account, false, false);
}

void frmMain::StopPass() {
  if (getMail_) getMail_->session().CancelMail();
  windows_.showPassRunning(false);
}

template <typename Start>
void frmMain::startOrStop(Start start) {
  if (CheckingMail) {
    StopPass();
    return;
  }
  start();
}

void frmMain::ToolbarScan() {
  startOrStop([this] { ProcessMail(false, false, 0, false, false); });
}

void frmMain::ToolbarDelete() {
  startOrStop([this] { ProcessMail(true, false, 0, false, false); });
}

void frmMain::ToolbarSendRcvDel() {
  startOrStop([this] {
    DownloadMail(true);
    UploadMail();
  });
}

void frmMain::ToolbarUpAndDown() {
  startOrStop([this] {
    DownloadMail(false);
    UploadMail();
  });
}

void frmMain::DeleteAllFromAccount(int account) {
  const std::string server = ctx_.Settings.RetrieveSetting(accountKey("SERVER", account), Value("")).text();
  const std::string question = "You're about to erase all mail, good and bad, from server\r\n'" +
                               AccountTitle(ctx_.Settings, account) + "' (" + server +
                               ")\r\nAre you absolutely certain you want to do this?";
  if (ctx_.prompt.ask(question, Buttons::YesNo, "Vonel") == Answer::Yes) ProcessMail(false, true, account, false, true);
}

void frmMain::KeyF2(bool ctrl) {
  if (!CheckingMail) ProcessMail(ctrl, false, 0, true, false);
}

void frmMain::KeyF3() {
  if (!CheckingMail) UploadMail();
}

void frmMain::KeyF5(bool ctrl) {
  if (!CheckingMail) ProcessMail(ctrl, false, 0, false, false);
}

void frmMain::fMailer_DownloadMail() {
  DownloadMail(false);
  UploadMail();
}

void frmMain::fMailer_DownloadMailNoUpload() { DownloadMail(false); }

void frmMain::fMailer_UpDownWithClear() {
  DownloadMail(true);
  UploadMail();
}

void frmMain::fMailer_UpDownWithClearFrom(int account) {
  DownloadFromAccount(true, account);
  UploadMail();
}

void frmMain::fMailer_DLWithClear() { DownloadMail(true); }

void frmMain::fMailer_DLFrom(int account) { DownloadFromAccount(false, account); }

void frmMain::fMailer_SendRcvDel() {
  if (!CheckingMail) DownloadMail(true);
  UploadMail();
}

void frmMain::fMailer_SendRcvDelSpecific(int account) {
  if (!CheckingMail) ProcessMail(true, true, account, true, false);
  UploadMail();
}

void frmMain::fMailer_Scan() {
  if (!CheckingMail) ProcessMail(false, false, 0, false, false);
}

void frmMain::fMailer_ScanSpecific(int account) {
  if (!CheckingMail) ProcessMail(false, true, account, false, false);
}

void frmMain::fMailer_ScanDel() {
  if (!CheckingMail) ProcessMail(true, false, 0, false, false);
}

void frmMain::fMailer_ScanDelSpecific(int account) {
  if (!CheckingMail) ProcessMail(true, true, account, false, false);
}

}  // namespace vonel
