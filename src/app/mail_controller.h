#pragma once
// The controller: brings the program up in a fixed order, runs the passes over
// the servers, and takes the program down again. Its windows are a separate
// class that fills AppWindows.
#include <QObject>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/app_windows.h"
#include "app/auto_scan_timer.h"
#include "app/day_change_watch.h"
#include "app/outbox_upload.h"
#include "app/pass_request.h"
#include "app/pass_tally.h"
#include "app/pop3/pop3_connection.h"
#include "app/tray_flasher.h"
#include "core/bayes/bayes_filter.h"
#include "core/context/app_context.h"
#include "core/log/log_places.h"
#include "core/rules/rule_engine.h"
#include "core/settings/accounts.h"

namespace vonel {

enum class StartupResult { Started, NoAccount };

// Whether leaving may ask the user: not when the session ends or the system
// asks the program to stop, as nobody is there to answer.
enum class ExitQuestions { Ask, Skip };

// What a block or unblock of the scanner's list acts on.
enum class BlockTarget { Sender, Recipient, SenderDomain, RecipientDomain };

// Why a single message is being fetched from the server.
enum class FetchPurpose { None, ViewSource, Read, Download };

class MailController : public QObject, public pop3::Pop3Listener {
  Q_OBJECT

 public:
  MailController(AppContext& context, AppWindows& windows, PasswordPrompt& passwords);
  ~MailController() override;

  StartupResult startup();
  // False when the user chose to keep the program running.
  bool exitProgram(ExitQuestions questions = ExitQuestions::Ask);

  // The one entry point of a pass over the servers; ignored while a pass runs
  // and before start-up.
  void startPass(const PassRequest& request);
  // Cancels the running pass.
  void stopPass();

  // The commands of the menus, the toolbar, the keys and the mail window.
  // Those that start a pass are ignored while one runs; on the toolbar they
  // stop it instead. Those that send start the upload in any case.
  // scanAll deletes by the auto-delete setting, and stops the auto scan even
  // while a pass runs.
  void scanAll();
  void scan();
  void scanAndDelete();
  void scanFrom(int account);
  void scanAndDeleteFrom(int account);
  void downloadOnly();
  void downloadAndDelete();
  void downloadFrom(int account);
  void downloadAndDeleteFrom(int account);
  void downloadAndSend();
  void downloadDeleteAndSend();
  void downloadDeleteAndSendFrom(int account);
  void toolbarScan();
  void toolbarScanAndDelete();
  void toolbarSendReceive();
  void toolbarSendReceiveDelete();
  // Erases all mail of the account on its server, after asking.
  void deleteAllFromAccount(int account);
  void sendOutbox();
  // Sends only while no pass runs.
  void sendOutboxIfIdle();

  // Fetches message `number` of the account for one purpose.
  void fetchSpecificMessage(FetchPurpose purpose, int account, int number);

  // The scanner's list: the headers of the last scan, by their keys.
  const message::Message* scannedMessage(const std::string& key) const;
  // SERVER<n>: where a row's message waits.
  std::string accountServer(int account) const;
  bool blocked(BlockTarget target, const std::string& key) const;
  // Each on every message named, then the list judged again.
  void blockOrUnblock(BlockTarget target, bool block, const std::vector<std::string>& keys);
  bool recipientIgnored(const std::string& key) const;
  void ignoreOrNot(bool undo, const std::string& key);
  // Judges the last scan's headers again by the present rules, without the network.
  void rescanCachedMail();
  rules::RuleEngine& serverFilters() { return serverFilters_; }
  rules::RuleEngine& localFilters() { return localFilters_; }

  AutoScanTimer& autoScan() { return autoScan_; }
  // The upload of the outbox and the Bayes filter, made at start.
  OutboxUpload* outbox() { return outbox_.get(); }
  bayes::BayesFilter* bayesFilter() { return bayes_.get(); }

  // The settings dialog: it may open only while no pass runs; the auto scan
  // rests while it is open, and the new settings are taken up when it closes.
  bool openSettingsAllowed() const;
  void settingsOpening();
  void settingsClosed(bool accepted);

  bool passRunning() const { return passRunning_; }
  // The running pass, or the last one.
  const PassRequest& pass() const { return pass_; }
  const PassTally& tally() const { return tally_; }
  bool soundOn() const { return soundOn_; }
  // The chime after a pass, kept in AUDIO.
  void setSound(bool on);
  bool trayFlashing() const { return tray_.isFlashing(); }
  bool delayedStartPending() const { return delayedStartTimer_.isActive(); }

 signals:
  // A pass over the servers has ended, with the text that says how; once a
  // pass. Why accounts failed is in tally().failures.
  void passEnded(const QString& text);
  // Thirty seconds after start: the moment to look for a newer version.
  void updateCheckDue();

 private:
  // What the POP3 session reports.
  void onHeaderReceived(message::Message& message) override;
  bool onMessageReceived(message::Message& message) override;
  void onSpecificMessage(message::Message& message) override;
  bool onScreenedDelete(message::Message& message) override;
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
  void onFailure(const pop3::Pop3Failure& failure) override;
  void onFinished(const std::string& title, long count) override;

  // Polls currentAccount_, or moves on when it has no server.
  void startAccount(bool evenIfUnchecked);
  // Moves on to the next account or ends the pass.
  void onAccountFinished();
  void onAutoScanDue(PassKind kind);
  void onDelayedStart();
  // The status bar and the tray once no pass runs.
  void showPassIdle();
  void resumeAutoScan();
  void endPass(const std::string& text);
  // The account's cause of failure in its row and the status bar.
  void showFailure(int account);
  void runRuleProgram(const message::Message& message, const std::filesystem::path& file);
  // The toolbar's way: a running pass is stopped, else `command` runs.
  void startOrStop(void (MailController::*command)());

  // Counts a judged header and lists it unless it is suppressed or going away.
  void countAndList(const message::Message& message);
  // The server the account was polled on in the last pass.
  std::string serverOf(int account) const;
  void showServerStatus(const std::string& title, std::string_view text);

  void showStage(std::string_view text);
  void logAction(std::string_view text);
  void readSettings();
  // The status bar says whether the program looks for updates.
  void showUpdateStatus();
  void applyWindowSize();
  bool outboxHoldsMail() const;

  // The module that the controller's log lines name.
  static constexpr std::string_view kLogModule = log_places::kControllerModule;

  AppContext& ctx_;
  AppWindows& windows_;
  PasswordPrompt& passwords_;

  bool autoDelete_ = false;  // AUTODELETE: scanAll and the auto scan delete spam on the server
  bool soundOn_ = false;     // AUDIO: the chime after a pass that listed good mail
  double totalSpamCount_ = 0;  // SpamCount: what passes have deleted, over all runs
  PassRequest pass_;
  bool passOpen_ = false;     // from startPass until passEnded
  bool passRunning_ = false;  // a POP3 session of the pass runs
  // The account being polled; none between full passes and after a cancel.
  std::optional<int> currentAccount_;
  int lastAccount_ = kAccountCount - 1;  // the pass's last account
  int sessionAccount_ = 0;               // the account of the last session, kept after a cancel
  PassTally tally_;
  FetchPurpose fetchPurpose_ = FetchPurpose::None;

  // Declared before the sessions, so that they outlive whatever a session
  // reports while it is taken down.
  AutoScanTimer autoScan_;
  TrayFlasher tray_;
  DayChangeWatch dayWatch_;
  QTimer delayedStartTimer_;
  QTimer updateCheckTimer_;

  rules::RuleEngine serverFilters_;
  rules::RuleEngine localFilters_;
  std::unique_ptr<Pop3Connection> pop3_;
  std::unique_ptr<OutboxUpload> outbox_;
  std::unique_ptr<bayes::BayesFilter> bayes_;
};

}  // namespace vonel
