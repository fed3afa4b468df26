#pragma once
// The controller: brings the program up in a fixed order, keeps the state of
// the mail cycle, and takes the program down again. Its window is a separate
// class that fills MainWindowPort.
#include <QObject>
#include <QTimer>
#include <array>
#include <filesystem>
#include <string>

#include "app/main_window_port.h"
#include "app/pop3/pop3_connection.h"
#include "app/smtp/frm_send_mail_wrapper_new.h"
#include "core/bayes/bayes_filter.h"
#include "core/message/messages.h"
#include "core/rules/frm_filters.h"
#include "core/services/app_context.h"
#include "core/settings/accounts.h"

namespace vonel {

enum class StartupResult { Started, NoAccount };

// Why a single message is being fetched from the server.
enum class FetchPurpose { None, ViewSource, Read, Download };

class frmMain : public QObject, public pop3::GetMailEvents, private SendMailWrapperEvents {
  Q_OBJECT

 public:
  frmMain(AppContext& context, MainWindowPort& windows, PasswordPrompt& passwords);
  ~frmMain() override;

  StartupResult Startup();
  // False when the user chose to keep the program running.
  bool ExitProg();
  void ReadSettings();

  // The one entry point of a pass over the servers.
  void ProcessMail(bool deleteSpam, bool oneAccount, int account, bool retrieve, bool clear);
  void CheckNextAccount(bool force);
  void DoNextAccount();

  // The commands that start a pass; each is ignored while one runs.
  void DownloadMail(bool deleteSpam);
  void DownloadFromAccount(bool deleteSpam, int account);
  // The commands of the menus, the toolbar, the keys and the mail window.
  // Those that start a pass are ignored while one runs; on the toolbar they
  // stop it instead.
  void mnuScan_Click();
  void mnuScanAcc_Click(int account);
  void ToolbarScan();
  void ToolbarDelete();
  void ToolbarSendRcvDel();
  void ToolbarUpAndDown();
  // Erases all mail of the account on its server, after asking.
  void DeleteAllFromAccount(int account);
  void KeyF2(bool ctrl);
  void KeyF3();
  void KeyF5(bool ctrl);
  void fMailer_DownloadMail();
  void fMailer_DownloadMailNoUpload();
  void fMailer_UpDownWithClear();
  void fMailer_UpDownWithClearFrom(int account);
  void fMailer_DLWithClear();
  void fMailer_DLFrom(int account);
  void fMailer_SendRcvDel();
  void fMailer_SendRcvDelSpecific(int account);
  void fMailer_Scan();
  void fMailer_ScanSpecific(int account);
  void fMailer_ScanDel();
  void fMailer_ScanDelSpecific(int account);
  void fMailer_UploadMail() { UploadMail(); }
  // Cancels the running pass.
  void StopPass();

  // Fetches message `number` of the account for one purpose.
  void FetchSpecificMessage(FetchPurpose purpose, int account, int number);

  // The auto scan: a tick a second, a pass when DELAY ticks have gone by
  // since the end of the last one.
  void SetMailTimerInterval();
  void StartMailTimer();
  void StopMailTimer();
  void DisplayTimeLeft();

  // The tray icon flashes between its two pictures while a pass runs; the
  // tip counts the good messages of the pass.
  void StartIconTimer();
  void StopIconTimer();
  void SwapTrayIcon();
  void ShowTrayError();
  int ScanDelay = 0;
  int ScanTicks = 0;

  // Sets SendingMail and starts sending the outbox.
  void UploadMail();
  // The outbox writer and sender, made at start.
  frmSendMailWrapperNew* SendMailWrapper() { return sendMail_.get(); }

  // The Bayes filter, made and loaded at start.
  bayes::frmBayesFilter* BayesForm() { return bayesForm_.get(); }

  // State of the mail cycle that start-up and shutdown read.
  bool CheckingMail = false;
  bool SendingMail = false;
  bool AutoDelete = false;
  bool SoundOn = false;
  bool RetrieveNext = false;
  double TotalSpamCount = 0;
  double SessionSpamCount = 0;
  int CurrentAccount = -1;
  int LastAccount = 19;
  bool RetrieveMode = false;
  bool ClearMode = false;
  bool DeleteSpamMode = false;
  bool PassedMail = false;
  long MessagesListed = 0;
  long GoodMessages = 0;
  std::array<long, kAccountCount> AccountMessages{};  // messages seen in this pass, by account
  std::array<std::string, kAccountCount> ServerNames;  // the server of each account in this pass
  message::clsMessages Messages;

  QTimer TimerAutoScan;
  QTimer TimerIconFlash;
  QTimer TimerMidnight;
  QTimer TimerDelayedStart;
  QTimer TimerUpdateCheck;

 signals:
  // A pass over the servers has ended, with the text that says how.
  void passEnded(const QString& text);
  // A step of sending the outbox, for display.
  void sendProgress(const QString& text);
  // Sending stopped on an error.
  void sendFailed(const QString& text);
  // SendingMail has gone back to false.
  void sendEnded();
  // Thirty seconds after start: the moment to look for a newer version.
  void updateCheckDue();

 private:
  // What the POP3 session reports.
  void HeaderReceived(message::clsMessage& message) override;
  bool MessageReceived(message::clsMessage& message) override;
  void SpecificMessage(message::clsMessage& message) override;
  void DoingServer(const std::string& title) override;
  void NumberMessagesFound(const std::string& title, long count) override;
  void NoMail(const std::string& title) override;
  void Progress(const std::string& text) override;
  void DeletedSpam(int count) override;
  void POPError(const std::string& title, const std::string& text) override;
  void Cancelled(const std::string& title) override;
  void TimedOut(const std::string& title, int seconds) override;
  void NoMailServer() override;
  void NoConnection() override;
  void Finished(const std::string& title, long count) override;

  void NotifyFinishedGettingMail(const std::string& text);
  void runRuleProgram(const message::clsMessage& message, const std::filesystem::path& file);
  void TimerAutoScan_Timer();
  void TimerMidnight_Timer();
  void TimerDelayedStart_Timer();
  // The toolbar's way: a running pass is stopped, else `start` runs.
  template <typename Start>
  void startOrStop(Start start);

  // What the outbox sender reports.
  void fSendMail_Progress(const std::string& text) override;
  void fSendMail_Failed(const std::string& text) override;
  void fSendmail_NoMailToSend() override;
  void fSendmail_SendingFinished() override;
  void sendingStopped(const std::string& text);

  void stage(std::string_view text);
  void action(std::string_view text);
  void migrateOldPaths();
  void removeUnfinishedDownloads();
  void migrateOldSignature();
  void applyWindowSize();
  std::string trayTip() const;
  void LocalChangeTrayIcon(TrayPicture picture);
  bool outboxHoldsMail() const;

  AppContext& ctx_;
  MainWindowPort& windows_;
  PasswordPrompt& passwords_;
  rules::frmFilters serverFilters_;
  rules::frmFilters localFilters_;
  std::unique_ptr<Pop3Connection> getMail_;
  std::unique_ptr<frmSendMailWrapperNew> sendMail_;
  std::unique_ptr<bayes::frmBayesFilter> bayesForm_;
  FetchPurpose fetchPurpose_ = FetchPurpose::None;
  int dayOfMonth_ = 0;
  bool trayLarge_ = true;
};

}  // namespace vonel
