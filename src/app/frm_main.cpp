#include "app/frm_main.h"

#include <QProcess>
#include <optional>

#include "app/event_wait.h"
#include "app/qtext.h"
#include "core/message/message_file.h"
#include "core/store/received_mail.h"
#include "core/store/suppress_message.h"
#include "core/send/outbox.h"
#include "core/services/file_subs.h"
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

frmMain::frmMain(AppContext& context, MainWindowPort& windows, PasswordPrompt& passwords)
    : ctx_(context), windows_(windows), passwords_(passwords), serverFilters_(context), localFilters_(context) {
  TimerAutoScan.setInterval(kTickMs);
  TimerIconFlash.setInterval(kIconFlashMs);
  TimerMidnight.setInterval(kMidnightCheckMs);
  TimerDelayedStart.setInterval(1500);
  TimerDelayedStart.setSingleShot(true);
  TimerUpdateCheck.setInterval(30000);
  TimerUpdateCheck.setSingleShot(true);
  connect(&TimerAutoScan, &QTimer::timeout, this, &frmMain::TimerAutoScan_Timer);
  connect(&TimerIconFlash, &QTimer::timeout, this, &frmMain::SwapTrayIcon);
  connect(&TimerMidnight, &QTimer::timeout, this, &frmMain::TimerMidnight_Timer);
  connect(&TimerDelayedStart, &QTimer::timeout, this, &frmMain::TimerDelayedStart_Timer);
  connect(&TimerUpdateCheck, &QTimer::timeout, this, &frmMain::updateCheckDue);
}

void frmMain::stage(std::string_view text) {
  windows_.splashStatus(text);
  windows_.pumpEvents();
}

void frmMain::action(std::string_view text) { ctx_.log.AddAction(text); }

StartupResult frmMain::Startup() {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  windows_.showSplash();
  log.LogToFile(ctx_.installFolder() / "msglog.txt", "Startup", true);
  log.LogEvent("Vonel version " + version + " startup.", true);

  if (!files::FileExists(ctx_.settingsFile())) {
    windows_.hideSplash();
    if (!windows_.runAccountWizard() && !files::FileExists(ctx_.settingsFile())) {
      action("No settings file and no account wizard: nothing to start");
      return StartupResult::NoAccount;
    }
    windows_.showSplash();
  }

  guardedStep(log, "Startup", kModule, [&] {
    windows_.setBusy(true);
    stage("Loading settings");
    ctx_.PathSettings.LoadSettings(ctx_.pathsFile());
    ctx_.Settings.LoadSettings(ctx_.settingsFile());
    guardedStep(log, "Startup", kModule, [&] { migrateOldPaths(); });

    ctx_.ReadBayesSettings();
    ctx_.folders.ReadMessageFolder();
    removeUnfinishedDownloads();
    ctx_.folders.ReadFilterFolder();
    ctx_.folders.ReadDataFolder();
    for (const char* folder : {"AutoReply", "Sigs", "DB", "DB/Attachments"}) {
      files::MkMissingDir(ctx_.folders.DataFolderPath / folder);
    }
    ctx_.NoCacheMode = ctx_.Settings.RetrieveSetting("NoCache", Value(false)).flag();
    guardedStep(log, "Startup", kModule, [&] { migrateOldSignature(); });

    stage("Loading languages");
    stage("Starting Reminders");
    // There is no reminder component on this platform.
    ctx_.RemindersUnavailable = true;
    stage("Configuring Updater");
    stage("Loading Contacts");
    action("Loading contacts");
    action("Setting up list");
    windows_.setupListView();
    windows_.showTicketButton(ctx_.Settings.RetrieveSetting("CMSMODE", Value(false)).flag());

    action("Loading getmail");
    pop3::GetMailEvents& events = *this;
    getMail_ = std::make_unique<Pop3Connection>(ctx_, events, serverFilters_, localFilters_, passwords_);
    action("Loading mailer");
    stage("Loading Filters");
    action("Loading Sendmail");
    SendMailWrapperEvents& sendEvents = *this;
    sendMail_ = std::make_unique<frmSendMailWrapperNew>(ctx_, sendEvents);
    action("Loading Bayes form");
    bayesForm_ = std::make_unique<bayes::frmBayesFilter>(ctx_);
    bayesForm_->LoadWordHash();
    action("Loading filters form");
    action("Loading server filters");
    serverFilters_.setScorer(bayesForm_.get());
    serverFilters_.ReloadFilters(false);
    action("Loading local filters");
    localFilters_.setScorer(bayesForm_.get());
    localFilters_.ReloadFilters(true);

    stage("Applying Settings");
    action("Applying settings");
    ReadSettings();
    action("Setting tray picture");
    action("Loading spam count");
    TotalSpamCount = ctx_.GlobalSpamCount();

    action("Hiding splash screen");
    windows_.hideSplash();
    windows_.pumpEvents();
    action("Displaying tray icon");
    windows_.showTrayIcon(trayTip());
    windows_.pumpEvents();
    StopIconTimer();

    // The first pass starts from the timer once the window is up, never from here.
    // One tick to wait, at 200 ms: the pass starts on the second.
    const bool scanOnStart = ctx_.Settings.RetrieveSetting("ScanOnStart", Value(false)).flag();
    const bool retrieveOnStart = ctx_.Settings.RetrieveSetting("RetrieveOnStart", Value(false)).flag();
    if (scanOnStart || retrieveOnStart) {
      RetrieveNext = !scanOnStart;
      ScanDelay = 1;
      ScanTicks = 0;
      TimerAutoScan.start(kFirstScanDelayMs);
    }

    applyWindowSize();
    // The reminder component never runs here, so only its absence is logged.
    action("Brindle component not running");
    if (ctx_.Settings.RetrieveSetting("DisableAutoUpdateCheck", Value(false)).flag()) {
      action("Auto update disabled");
      windows_.setStatusText("Vonel auto-update disabled");
    } else {
      action("Update Check Enabled");
      windows_.setStatusText("Auto-update enabled");
    }
    // Compared as text on purpose: " 1 " or -1 don't hide the window.
    if (ctx_.Settings.RetrieveSetting("STARTMIN", Value("")).text() == "1") {
      action("Hiding main form");
      windows_.hideMain();
    } else {
      windows_.showMain();
    }
    action("Vonel startup complete, ready for some action.");
    action(std::string(50, '='));
    windows_.setupMenus();
    if (!ctx_.Settings.RetrieveSetting("ShowScannerFirst", Value(true)).flag()) windows_.switchToMailer();
    TimerUpdateCheck.start();
    windows_.setBusy(false);
    TimerDelayedStart.start();
  });
  return StartupResult::Started;
}

// A download cut off by a cancel or a dropped connection leaves its
// temporary file in the store root; it never became a message. A source
// shown in a viewer was left there for the viewer, until now.
void frmMain::removeUnfinishedDownloads() {
  std::error_code ec;
  for (std::filesystem::directory_iterator it(ctx_.folders.MessageFolderPath, ec), end; !ec && it != end;
       it.increment(ec)) {
    const std::string name = it->path().filename().string();
    const bool unfinished = name.starts_with("mail_") && name.ends_with(".tmp");
    const bool viewedSource = text::startsWithNoCase(name, "temp") && name.size() > 4 &&
                              text::equalsNoCase(text::right(name, 4), ".eml");
    if ((unfinished || viewedSource) && it->is_regular_file()) files::EraseFile(it->path());
  }
}

void frmMain::migrateOldPaths() {
  const std::string oldFolder = ctx_.Settings.RetrieveSetting("MessageFolder", Value("---")).text();
  const std::string pathsFolder = ctx_.PathSettings.RetrieveSetting("MessageFolder", Value("---")).text();
  if (oldFolder == "---" || pathsFolder != "---") return;
  // Only the store root moves; the other old keys are dropped and fall back to their defaults.
  ctx_.PathSettings.StoreSetting("MessageFolder", Value(oldFolder));
  for (const char* key : {"MessageFolder", "DataFolder", "FilterFolder", "SpamFolder", "ImportMailStore"}) {
    ctx_.Settings.DeleteSettingByName(key);
  }
  ctx_.Settings.SaveSettings(ctx_.settingsFile());
  ctx_.PathSettings.SaveSettings(ctx_.pathsFile());
}

void frmMain::migrateOldSignature() {
  const auto signatureFile = ctx_.folders.DataFolderPath / "Sigs" / "Sig1.txt";
  if (files::FileExists(signatureFile)) return;
  const std::string signature = ctx_.Settings.RetrieveSetting("SIGNATURE", Value("")).text();
  files::WriteTextFile(signatureFile, text::replaceAll(signature, "\x01", "\r\n"));
  ctx_.Settings.SaveSettings(ctx_.settingsFile());
  ctx_.Settings.DeleteSettingByName("Signature");
}

frmMain::~frmMain() = default;

void frmMain::ReadSettings() {
  AutoDelete = ctx_.Settings.RetrieveSetting("AUTODELETE", Value(0)).numberOr(0) == 1;
  SoundOn = ctx_.Settings.RetrieveSetting("AUDIO", Value(0)).numberOr(0) == 1;
}

void frmMain::applyWindowSize() {
  auto& settings = ctx_.Settings;
  if (settings.RetrieveSetting("MainWindowState", Value(0)).numberOr(0) == 2) {
    action("Maximising main screen");
    windows_.maximise();
    return;
  }
  action("Restoring main screen");
  const double width = settings.RetrieveSetting("MainWidth", Value(7668)).numberOr(7668);
  const double height = settings.RetrieveSetting("MainHeight", Value(7300)).numberOr(7300);
  const WindowGeometry screen = windows_.screenTwips();
  if (width > 0.95 * screen.widthTwips && height > 0.95 * screen.heightTwips) {
    windows_.maximise();
  } else {
    windows_.resizeTwips(static_cast<int>(width), static_cast<int>(height));
  }
}

std::string frmMain::trayTip() const {
  const int first = FirstAccount(ctx_.Settings);
  if (first < 0) return "Vonel by Tessarine Software";
  return "Vonel - " + AccountTitle(ctx_.Settings, first);
}

void frmMain::StartIconTimer() { TimerIconFlash.start(); }

void frmMain::StopIconTimer() {
  windows_.setStatusText("Done");
  TimerIconFlash.stop();
  trayLarge_ = true;
  LocalChangeTrayIcon(TrayPicture::LargeS);
}

void frmMain::SwapTrayIcon() {
  trayLarge_ = !trayLarge_;
  LocalChangeTrayIcon(trayLarge_ ? TrayPicture::LargeS : TrayPicture::SmallS);
}

void frmMain::ShowTrayError() {
  trayLarge_ = false;
  LocalChangeTrayIcon(TrayPicture::Error);
}

void frmMain::LocalChangeTrayIcon(TrayPicture picture) {
  const int first = FirstAccount(ctx_.Settings);
  const std::string account = first < 0 ? "" : AccountTitle(ctx_.Settings, first) + " - ";
  windows_.showTrayPicture(picture, "Vonel - " + account + std::to_string(GoodMessages) + " message(s)");
}

bool frmMain::outboxHoldsMail() const { return !send::ListOutboxFiles(ctx_.folders.OutboxFolderPath).empty(); }

bool frmMain::ExitProg() {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  bool keepRunning = false;
  guardedStep(log, "ExitProg", kModule, [&] {
    action("Beginning shutdown");
    if (SendingMail) {
      action("Still sending mail, stopping transfer.");
      SendingMail = false;
      if (sendMail_) sendMail_->CancelSend();
      waitWhileEventsRun(kShutdownWaitMs);
    }
    if (CheckingMail) {
      action("Still checking for mail. Stopping transfer.");
      if (getMail_) getMail_->session().CancelMail();
      CheckingMail = false;
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
    ctx_.Settings.StoreSetting("MainWidth", Value(geometry.widthTwips));
    ctx_.Settings.StoreSetting("MainHeight", Value(geometry.heightTwips));
    action("Saving window state");
    ctx_.Settings.StoreSetting("MainWindowState", Value(geometry.state));
    action("Removing Tray Icon");
    windows_.removeTrayIcon();
    action("Saving settings");
    ctx_.Settings.SaveSettings(ctx_.settingsFile());
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
  log.WriteActionsToLog();
  log.LogEvent("Finished Shutdown of " + version);
  log.LogEvent("Unloading main form");
  log.LogEvent("Finished");
  return true;
}

void frmMain::ProcessMail(bool deleteSpam, bool oneAccount, int account, bool retrieve, bool clear) {
  if (CheckingMail || !getMail_) return;
  ClearMode = clear;
  RetrieveMode = retrieve;
  DeleteSpamMode = deleteSpam;
  windows_.showPassRunning(true);
  PassedMail = false;
  StopMailTimer();
  StartIconTimer();
  while (Messages.Count() > 0) Messages.Remove(std::size_t{1});
  MessagesListed = 0;
  GoodMessages = 0;
  AccountMessages.fill(0);
  windows_.setupListView();
  CurrentAccount = account;
  LastAccount = oneAccount ? account : kAccountCount - 1;
  CheckNextAccount(oneAccount);
}

void frmMain::DownloadMail(bool deleteSpam) {
  if (!CheckingMail) ProcessMail(deleteSpam, false, 0, true, false);
}

void frmMain::DownloadFromAccount(bool deleteSpam, int account) {
  if (!CheckingMail) ProcessMail(deleteSpam, true, account, true, false);
}

void frmMain::FetchSpecificMessage(FetchPurpose purpose, int account, int number) {
  if (CheckingMail || !getMail_) return;
  fetchPurpose_ = purpose;
  getMail_->session().GetSpecificMessage(account, number);
}

void frmMain::CheckNextAccount(bool force) {
  guardedStep(ctx_.log, "CheckNextAccount", kModule, [&] {
    const std::string server =
        text::trim(ctx_.Settings.RetrieveSetting(accountKey("SERVER", CurrentAccount), Value("")).text());
    if (server.empty()) {
      DoNextAccount();
      return;
    }
    CheckingMail = true;
    ServerNames[static_cast<std::size_t>(CurrentAccount)] = server;
    auto& session = getMail_->session();
    if (RetrieveMode) session.GetMessages(CurrentAccount, DeleteSpamMode, force);
    else if (ClearMode) session.DeleteAllMail(CurrentAccount);
    else session.GetHeaders(CurrentAccount, DeleteSpamMode, force);
  });
}

// Safe to run again with CurrentAccount -1: a time-out reports more than once.
void frmMain::DoNextAccount() {
  CheckingMail = false;
  const auto passOver = [this](const std::string& text) {
    StopIconTimer();
    StartMailTimer();
    NotifyFinishedGettingMail(text);
  };
  if (CurrentAccount == -1 || LastAccount < kAccountCount - 1) {
    passOver("Finished getting mail");
    return;
  }
  ctx_.Settings.StoreSetting("SpamCount", Value(TotalSpamCount));
  if (++CurrentAccount < kAccountCount) {
    CheckNextAccount(false);
    return;
  }
  CurrentAccount = -1;
  StopIconTimer();
  if (FirstAccount(ctx_.Settings) < 0) {
    // The timer stays off until there is an account to scan.
    if (ctx_.prompt.ask("You need to set up your email account(s). Would you like to open the settings screen?",
                        Buttons::YesNo, "Vonel") == Answer::Yes) {
      windows_.showSettings();
    }
    emit passEnded(QString());
    return;
  }
  if (PassedMail && SoundOn) windows_.playSound(ctx_.installFolder() / "ClockChime.wav");
  StartMailTimer();
  NotifyFinishedGettingMail("Process complete");
}

void frmMain::NotifyFinishedGettingMail(const std::string& text) {
  windows_.showPassRunning(false);
  emit passEnded(toQString(text));
}

void frmMain::SetMailTimerInterval() {
  TimerAutoScan.setInterval(kTickMs);
  ScanDelay = static_cast<int>(ctx_.Settings.RetrieveSetting("DELAY", Value(0)).numberOr(0));
  DisplayTimeLeft();
}

// One key governs both the scan at start and the repeating scan.
void frmMain::StartMailTimer() {
  if (ctx_.Settings.RetrieveSetting("ScanOnStart", Value(false)).flag()) {
    ScanTicks = 0;
    SetMailTimerInterval();
    TimerAutoScan.start();
  }
  windows_.showPassRunning(false);
}

void frmMain::StopMailTimer() {
  TimerAutoScan.stop();
  ScanDelay = 0;
  ScanTicks = 0;
  windows_.setTimerStatus("Timer stopped");
}

void frmMain::DisplayTimeLeft() {
  if (ScanDelay == 0) {
    windows_.setTimerStatus("Auto scan Disabled");
  } else if (ScanTicks == ScanDelay) {
    windows_.setTimerStatus("Scanning");
  } else {
    windows_.setTimerStatus("Next scan: " + std::to_string(ScanDelay - ScanTicks));
  }
}

void frmMain::TimerAutoScan_Timer() {
  if (ScanDelay == 0) return;
  DisplayTimeLeft();
  if (++ScanTicks <= ScanDelay) return;
  StopMailTimer();
  ProcessMail(AutoDelete, false, 0, RetrieveNext, false);
  RetrieveNext = false;
}

void frmMain::TimerMidnight_Timer() {
  const int day = ctx_.clock.now().day;
  if (day == dayOfMonth_) return;
  dayOfMonth_ = day;
  windows_.dayChanged();
}

void frmMain::TimerDelayedStart_Timer() {
  if (!ctx_.RemindersUnavailable) action("Scanning BRD events");
  dayOfMonth_ = ctx_.clock.now().day;
  TimerMidnight.start();
  windows_.setBusy(false);
}

void frmMain::HeaderReceived(message::clsMessage& received) {
  auto message = std::make_shared<message::clsMessage>(received);
  const bool goingAway = message->Deleted && DeleteSpamMode;
  if (!goingAway) {
    if (message->MessageID.empty()) {
      const text::DateTime now = ctx_.clock.now();
      message->MessageID = std::to_string(MessagesListed) + "." +
                           std::to_string(now.hour * 3600 + now.minute * 60 + now.second) + "." + message->Sender;
    }
    while (Messages.Contains(message->MessageID)) message->MessageID += "1";
    Messages.Add(message, message->MessageID);
  }
  ++MessagesListed;
  if (message->FromAccount >= 0 && message->FromAccount < kAccountCount) ++AccountMessages[message->FromAccount];
  if (!message->Deleted && !message->Ignored && message->Bayes < ctx_.SaveToSpamThreshold) ++GoodMessages;
  if (store::SuppressMessage(*message, ctx_.Settings) || goingAway) return;
  if (!message->Deleted && !message->Ignored) PassedMail = true;
  windows_.addServerMessage(*message, MessagesListed, AccountTitle(ctx_.Settings, message->FromAccount));
}

// The message is only reported kept once its file is whole on disk, so a
// failed store never lets the session delete it on the server.
bool frmMain::MessageReceived(message::clsMessage& message) {
  std::optional<store::StoredMessage> stored;
  guardedStep(ctx_.log, "fGetMail_MessageReceived", kModule,
              [&] { stored = store::SaveReceivedMessage(ctx_, message); });
  if (!stored) return false;
  if (!message.RunThisFile.empty()) runRuleProgram(message, stored->file);
  guardedStep(ctx_.log, "fGetMail_MessageReceived", kModule,
              [&] { store::AnnounceNewMessage(ctx_, *stored, message, windows_.openMailer()); });
  windows_.messageStored(message, stored->file);
  return true;
}

// Started directly, never through a shell, with the message file as its one argument.
void frmMain::runRuleProgram(const message::clsMessage& message, const std::filesystem::path& file) {
  const QString program = toQString(message.RunThisFile);
  const bool started = QProcess::startDetached(program, {QString::fromStdString(file.string())});
  ctx_.log.AddAction((started ? "Ran " : "Could not run ") + message.RunThisFile + " for " +
                         files::TextFromPath(file) + ", as a rule asked",
                     "fGetMail_MessageReceived", kModule);
}

void frmMain::SpecificMessage(message::clsMessage& message) {
  const FetchPurpose purpose = fetchPurpose_;
  fetchPurpose_ = FetchPurpose::None;
  guardedStep(ctx_.log, "fGetMail_SpecificMessage", kModule, [&] {
    switch (purpose) {
      case FetchPurpose::ViewSource: {
        windows_.setStatusText("Viewing source");
        // Left for the viewer to read; removed at the next start.
        const auto file =
            message::GetUnusedFilename(message.Read, ctx_.folders.MessageFolderPath, "temp", ".eml", ctx_.clock);
        files::WriteTextFile(file, message.Messagetext());
        windows_.openFile(file);
        break;
      }
      case FetchPurpose::Read:
        windows_.setStatusText("Viewing email");
        windows_.showMessage(message);
        break;
      case FetchPurpose::Download:
        files::WriteTextFile(message::GetUnusedFilename(message.Read, ctx_.folders.InboxFolderPath, "download",
                                                        ".eml", ctx_.clock),
                             message.Messagetext());
        break;
      case FetchPurpose::None:
        break;
    }
  });
}

void frmMain::DoingServer(const std::string& title) { windows_.addServerToLists(title); }

void frmMain::NumberMessagesFound(const std::string& title, long count) {
  windows_.setServerStatus(title, count == 0   ? std::string("No messages")
                                  : count == 1 ? std::string("1 message")
                                               : std::to_string(count) + " messages");
}

void frmMain::NoMail(const std::string& title) { windows_.setServerStatus(title, "No messages"); }

void frmMain::Progress(const std::string& text) { windows_.setStatusText(text); }

void frmMain::DeletedSpam(int count) {
  SessionSpamCount += count;
  TotalSpamCount += count;
}

void frmMain::POPError(const std::string& title, const std::string& text) {
  std::string shown = text;
  std::erase_if(shown, [](char c) { return c == '\r' || c == '\n'; });
  windows_.setStatusText(shown);
  windows_.setServerStatus(title, shown);
}

void frmMain::Cancelled(const std::string& title) {
  windows_.setServerStatus(title, "Communications cancelled");
  CurrentAccount = -1;
  DoNextAccount();
}

void frmMain::TimedOut(const std::string& title, int seconds) {
  const std::string text = "Timed out after " + std::to_string(seconds) + " seconds.";
  windows_.setStatusText(text);
  windows_.setServerStatus(title, text);
  DoNextAccount();
}

void frmMain::NoMailServer() { DoNextAccount(); }

void frmMain::NoConnection() {
  StopIconTimer();
  StartMailTimer();
  ShowTrayError();
  windows_.showTrayError("No internet connection");
  windows_.setStatusText("No Internet Connection");
}

void frmMain::Finished(const std::string&, long) {
  windows_.setStatusText("");
  DoNextAccount();
}

void frmMain::UploadMail() {
  if (!sendMail_) return;
  SendingMail = true;
  sendMail_->UploadSpooledMail();
}

void frmMain::fSendMail_Progress(const std::string& text) {
  windows_.setStatusText(text);
  emit sendProgress(toQString(text));
}

void frmMain::fSendMail_Failed(const std::string& text) {
  const std::string shown = withoutLineEnds(text);
  emit sendFailed(toQString(shown));
  // A missing server is reported while the walk still goes on to its end.
  if (!sendMail_->sending()) sendingStopped(shown);
}

void frmMain::fSendmail_NoMailToSend() { sendingStopped("No mail to send"); }

void frmMain::fSendmail_SendingFinished() { sendingStopped("Finished sending mail"); }

void frmMain::sendingStopped(const std::string& text) {
  SendingMail = false;
  windows_.setStatusText(text);
  emit sendEnded();
}

}  // namespace vonel
