// Start-up and shutdown.
#include "app/mail_controller.h"

#include "app/event_wait.h"
#include "app/startup_housekeeping.h"
#include "core/files/file_info.h"
#include "core/log/log_places.h"
#include "core/send/outbox.h"

namespace vonel {
namespace {

constexpr int kShutdownWaitMs = 3000;
constexpr int kDelayedStartMs = 1500;
constexpr int kUpdateCheckMs = 30000;
constexpr std::string_view kNoAccountYet =
    "Before using this program you will have to set up a mail account. Click the spanner icon on the main menu for "
    "the settings page.";

}  // namespace

MailController::MailController(AppContext& context, AppWindows& windows, PasswordPrompt& passwords)
    : ctx_(context),
      windows_(windows),
      passwords_(passwords),
      autoScan_(context.settings, windows),
      tray_(context.settings, windows),
      dayWatch_(context.clock, windows),
      serverFilters_(context),
      localFilters_(context) {
  delayedStartTimer_.setInterval(kDelayedStartMs);
  delayedStartTimer_.setSingleShot(true);
  updateCheckTimer_.setInterval(kUpdateCheckMs);
  updateCheckTimer_.setSingleShot(true);
  connect(&autoScan_, &AutoScanTimer::passDue, this, &MailController::onAutoScanDue);
  connect(&delayedStartTimer_, &QTimer::timeout, this, &MailController::onDelayedStart);
  connect(&updateCheckTimer_, &QTimer::timeout, this, &MailController::updateCheckDue);
}

MailController::~MailController() = default;

void MailController::showStage(std::string_view text) {
  windows_.splashStatus(text);
  windows_.pumpEvents();
}

void MailController::logAction(std::string_view text) { ctx_.log.addAction(text); }

StartupResult MailController::startup() {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  windows_.showSplash();
  log.logToFile(ctx_.installFolder() / "msglog.txt", "Startup", true);
  log.logEvent("Vonel version " + version + " startup.", true);

  if (!files::fileExists(ctx_.settingsFile())) {
    windows_.hideSplash();
    if (!windows_.canRunAccountWizard()) {
      logAction("No settings file and no account wizard: nothing to start");
      return StartupResult::NoAccount;
    }
    // Without an account the program still starts; the settings dialog can add one.
    if (!windows_.runAccountWizard()) ctx_.prompt.ask(kNoAccountYet, Buttons::Ok, "Vonel");
    windows_.showSplash();
  }

  guardedStep(log, log_places::kStartup, kLogModule, [&] {
    windows_.setBusy(true);
    showStage("Loading settings");
    ctx_.pathSettings.loadSettings(ctx_.pathsFile());
    ctx_.settings.loadSettings(ctx_.settingsFile());
    guardedStep(log, log_places::kStartup, kLogModule, [&] { moveStoreRootToPathsFile(ctx_); });

    ctx_.readBayesSettings();
    ctx_.folders.readMessageFolder();
    removeUnfinishedDownloads(ctx_);
    ctx_.folders.readFilterFolder();
    ctx_.folders.readDataFolder();
    for (const char* folder : {"AutoReply", "Sigs", "DB", "DB/Attachments"}) {
      files::ensureFolder(ctx_.folders.dataFolderPath / folder);
    }
    ctx_.noCacheMode = ctx_.settings.get("NoCache", Value(false)).flag();
    guardedStep(log, log_places::kStartup, kLogModule, [&] { moveSignatureToFile(ctx_); });

    showStage("Loading languages");
    showStage("Starting Reminders");
    // There is no reminder component on this platform.
    ctx_.remindersUnavailable = true;
    showStage("Configuring Updater");
    showStage("Loading Contacts");
    logAction("Loading contacts");
    logAction("Setting up list");
    windows_.setupListView();
    windows_.showTicketButton(ctx_.settings.get("CMSMODE", Value(false)).flag());

    logAction("Loading getmail");
    pop3::Pop3Listener& events = *this;
    pop3_ = std::make_unique<Pop3Connection>(ctx_, events, serverFilters_, localFilters_, passwords_);
    QObject::connect(&pop3_->channel(), &SecureChannel::certificateUntrusted, this,
                     [this](const UntrustedCertificate& certificate) { windows_.certificateUntrusted(certificate); });
    logAction("Loading mailer");
    showStage("Loading Filters");
    logAction("Loading Sendmail");
    outbox_ = std::make_unique<OutboxUpload>(ctx_, windows_);
    logAction("Loading Bayes form");
    bayes_ = std::make_unique<bayes::BayesFilter>(ctx_);
    bayes_->loadWordHash();
    logAction("Loading filters form");
    logAction("Loading server filters");
    serverFilters_.setScorer(bayes_.get());
    serverFilters_.reloadFilters(false);
    logAction("Loading local filters");
    localFilters_.setScorer(bayes_.get());
    localFilters_.reloadFilters(true);

    showStage("Applying Settings");
    logAction("Applying settings");
    readSettings();
    logAction("Setting tray picture");
    logAction("Loading spam count");
    totalSpamCount_ = ctx_.globalSpamCount();

    logAction("Hiding splash screen");
    windows_.hideSplash();
    windows_.pumpEvents();
    logAction("Displaying tray icon");
    windows_.showTrayIcon(tray_.startTip());
    windows_.pumpEvents();
    showPassIdle();

    // The first pass starts from the timer once the window is up, never from here.
    const bool scanOnStart = ctx_.settings.get("ScanOnStart", Value(false)).flag();
    const bool retrieveOnStart = ctx_.settings.get("RetrieveOnStart", Value(false)).flag();
    if (scanOnStart || retrieveOnStart) autoScan_.armFirstPass(scanOnStart ? PassKind::Scan : PassKind::Download);

    applyWindowSize();
    // The reminder component never runs here, so only its absence is logged.
    logAction("Brindle component not running");
    showUpdateStatus();
    // Compared as text on purpose: " 1 " or -1 don't hide the window.
    if (ctx_.settings.get("STARTMIN", Value("")).text() == "1") {
      logAction("Hiding main form");
      windows_.hideMain();
    } else {
      windows_.showMain();
    }
    logAction("Vonel startup complete, ready for some action.");
    logAction(std::string(50, '='));
    windows_.setupMenus();
    if (!ctx_.settings.get("ShowScannerFirst", Value(true)).flag()) windows_.switchToMailer();
    updateCheckTimer_.start();
    windows_.setBusy(false);
    delayedStartTimer_.start();
  });
  return StartupResult::Started;
}

void MailController::showUpdateStatus() {
  if (ctx_.settings.get("DisableAutoUpdateCheck", Value(false)).flag()) {
    logAction("Auto update disabled");
    windows_.setStatusText("Vonel auto-update disabled");
  } else {
    logAction("Update Check Enabled");
    windows_.setStatusText("Auto-update enabled");
  }
}

void MailController::readSettings() {
  autoDelete_ = ctx_.settings.get("AUTODELETE", Value(0)).numberOr(0) == 1;
  soundOn_ = ctx_.settings.get("AUDIO", Value(0)).numberOr(0) == 1;
}

void MailController::setSound(bool on) {
  soundOn_ = on;
  ctx_.settings.set("AUDIO", Value(on ? 1 : 0));
}

void MailController::applyWindowSize() {
  auto& settings = ctx_.settings;
  if (settings.get("MainWindowState", Value(0)).numberOr(0) == static_cast<int>(WindowState::Maximised)) {
    logAction("Maximising main screen");
    windows_.maximise();
    return;
  }
  logAction("Restoring main screen");
  const double width = settings.get("MainWidth", Value(7668)).numberOr(7668);
  const double height = settings.get("MainHeight", Value(7300)).numberOr(7300);
  const WindowGeometry screen = windows_.screenTwips();
  if (width > 0.95 * screen.widthTwips && height > 0.95 * screen.heightTwips) {
    windows_.maximise();
  } else {
    windows_.resizeTwips(static_cast<int>(width), static_cast<int>(height));
  }
}

void MailController::onDelayedStart() {
  if (!ctx_.remindersUnavailable) logAction("Scanning BRD events");
  dayWatch_.start();
  windows_.setBusy(false);
}

bool MailController::outboxHoldsMail() const { return !send::listOutboxFiles(ctx_.folders.outboxFolderPath).empty(); }

bool MailController::exitProgram(ExitQuestions questions) {
  auto& log = ctx_.log;
  const std::string version = log.info().version;
  bool keepRunning = false;
  guardedStep(log, log_places::kExitProg, kLogModule, [&] {
    logAction("Beginning shutdown");
    if (outbox_ && outbox_->running()) {
      logAction("Still sending mail, stopping transfer.");
      outbox_->cancel();
      waitWhileEventsRun(kShutdownWaitMs);
    }
    if (passRunning_) {
      logAction("Still checking for mail. Stopping transfer.");
      if (pop3_) pop3_->session().cancelMail();
      passRunning_ = false;
      waitWhileEventsRun(kShutdownWaitMs);
    }
    if (questions == ExitQuestions::Ask && outboxHoldsMail() &&
        ctx_.prompt.ask("You still have mail in your outbox. Are you sure you want to quit?", Buttons::YesNo,
                        "Vonel") == Answer::No) {
      keepRunning = true;
      return;
    }
    logAction("Saving window size");
    const WindowGeometry geometry = windows_.geometryTwips();
    ctx_.settings.set("MainWidth", Value(geometry.widthTwips));
    ctx_.settings.set("MainHeight", Value(geometry.heightTwips));
    logAction("Saving window state");
    ctx_.settings.set("MainWindowState", Value(static_cast<int>(geometry.state)));
    logAction("Removing Tray Icon");
    windows_.removeTrayIcon();
    logAction("Saving settings");
    ctx_.settings.saveSettings(ctx_.settingsFile());
    logAction("Saving contacts");
    logAction("Unloading contacts");
    logAction("Hiding main form");
    windows_.hideMain();
    windows_.pumpEvents();
    logAction("Unloading forms");
    windows_.closeOtherWindows([this](const std::string& name) { logAction("Unloading " + name); });
  });
  if (keepRunning) return false;
  logAction("Writing log");
  log.writeActionsToLog();
  log.logEvent("Finished Shutdown of " + version);
  log.logEvent("Unloading main form");
  log.logEvent("Finished");
  return true;
}

}  // namespace vonel
