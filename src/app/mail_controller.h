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
#include "app/smtp/outbox_sender.h"
#include "core/bayes/bayes_filter.h"
#include "core/message/message_list.h"
#include "core/rules/rule_engine.h"
#include "core/context/app_context.h"
#include "core/settings/accounts.h"

namespace vonel {

enum class StartupResult { Started, NoAccount };

// Why a single message is being fetched from the server.
enum class FetchPurpose { None, ViewSource, Read, Download };

class MailController : public QObject, public pop3::Pop3Listener, private OutboxListener {
  Q_OBJECT

 public:
  MailController(AppContext& context, MainWindowPort& windows, PasswordPrompt& passwords);
  ~MailController() override;

  StartupResult startup();
  // False when the user chose to keep the program running.
  bool exitProgram();
  void readSettings();

  // The one entry point of a pass over the servers.
  void processMail(bool deleteSpam, bool oneAccount, int account, bool retrieve, bool clear);
  void checkNextAccount(bool force);
  void doNextAccount();

  // The commands that start a pass; each is ignored while one runs.
  void downloadMail(bool deleteSpam);
  void downloadFromAccount(bool deleteSpam, int account);
  // The commands of the menus, the toolbar, the keys and the mail window.
  // Those that start a pass are ignored while one runs; on the toolbar they
  // stop it instead.
  void scanAll();
  void scanAccount(int account);
  void toolbarScan();
  void toolbarScanAndDelete();
  void toolbarSendReceiveDelete();
  void toolbarSendReceive();
  // Erases all mail of the account on its server, after asking.
  void deleteAllFromAccount(int account);
  void onKeyF2(bool ctrl);
  void onKeyF3();
  void onKeyF5(bool ctrl);
  void downloadAndSend();
  void downloadOnly();
  void downloadDeleteAndSend();
  void downloadDeleteAndSendFrom(int account);
  void downloadAndDelete();
  void downloadFrom(int account);
  void sendReceiveDelete();
  void sendReceiveDeleteFrom(int account);
  void scan();
  void scanFrom(int account);
  void scanAndDelete();
  void scanAndDeleteFrom(int account);
  void uploadFromMailer() { uploadMail(); }
  // Cancels the running pass.
  void stopPass();

  // Fetches message `number` of the account for one purpose.
  void fetchSpecificMessage(FetchPurpose purpose, int account, int number);

  // The auto scan: a tick a second, a pass when DELAY ticks have gone by
  // since the end of the last one.
  void setMailTimerInterval();
  void startMailTimer();
  void stopMailTimer();
  void displayTimeLeft();

  // The tray icon flashes between its two pictures while a pass runs; the
  // tip counts the good messages of the pass.
  void startIconTimer();
  void stopIconTimer();
  void swapTrayIcon();
  void showTrayError();
  int scanDelay = 0;
  int scanTicks = 0;

  // Sets sendingMail and starts sending the outbox.
  void uploadMail();
  // The outbox writer and sender, made at start.
  OutboxSender* outboxSender() { return sendMail_.get(); }

  // The Bayes filter, made and loaded at start.
  bayes::BayesFilter* bayesFilter() { return bayesForm_.get(); }

  // State of the mail cycle that start-up and shutdown read.
  bool checkingMail = false;
  bool sendingMail = false;
  bool autoDelete = false;
  bool soundOn = false;
  bool retrieveNext = false;
  double totalSpamCount = 0;
  double sessionSpamCount = 0;
  int currentAccount = -1;
  int lastAccount = 19;
  bool retrieveMode = false;
  bool clearMode = false;
  bool deleteSpamMode = false;
  bool passedMail = false;
  long messagesListed = 0;
  long goodMessages = 0;
  std::array<long, kAccountCount> accountMessages{};  // messages seen in this pass, by account
  std::array<std::string, kAccountCount> serverNames;  // the server of each account in this pass
  message::MessageList messages;

  QTimer autoScanTimer_;
  QTimer iconFlashTimer_;
  QTimer midnightTimer_;
  QTimer delayedStartTimer_;
  QTimer updateCheckTimer_;

 signals:
  // A pass over the servers has ended, with the text that says how.
  void passEnded(const QString& text);
  // A step of sending the outbox, for display.
  void sendProgress(const QString& text);
  // Sending stopped on an error.
  void sendFailed(const QString& text);
  // sendingMail has gone back to false.
  void sendEnded();
  // Thirty seconds after start: the moment to look for a newer version.
  void updateCheckDue();

 private:
  // What the POP3 session reports.
  void onHeaderReceived(message::Message& message) override;
  bool onMessageReceived(message::Message& message) override;
  void onSpecificMessage(message::Message& message) override;
  void onDoingServer(const std::string& title) override;
  void onNumberMessagesFound(const std::string& title, long count) override;
  void onNoMail(const std::string& title) override;
  void onProgress(const std::string& text) override;
  void onDeletedSpam(int count) override;
  void onPopError(const std::string& title, const std::string& text) override;
  void onCancelled(const std::string& title) override;
  void onTimedOut(const std::string& title, int seconds) override;
  void onNoMailServer() override;
  void onNoConnection() override;
  void onFinished(const std::string& title, long count) override;

  void notifyPassFinished(const std::string& text);
  void runRuleProgram(const message::Message& message, const std::filesystem::path& file);
  void onAutoScanTick();
  void onMidnightTick();
  void onDelayedStart();
  // The toolbar's way: a running pass is stopped, else `start` runs.
  template <typename Start>
  void startOrStop(Start start);

  // What the outbox sender reports.
  void onSendProgress(const std::string& text) override;
  void onSendFailed(const std::string& text) override;
  void onNoMailToSend() override;
  void onSendingFinished() override;
  void sendingStopped(const std::string& text);

  void stage(std::string_view text);
  void action(std::string_view text);
  void migrateOldPaths();
  void removeUnfinishedDownloads();
  void migrateOldSignature();
  void applyWindowSize();
  std::string trayTip() const;
  void changeTrayIcon(TrayPicture picture);
  bool outboxHoldsMail() const;

  AppContext& ctx_;
  MainWindowPort& windows_;
  PasswordPrompt& passwords_;
  rules::RuleEngine serverFilters_;
  rules::RuleEngine localFilters_;
  std::unique_ptr<Pop3Connection> getMail_;
  std::unique_ptr<OutboxSender> sendMail_;
  std::unique_ptr<bayes::BayesFilter> bayesForm_;
  FetchPurpose fetchPurpose_ = FetchPurpose::None;
  int dayOfMonth_ = 0;
  bool trayLarge_ = true;
};

}  // namespace vonel
