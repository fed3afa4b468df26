#include "app/mail_controller.h"

#include <QProcess>
#include <optional>

#include "app/event_wait.h"
#include "app/qtext.h"
#include "core/message/message_file.h"
#include "core/store/received_mail.h"
#include "core/store/suppress_message.h"
#include "core/send/outbox.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/settings/accounts.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr const char* kModule = "frmMain";
constexpr int kFirstScanDelayMs = 200;
constexpr int kShutdownWaitMs = 3000;

// An error text fit for one line of the status bar.
std::string withoutLineEnds(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

constexpr int kTickMs = 1000;
constexpr int kIconFlashMs = 500;
constexpr int kMidnightCheckMs = 10000;

}  // namespace

MailController::MailController(AppContext& context, MainWindowPort& windows, PasswordPrompt& passwords)
    : ctx_(context), windows_(windows), passwords_(passwords), serverFilters_(context), localFilters_(context) {
  autoScanTimer_.setInterval(kTickMs);
  iconFlashTimer_.setInterval(kIconFlashMs);
  midnightTimer_.setInterval(kMidnightCheckMs);
  delayedStartTimer_.setInterval(1500);
  delayedStartTimer_.setSingleShot(true);
  updateCheckTimer_.setInterval(30000);
  updateCheckTimer_.setSingleShot(true);
  connect(&autoScanTimer_, &QTimer::timeout, this, &MailController::onAutoScanTick);
  connect(&iconFlashTimer_, &QTimer::timeout, this, &MailController::swapTrayIcon);
  connect(&midnightTimer_, &QTimer::timeout, this, &MailController::onMidnightTick);
  connect(&delayedStartTimer_, &QTimer::timeout, this, &MailController::onDelayedStart);
  connect(&updateCheckTimer_, &QTimer::timeout, this, &MailController::updateCheckDue);
}

void MailController::stage(std::string_view text) {
  windows_.splashStatus(text);
  windows_.pumpEvents();
}

void MailController::action(std::string_view text) { ctx_.log.addAction(text); }

StartupResult MailController::startup() {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  windows_.showSplash();
  log.logToFile(ctx_.installFolder() / "msglog.txt", "Startup", true);
  log.logEvent("Vonel version " + version + " startup.", true);

  if (!files::fileExists(ctx_.settingsFile())) {
    windows_.hideSplash();
    if (!windows_.runAccountWizard() && !files::fileExists(ctx_.settingsFile())) {
      action("No settings file and no account wizard: nothing to start");
      return StartupResult::NoAccount;
    }
    windows_.showSplash();
  }

  guardedStep(log, "Startup", kModule, [&] {
    windows_.setBusy(true);
    stage("Loading settings");
    ctx_.pathSettings.loadSettings(ctx_.pathsFile());
    ctx_.settings.loadSettings(ctx_.settingsFile());
    guardedStep(log, "Startup", kModule, [&] { migrateOldPaths(); });

    ctx_.readBayesSettings();
    ctx_.folders.readMessageFolder();
    removeUnfinishedDownloads();
    ctx_.folders.readFilterFolder();
    ctx_.folders.readDataFolder();
    for (const char* folder : {"AutoReply", "Sigs", "DB", "DB/Attachments"}) {
      files::ensureFolder(ctx_.folders.dataFolderPath / folder);
    }
    ctx_.noCacheMode = ctx_.settings.get("NoCache", Value(false)).flag();
    guardedStep(log, "Startup", kModule, [&] { migrateOldSignature(); });

    stage("Loading languages");
    stage("Starting Reminders");
    // There is no reminder component on this platform.
    ctx_.remindersUnavailable = true;
    stage("Configuring Updater");
    stage("Loading Contacts");
    action("Loading contacts");
    action("Setting up list");
    windows_.setupListView();
    windows_.showTicketButton(ctx_.settings.get("CMSMODE", Value(false)).flag());

    action("Loading getmail");
    pop3::Pop3Listener& events = *this;
    getMail_ = std::make_unique<Pop3Connection>(ctx_, events, serverFilters_, localFilters_, passwords_);
    action("Loading mailer");
    stage("Loading Filters");
    action("Loading Sendmail");
    OutboxListener& sendEvents = *this;
    sendMail_ = std::make_unique<OutboxSender>(ctx_, sendEvents);
    action("Loading Bayes form");
    bayesForm_ = std::make_unique<bayes::BayesFilter>(ctx_);
    bayesForm_->loadWordHash();
    action("Loading filters form");
    action("Loading server filters");
    serverFilters_.setScorer(bayesForm_.get());
    serverFilters_.reloadFilters(false);
    action("Loading local filters");
    localFilters_.setScorer(bayesForm_.get());
    localFilters_.reloadFilters(true);

    stage("Applying Settings");
    action("Applying settings");
    readSettings();
    action("Setting tray picture");
    action("Loading spam count");
    totalSpamCount = ctx_.globalSpamCount();

    action("Hiding splash screen");
    windows_.hideSplash();
    windows_.pumpEvents();
    action("Displaying tray icon");
    windows_.showTrayIcon(trayTip());
    windows_.pumpEvents();
    stopIconTimer();

    // The first pass starts from the timer once the window is up, never from here.
    // One tick to wait, at 200 ms: the pass starts on the second.
    const bool scanOnStart = ctx_.settings.get("ScanOnStart", Value(false)).flag();
    const bool retrieveOnStart = ctx_.settings.get("RetrieveOnStart", Value(false)).flag();
    if (scanOnStart || retrieveOnStart) {
      retrieveNext = !scanOnStart;
      scanDelay = 1;
      scanTicks = 0;
      autoScanTimer_.start(kFirstScanDelayMs);
    }

    applyWindowSize();
    // The reminder component never runs here, so only its absence is logged.
    action("Brindle component not running");
    if (ctx_.settings.get("DisableAutoUpdateCheck", Value(false)).flag()) {
      action("Auto update disabled");
      windows_.setStatusText("Vonel auto-update disabled");
    } else {
      action("Update Check Enabled");
      windows_.setStatusText("Auto-update enabled");
    }
    // Compared as text on purpose: " 1 " or -1 don't hide the window.
    if (ctx_.settings.get("STARTMIN", Value("")).text() == "1") {
      action("Hiding main form");
      windows_.hideMain();
    } else {
      windows_.showMain();
    }
    action("Vonel startup complete, ready for some action.");
    action(std::string(50, '='));
    windows_.setupMenus();
    if (!ctx_.settings.get("ShowScannerFirst", Value(true)).flag()) windows_.switchToMailer();
    updateCheckTimer_.start();
    windows_.setBusy(false);
    delayedStartTimer_.start();
  });
  return StartupResult::Started;
}

// A download cut off by a cancel or a dropped connection leaves its
// temporary file in the store root; it never became a message. A source
// shown in a viewer was left there for the viewer, until now.
void MailController::removeUnfinishedDownloads() {
  std::error_code ec;
  for (std::filesystem::directory_iterator it(ctx_.folders.messageFolderPath, ec), end; !ec && it != end;
       it.increment(ec)) {
    const std::string name = it->path().filename().string();
    const bool unfinished = name.starts_with("mail_") && name.ends_with(".tmp");
    const bool viewedSource = text::startsWithNoCase(name, "temp") && name.size() > 4 &&
                              text::equalsNoCase(text::right(name, 4), ".eml");
    if ((unfinished || viewedSource) && it->is_regular_file()) files::eraseFile(it->path());
  }
}

void MailController::migrateOldPaths() {
  const std::string oldFolder = ctx_.settings.get("MessageFolder", Value("---")).text();
  const std::string pathsFolder = ctx_.pathSettings.get("MessageFolder", Value("---")).text();
  if (oldFolder == "---" || pathsFolder != "---") return;
  // Only the store root moves; the other old keys are dropped and fall back to their defaults.
  ctx_.pathSettings.set("MessageFolder", Value(oldFolder));
  for (const char* key : {"MessageFolder", "DataFolder", "FilterFolder", "SpamFolder", "ImportMailStore"}) {
    ctx_.settings.deleteSettingByName(key);
  }
  ctx_.settings.saveSettings(ctx_.settingsFile());
  ctx_.pathSettings.saveSettings(ctx_.pathsFile());
}

void MailController::migrateOldSignature() {
  const auto signatureFile = ctx_.folders.dataFolderPath / "Sigs" / "Sig1.txt";
  if (files::fileExists(signatureFile)) return;
  const std::string signature = ctx_.settings.get("SIGNATURE", Value("")).text();
  files::writeTextFile(signatureFile, text::replaceAll(signature, "\x01", "\r\n"));
  ctx_.settings.saveSettings(ctx_.settingsFile());
  ctx_.settings.deleteSettingByName("Signature");
}

MailController::~MailController() = default;

void MailController::readSettings() {
  autoDelete = ctx_.settings.get("AUTODELETE", Value(0)).numberOr(0) == 1;
  soundOn = ctx_.settings.get("AUDIO", Value(0)).numberOr(0) == 1;
}

void MailController::applyWindowSize() {
  auto& settings = ctx_.settings;
  if (settings.get("MainWindowState", Value(0)).numberOr(0) == 2) {
    action("Maximising main screen");
    windows_.maximise();
    return;
  }
  action("Restoring main screen");
  const double width = settings.get("MainWidth", Value(7668)).numberOr(7668);
  const double height = settings.get("MainHeight", Value(7300)).numberOr(7300);
  const WindowGeometry screen = windows_.screenTwips();
  if (width > 0.95 * screen.widthTwips && height > 0.95 * screen.heightTwips) {
    windows_.maximise();
  } else {
    windows_.resizeTwips(static_cast<int>(width), static_cast<int>(height));
  }
}

std::string MailController::trayTip() const {
  const int first = firstAccount(ctx_.settings);
  if (first < 0) return "Vonel by Tessarine Software";
  return "Vonel - " + accountTitle(ctx_.settings, first);
}

void MailController::startIconTimer() { iconFlashTimer_.start(); }

void MailController::stopIconTimer() {
  windows_.setStatusText("Done");
  iconFlashTimer_.stop();
  trayLarge_ = true;
  changeTrayIcon(TrayPicture::LargeS);
}

void MailController::swapTrayIcon() {
  trayLarge_ = !trayLarge_;
  changeTrayIcon(trayLarge_ ? TrayPicture::LargeS : TrayPicture::SmallS);
}

void MailController::showTrayError() {
  trayLarge_ = false;
  changeTrayIcon(TrayPicture::Error);
}

void MailController::changeTrayIcon(TrayPicture picture) {
  const int first = firstAccount(ctx_.settings);
  const std::string account = first < 0 ? "" : accountTitle(ctx_.settings, first) + " - ";
  windows_.showTrayPicture(picture, "Vonel - " + account + std::to_string(goodMessages) + " message(s)");
}

bool MailController::outboxHoldsMail() const { return !send::listOutboxFiles(ctx_.folders.outboxFolderPath).empty(); }

bool MailController::exitProgram() {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  bool keepRunning = false;
  guardedStep(log, "ExitProg", kModule, [&] {
    action("Beginning shutdown");
    if (sendingMail) {
      action("Still sending mail, stopping transfer.");
      sendingMail = false;
      if (sendMail_) sendMail_->cancelSend();
      waitWhileEventsRun(kShutdownWaitMs);
    }
    if (checkingMail) {
      action("Still checking for mail. Stopping transfer.");
      if (getMail_) getMail_->session().cancelMail();
      checkingMail = false;
      waitWhileEventsRun(kShutdownWaitMs);
    }
    if (outboxHoldsMail() &&
        ctx_.prompt.ask("You still have mail in your outbox. Are you sure you want to quit?", Buttons::YesNo,
                        "Vonel") == Answer::No) {
      keepRunning = true;
      return;
    }
    action("Saving window size");
    const WindowGeometry geometry = windows_.geometryTwips();
    ctx_.settings.set("MainWidth", Value(geometry.widthTwips));
    ctx_.settings.set("MainHeight", Value(geometry.heightTwips));
    action("Saving window state");
    ctx_.settings.set("MainWindowState", Value(geometry.state));
    action("Removing Tray Icon");
    windows_.removeTrayIcon();
    action("Saving settings");
    ctx_.settings.saveSettings(ctx_.settingsFile());
    action("Saving contacts");
    action("Unloading contacts");
    action("Hiding main form");
    windows_.hideMain();
    windows_.pumpEvents();
    action("Unloading forms");
    windows_.closeOtherWindows([this](const std::string& name) { action("Unloading " + name); });
  });
  if (keepRunning) return false;
  action("Writing log");
  log.writeActionsToLog();
  log.logEvent("Finished Shutdown of " + version);
  log.logEvent("Unloading main form");
  log.logEvent("Finished");
  return true;
}

void MailController::processMail(bool deleteSpam, bool oneAccount, int account, bool retrieve, bool clear) {
  if (checkingMail || !getMail_) return;
  clearMode = clear;
  retrieveMode = retrieve;
  deleteSpamMode = deleteSpam;
  windows_.showPassRunning(true);
  passedMail = false;
  stopMailTimer();
  startIconTimer();
  while (messages.count() > 0) messages.remove(std::size_t{1});
  messagesListed = 0;
  goodMessages = 0;
  accountMessages.fill(0);
  windows_.setupListView();
  currentAccount = account;
  lastAccount = oneAccount ? account : kAccountCount - 1;
  checkNextAccount(oneAccount);
}

void MailController::downloadMail(bool deleteSpam) {
  if (!checkingMail) processMail(deleteSpam, false, 0, true, false);
}

void MailController::downloadFromAccount(bool deleteSpam, int account) {
  if (!checkingMail) processMail(deleteSpam, true, account, true, false);
}

void MailController::fetchSpecificMessage(FetchPurpose purpose, int account, int number) {
  if (checkingMail || !getMail_) return;
  fetchPurpose_ = purpose;
  getMail_->session().getSpecificMessage(account, number);
}

void MailController::checkNextAccount(bool force) {
  guardedStep(ctx_.log, "CheckNextAccount", kModule, [&] {
    const std::string server =
        text::trim(ctx_.settings.get(accountKey("SERVER", currentAccount), Value("")).text());
    if (server.empty()) {
      doNextAccount();
      return;
    }
    checkingMail = true;
    serverNames[static_cast<std::size_t>(currentAccount)] = server;
    auto& session = getMail_->session();
    if (retrieveMode) session.getMessages(currentAccount, deleteSpamMode, force);
    else if (clearMode) session.deleteAllMail(currentAccount);
    else session.getHeaders(currentAccount, deleteSpamMode, force);
  });
}

// Safe to run again with currentAccount -1: a time-out reports more than once.
void MailController::doNextAccount() {
  checkingMail = false;
  const auto passOver = [this](const std::string& text) {
    stopIconTimer();
    startMailTimer();
    notifyPassFinished(text);
  };
  if (currentAccount == -1 || lastAccount < kAccountCount - 1) {
    passOver("Finished getting mail");
    return;
  }
  ctx_.settings.set("SpamCount", Value(totalSpamCount));
  if (++currentAccount < kAccountCount) {
    checkNextAccount(false);
    return;
  }
  currentAccount = -1;
  stopIconTimer();
  if (firstAccount(ctx_.settings) < 0) {
    // The timer stays off until there is an account to scan.
    if (ctx_.prompt.ask("You need to set up your email account(s). Would you like to open the settings screen?",
                        Buttons::YesNo, "Vonel") == Answer::Yes) {
      windows_.showSettings();
    }
    emit passEnded(QString());
    return;
  }
  if (passedMail && soundOn) windows_.playSound(ctx_.installFolder() / "ClockChime.wav");
  startMailTimer();
  notifyPassFinished("Process complete");
}

void MailController::notifyPassFinished(const std::string& text) {
  windows_.showPassRunning(false);
  emit passEnded(toQString(text));
}

void MailController::setMailTimerInterval() {
  autoScanTimer_.setInterval(kTickMs);
  scanDelay = static_cast<int>(ctx_.settings.get("DELAY", Value(0)).numberOr(0));
  displayTimeLeft();
}

// One key governs both the scan at start and the repeating scan.
void MailController::startMailTimer() {
  if (ctx_.settings.get("ScanOnStart", Value(false)).flag()) {
    scanTicks = 0;
    setMailTimerInterval();
    autoScanTimer_.start();
  }
  windows_.showPassRunning(false);
}

void MailController::stopMailTimer() {
  autoScanTimer_.stop();
  scanDelay = 0;
  scanTicks = 0;
  windows_.setTimerStatus("Timer stopped");
}

void MailController::displayTimeLeft() {
  if (scanDelay == 0) {
    windows_.setTimerStatus("Auto scan Disabled");
  } else if (scanTicks == scanDelay) {
    windows_.setTimerStatus("Scanning");
  } else {
    windows_.setTimerStatus("Next scan: " + std::to_string(scanDelay - scanTicks));
  }
}

void MailController::onAutoScanTick() {
  if (scanDelay == 0) return;
  displayTimeLeft();
  if (++scanTicks <= scanDelay) return;
  stopMailTimer();
  processMail(autoDelete, false, 0, retrieveNext, false);
  retrieveNext = false;
}

void MailController::onMidnightTick() {
  const int day = ctx_.clock.now().day;
  if (day == dayOfMonth_) return;
  dayOfMonth_ = day;
  windows_.dayChanged();
}

void MailController::onDelayedStart() {
  if (!ctx_.remindersUnavailable) action("Scanning BRD events");
  dayOfMonth_ = ctx_.clock.now().day;
  midnightTimer_.start();
  windows_.setBusy(false);
}

void MailController::onHeaderReceived(message::Message& received) {
  auto message = std::make_shared<message::Message>(received);
  const bool goingAway = message->deleted && deleteSpamMode;
  if (!goingAway) {
    if (message->messageId.empty()) {
      const text::DateTime now = ctx_.clock.now();
      message->messageId = std::to_string(messagesListed) + "." +
                           std::to_string(now.hour * 3600 + now.minute * 60 + now.second) + "." + message->sender;
    }
    while (messages.contains(message->messageId)) message->messageId += "1";
    messages.add(message, message->messageId);
  }
  ++messagesListed;
  if (message->fromAccount >= 0 && message->fromAccount < kAccountCount) ++accountMessages[message->fromAccount];
  if (!message->deleted && !message->ignored && message->bayes < ctx_.saveToSpamThreshold) ++goodMessages;
  if (store::suppressMessage(*message, ctx_.settings) || goingAway) return;
  if (!message->deleted && !message->ignored) passedMail = true;
  windows_.addServerMessage(*message, messagesListed, accountTitle(ctx_.settings, message->fromAccount));
}

// The message is only reported kept once its file is whole on disk, so a
// failed store never lets the session delete it on the server.
bool MailController::onMessageReceived(message::Message& message) {
  std::optional<store::StoredMessage> stored;
  guardedStep(ctx_.log, "fGetMail_MessageReceived", kModule,
              [&] { stored = store::saveReceivedMessage(ctx_, message); });
  if (!stored) return false;
  if (!message.runThisFile.empty()) runRuleProgram(message, stored->file);
  guardedStep(ctx_.log, "fGetMail_MessageReceived", kModule,
              [&] { store::announceNewMessage(ctx_, *stored, message, windows_.openMailer()); });
  windows_.messageStored(message, stored->file);
  return true;
}

// Started directly, never through a shell, with the message file as its one argument.
void MailController::runRuleProgram(const message::Message& message, const std::filesystem::path& file) {
  const QString program = toQString(message.runThisFile);
  const bool started = QProcess::startDetached(program, {QString::fromStdString(file.string())});
  ctx_.log.addAction((started ? "Ran " : "Could not run ") + message.runThisFile + " for " +
                         files::textFromPath(file) + ", as a rule asked",
                     "fGetMail_MessageReceived", kModule);
}

void MailController::onSpecificMessage(message::Message& message) {
  const FetchPurpose purpose = fetchPurpose_;
  fetchPurpose_ = FetchPurpose::None;
  guardedStep(ctx_.log, "fGetMail_SpecificMessage", kModule, [&] {
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

void MailController::onDoingServer(const std::string& title) { windows_.addServerToLists(title); }

void MailController::onNumberMessagesFound(const std::string& title, long count) {
  windows_.setServerStatus(title, count == 0   ? std::string("No messages")
                                  : count == 1 ? std::string("1 message")
                                               : std::to_string(count) + " messages");
}

void MailController::onNoMail(const std::string& title) { windows_.setServerStatus(title, "No messages"); }

void MailController::onProgress(const std::string& text) { windows_.setStatusText(text); }

void MailController::onDeletedSpam(int count) {
  sessionSpamCount += count;
  totalSpamCount += count;
}

void MailController::onPopError(const std::string& title, const std::string& text) {
  std::string shown = text;
  std::erase_if(shown, [](char c) { return c == '\r' || c == '\n'; });
  windows_.setStatusText(shown);
  windows_.setServerStatus(title, shown);
}

void MailController::onCancelled(const std::string& title) {
  windows_.setServerStatus(title, "Communications cancelled");
  currentAccount = -1;
  doNextAccount();
}

void MailController::onTimedOut(const std::string& title, int seconds) {
  const std::string text = "Timed out after " + std::to_string(seconds) + " seconds.";
  windows_.setStatusText(text);
  windows_.setServerStatus(title, text);
  doNextAccount();
}

void MailController::onNoMailServer() { doNextAccount(); }

void MailController::onNoConnection() {
  stopIconTimer();
  startMailTimer();
  showTrayError();
  windows_.showTrayError("No internet connection");
  windows_.setStatusText("No Internet Connection");
}

void MailController::onFinished(const std::string&, long) {
  windows_.setStatusText("");
  doNextAccount();
}

void MailController::uploadMail() {
  if (!sendMail_) return;
  sendingMail = true;
  sendMail_->uploadSpooledMail();
}

void MailController::onSendProgress(const std::string& text) {
  windows_.setStatusText(text);
  emit sendProgress(toQString(text));
}

void MailController::onSendFailed(const std::string& text) {
  const std::string shown = withoutLineEnds(text);
  emit sendFailed(toQString(shown));
  // A missing server is reported while the walk still goes on to its end.
  if (!sendMail_->sending()) sendingStopped(shown);
}

void MailController::onNoMailToSend() { sendingStopped("No mail to send"); }

void MailController::onSendingFinished() { sendingStopped("Finished sending mail"); }

void MailController::sendingStopped(const std::string& text) {
  sendingMail = false;
  windows_.setStatusText(text);
  emit sendEnded();
}

}  // namespace vonel
