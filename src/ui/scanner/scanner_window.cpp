#include "ui/scanner/scanner_window.h"

#ifdef VONEL_HAVE_SOUND
#include <QSoundEffect>
#include <QUrl>
#endif

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "app/account_menu_entries.h"
#include "app/mail_controller.h"
#include "app/qtext.h"
#include "ui/errors/error_report_window.h"
#include "ui/log/log_window.h"
#include "ui/mailer/mailer_window.h"
#include "ui/pictures.h"
#include "ui/scanner/scanner_toolbar.h"
#include "ui/rules/rule_editor.h"
#include "ui/settings/account_wizard.h"
#include "ui/settings/settings_dialog.h"
#include "ui/scanner/splash_window.h"
#include "ui/scanner/tray_icon.h"
#include "ui/security/certificate_dialog.h"
#include "ui/source_window.h"
#include "ui/twips.h"

namespace vonel {
namespace {

const QString kNoSelection = QStringLiteral("Click an email in the list above to view the headers in this box.");

BlockTarget blockTarget(ServerMailCommand command) {
  switch (command) {
    case ServerMailCommand::BlockRecipient: return BlockTarget::Recipient;
    case ServerMailCommand::BlockSenderDomain: return BlockTarget::SenderDomain;
    case ServerMailCommand::BlockRecipientDomain: return BlockTarget::RecipientDomain;
    default: return BlockTarget::Sender;
  }
}

}  // namespace

ScannerWindow::ScannerWindow(AppContext& context)
    : ctx_(context),
      list_(new QTreeView(this)),
      headers_(new QPlainTextEdit(this)),
      messageNumber_(new QLabel(this)),
      statusPicture_(new QLabel(this)),
      statusText_(new QLabel(this)),
      timerText_(new QLabel(this)),
      listMenu_(new ServerMailMenu(this)),
      toolbar_(new ScannerToolbar(this)) {
  setObjectName("frmMain");
  setWindowTitle("Vonel");
  setWindowIcon(pictures::icon("vonel"));
  addToolBar(toolbar_);
  connect(toolbar_, &ScannerToolbar::buttonClicked, this, &ScannerWindow::onToolbarButton);
  connect(toolbar_, &ScannerToolbar::menuEntryChosen, this, &ScannerWindow::onToolbarMenuEntry);
  setCentralWidget(buildListAndHeaders());
  buildMenus();
  buildKeys();
  buildStatusBar();
  connect(listMenu_, &ServerMailMenu::chosen, this, &ScannerWindow::onListCommand);
  refreshAvailability();
}

ScannerWindow::~ScannerWindow() = default;

void ScannerWindow::attach(MailController& controller) {
  controller_ = &controller;
  // The rules change only while no pass judges with them; the list is judged
  // again afterwards, saved or not, as the editor keeps its rules in memory.
  const auto editRules = [this](bool local, const std::string& ruleName) {
    if (controller_->passRunning()) return;
    auto& engine = local ? controller_->localFilters() : controller_->serverFilters();
    if (ruleName.empty()) runRuleEditor(ctx_, engine, local, this);
    else runRuleEditorOn(ctx_, engine, local, ruleName, this);
    controller_->rescanCachedMail();
  };
  host_.openLocalRules = [editRules] { editRules(true, {}); };
  host_.openServerRules = [editRules] { editRules(false, {}); };
  host_.editRule = [editRules](const std::string& name) { editRules(false, name); };
  host_.openMailer = [this] { showMailer(); };
  refreshAvailability();
}

QWidget* ScannerWindow::buildListAndHeaders() {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  auto* note = new QLabel(
      "This preview window shows the mail waiting to be downloaded. Click Send/Receive to retrieve messages.", page);
  note->setObjectName("lblNote");
  note->setWordWrap(true);
  layout->addWidget(note);

  list_->setObjectName("ListServerMail");
  list_->setAccessibleName("Messages waiting on the servers");
  list_->setModel(&model_);
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setSelectionBehavior(QAbstractItemView::SelectRows);
  list_->setColumnHidden(static_cast<int>(ServerMailColumn::Number), true);
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  const std::array<int, 8> widths{70, 55, 200, 260, 110, 160, 40, 130};
  for (std::size_t column = 0; column < widths.size(); ++column) {
    list_->header()->resizeSection(static_cast<int>(column), widths[column]);
  }
  connect(list_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &ScannerWindow::onCurrentRowChanged);
  connect(list_, &QWidget::customContextMenuRequested, this, &ScannerWindow::onContextMenu);

  auto* lower = new QWidget(this);
  auto* lowerLayout = new QVBoxLayout(lower);
  lowerLayout->setContentsMargins(0, 0, 0, 0);
  auto* caption = new QHBoxLayout;
  auto* headersLabel = new QLabel("&Headers:", lower);
  headersLabel->setObjectName("lblHeaders");
  headersLabel->setBuddy(headers_);
  messageNumber_->setObjectName("lblMessageNumber");
  messageNumber_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  caption->addWidget(headersLabel);
  caption->addStretch();
  caption->addWidget(messageNumber_);
  lowerLayout->addLayout(caption);
  headers_->setObjectName("txtHeaders");
  headers_->setReadOnly(true);
  headers_->setLineWrapMode(QPlainTextEdit::NoWrap);
  headers_->setPlainText(kNoSelection);
  lowerLayout->addWidget(headers_);

  auto* splitter = new QSplitter(Qt::Vertical, page);
  splitter->addWidget(list_);
  splitter->addWidget(lower);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 1);
  layout->addWidget(splitter);
  return page;
}

void ScannerWindow::buildMenus() {
  auto* fileMenu = menuBar()->addMenu("&File");
  fileMenu->setObjectName("mnuFile");
  auto* scan = fileMenu->addAction("&Scan");
  scan->setObjectName("mnuScan");
  connect(scan, &QAction::triggered, this, [this] {
    if (controller_) controller_->scanAll();
  });
  auto* silent = fileMenu->addAction("S&ilent");
  silent->setObjectName("mnuSilent");
  silent->setCheckable(true);
  connect(silent, &QAction::toggled, this, [this](bool quiet) {
    if (controller_) controller_->setSound(!quiet);
  });
  fileMenu->addSeparator();
  auto* exit = fileMenu->addAction("E&xit");
  exit->setObjectName("mnuExit");
  connect(exit, &QAction::triggered, this, &ScannerWindow::onExitTriggered);
  menuBar()->addMenu(buildHelpMenu());
  toolbar_->button("help")->setMenu(helpMenu_);
}

QMenu* ScannerWindow::buildHelpMenu() {
  helpMenu_ = new QMenu("&Help", this);
  helpMenu_->setObjectName("mnuHelp");
  auto* log = helpMenu_->addAction("View &Log");
  log->setObjectName("mnuViewLog");
  connect(log, &QAction::triggered, this, [this] { showLogWindow(ctx_, this); });
  auto* report = helpMenu_->addAction("&Report a Problem...");
  report->setObjectName("mnuReportProblem");
  connect(report, &QAction::triggered, this,
          [this] { showErrorReportWindow(ctx_, "A problem reported by the user.", {}, this); });
  helpMenu_->addSeparator();
  auto* about = helpMenu_->addAction("&About Vonel");
  about->setObjectName("mnuAbout");
  connect(about, &QAction::triggered, this, [this] {
    QMessageBox::about(this, "About Vonel",
                       "Vonel " + toQString(ctx_.log.info().version) +
                           "\n\nReads the headers waiting on your mail servers, judges them by your rules and "
                           "a filter trained on your own mail, and deletes junk before it is downloaded.");
  });
  return helpMenu_;
}

// The keys work wherever the focus is in the window.
void ScannerWindow::buildKeys() {
  const auto key = [this](QKeySequence sequence, std::function<void(MailController&)> command) {
    auto* shortcut = new QShortcut(sequence, this);
    connect(shortcut, &QShortcut::activated, this, [this, command = std::move(command)] {
      if (controller_) command(*controller_);
    });
  };
  key(QKeySequence(Qt::Key_F5), [](MailController& c) { c.scan(); });
  key(QKeySequence(Qt::CTRL | Qt::Key_F5), [](MailController& c) { c.scanAndDelete(); });
  key(QKeySequence(Qt::Key_F2), [](MailController& c) { c.downloadOnly(); });
  key(QKeySequence(Qt::CTRL | Qt::Key_F2), [](MailController& c) { c.downloadAndDelete(); });
  key(QKeySequence(Qt::Key_F3), [](MailController& c) { c.sendOutboxIfIdle(); });
  auto* mailer = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Space), this);
  connect(mailer, &QShortcut::activated, this, &ScannerWindow::switchToMailer);
}

void ScannerWindow::buildStatusBar() {
  statusBar()->setObjectName("SB1");
  auto* progress = new QWidget(this);
  progress->setObjectName("SB1_1");
  auto* layout = new QHBoxLayout(progress);
  layout->setContentsMargins(0, 0, 0, 0);
  statusPicture_->setObjectName("SB1_1_picture");
  statusText_->setObjectName("SB1_1_text");
  statusText_->setAccessibleName("Progress");
  layout->addWidget(statusPicture_);
  layout->addWidget(statusText_, 1);
  statusPace_ = new QTimer(this);
  statusPace_->setSingleShot(true);
  statusPace_->setInterval(100);
  connect(statusPace_, &QTimer::timeout, this, [this] {
    if (statusText_->text() == statusLatest_) return;
    showStatusNow();
    statusPace_->start();
  });
  timerText_->setObjectName("SB1_2");
  timerText_->setAccessibleName("Next scan");
  statusBar()->addWidget(progress, 1);
  statusBar()->addPermanentWidget(timerText_);
}

void ScannerWindow::refreshAvailability() {
  toolbar_->setWindowAvailable("newmail", bool(host_.openComposer));
  toolbar_->setWindowAvailable("mailer", bool(host_.openMailer));
  toolbar_->setWindowAvailable("filters", host_.openBayesWindow || host_.openServerRules);
  for (const auto& [entry, hook] : {std::pair{"localfilters", bool(host_.openLocalRules)},
                                    std::pair{"serverfilters", bool(host_.openServerRules)}}) {
    if (auto* action = toolbar_->findChild<QAction*>(entry)) action->setEnabled(hook);
  }
  toolbar_->setWindowAvailable("contacts", bool(host_.openContacts));
  toolbar_->setWindowAvailable("cms", bool(host_.openTickets));
  listMenu_->setAvailable(ServerMailCommand::MarkJunk, bool(host_.markJunk));
  listMenu_->setAvailable(ServerMailCommand::CreateFilter, bool(host_.createRuleFrom));
  listMenu_->setAvailable(ServerMailCommand::EditFilter, bool(host_.editRule));
  listMenu_->setAvailable(ServerMailCommand::ReadMessage, bool(host_.readMessage));
  listMenu_->setAvailable(ServerMailCommand::Bounce, bool(host_.bounce));
  if (auto* reinforce = toolbar_->findChild<QAction*>("reinforce")) reinforce->setEnabled(bool(host_.reinforce));
  if (mailer_) mailer_->refreshAvailability();
}

void ScannerWindow::onExitTriggered() {
  if (onExit && onExit()) QApplication::quit();
}

void ScannerWindow::showSplash() {
  if (!splash_) splash_ = std::make_unique<SplashWindow>();
  splash_->show();
}

void ScannerWindow::splashStatus(std::string_view stage) {
  if (splash_) splash_->showStatus(toQString(stage));
}

void ScannerWindow::hideSplash() {
  if (splash_) splash_->hide();
}

bool ScannerWindow::runAccountWizard() { return vonel::runAccountWizard(ctx_, this); }

void ScannerWindow::setBusy(bool busy) {
  if (busy) QApplication::setOverrideCursor(Qt::WaitCursor);
  else QApplication::restoreOverrideCursor();
}

void ScannerWindow::setupListView() {
  model_.clear();
  showHeaders(nullptr, {});
  QApplication::processEvents();
}

void ScannerWindow::showTicketButton(bool show) { toolbar_->showTicketButton(show); }

void ScannerWindow::showPassRunning(bool running) {
  toolbar_->showPassRunning(running);
  if (!mailer_) return;
  if (running) mailer_->showMailMoving(true);
  else mailer_->notifyFinishedGettingMail();
}

void ScannerWindow::buildTray() {
  tray_ = new TrayIcon(this);
  connect(tray_, &TrayIcon::showRequested, this, &ScannerWindow::showMain);
  connect(tray_, &TrayIcon::scanRequested, this, [this] {
    if (controller_) controller_->scanAll();
  });
  connect(tray_, &TrayIcon::exitRequested, this, &ScannerWindow::onExitTriggered);
}

void ScannerWindow::showTrayIcon(std::string_view tip) {
  if (!TrayIcon::available()) return;
  if (!tray_) buildTray();
  tray_->show(toQString(tip));
}

void ScannerWindow::removeTrayIcon() {
  leaving_ = true;
  if (tray_) tray_->hide();
}

void ScannerWindow::setStatusText(std::string_view text) {
  statusLatest_ = toQString(text);
  if (statusPace_->isActive()) return;
  showStatusNow();
  statusPace_->start();
}

void ScannerWindow::showStatusNow() {
  statusText_->setText(statusLatest_);
  if (mailer_) mailer_->showProgressMessage(statusLatest_);
}

void ScannerWindow::showStatusError(bool error) {
  statusPicture_->setPixmap(error ? pictures::rendered("tray_error", {16, 16}, devicePixelRatioF()) : QPixmap());
}

void ScannerWindow::setTimerStatus(std::string_view text) { timerText_->setText(toQString(text)); }

void ScannerWindow::showTrayError(std::string_view text) {
  if (tray_) tray_->showBalloon(toQString(text), QSystemTrayIcon::Warning);
}

void ScannerWindow::showTrayPicture(TrayPicture picture, std::string_view tip) {
  if (tray_) tray_->showPicture(picture, toQString(tip));
}

void ScannerWindow::playSound(const std::filesystem::path& wave) {
#ifdef VONEL_HAVE_SOUND
  if (!std::filesystem::exists(wave)) return;
  auto* effect = static_cast<QSoundEffect*>(chime_);
  if (!effect) chime_ = effect = new QSoundEffect(this);
  effect->setSource(QUrl::fromLocalFile(QString::fromStdString(wave.string())));
  effect->play();
#else
  (void)wave;
#endif
}

void ScannerWindow::addServerToLists(const std::string& title) { model_.addServer(toQString(title)); }

bool ScannerWindow::setServerStatus(const std::string& title, std::string_view text) {
  return model_.setServerStatus(toQString(title), toQString(text));
}

void ScannerWindow::showConnectionError(std::string_view text) { ctx_.prompt.ask(text, Buttons::Ok, "Vonel"); }

// Asked once the session has reported its failure, from the event loop.
void ScannerWindow::certificateUntrusted(const UntrustedCertificate& certificate) {
  QTimer::singleShot(0, this, [this, certificate] { askToTrust(certificate); });
}

void ScannerWindow::askToTrust(const UntrustedCertificate& certificate) {
  CertificateDialog dialog(ctx_, certificate, this);
  if (dialog.exec() != QDialog::Accepted || !controller_) return;
  const auto runAgain = [controller = controller_, certificate] {
    if (certificate.service == MailService::Pop3) {
      controller->scanFrom(certificate.account);
    } else {
      controller->sendOutbox();
    }
  };
  if (!controller_->passRunning()) return runAgain();
  auto* once = new QObject(this);
  connect(controller_, &MailController::passEnded, once, [once, runAgain] {
    once->deleteLater();
    runAgain();
  });
}

void ScannerWindow::addServerMessage(const message::Message& m, long number, const std::string&,
                                     const std::string& server) {
  model_.add(messageRow(m, number, server));
}

std::string ScannerWindow::currentKey() const {
  const QModelIndex current = list_->currentIndex();
  if (!current.isValid()) return {};
  const ServerMailRow& row = model_.row(current.row());
  // A row without a server isn't a message.
  if (row.kind != ServerMailRowKind::Message || row.cell(ServerMailColumn::Server).isEmpty()) return {};
  return fromQString(row.key);
}

const message::Message* ScannerWindow::currentMessage() const {
  return controller_ ? controller_->scannedMessage(currentKey()) : nullptr;
}

std::vector<std::string> ScannerWindow::selectedKeys() const {
  QModelIndexList rows = list_->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
  std::vector<std::string> keys;
  for (const QModelIndex& index : rows) {
    const ServerMailRow& row = model_.row(index.row());
    if (row.kind == ServerMailRowKind::Message && !row.key.isEmpty()) keys.push_back(fromQString(row.key));
  }
  return keys;
}

void ScannerWindow::onCurrentRowChanged() {
  const std::string key = currentKey();
  showHeaders(currentMessage(), toQString(key));
}

void ScannerWindow::showHeaders(const message::Message* message, const QString& key) {
  if (!message) {
    headers_->setPlainText(kNoSelection);
    messageNumber_->clear();
    return;
  }
  headers_->setPlainText(toQString(message->headers));
  messageNumber_->setText("Msg: " + key + " on " + toQString(controller_->accountServer(message->fromAccount)));
}

void ScannerWindow::onContextMenu(const QPoint& position) {
  const QModelIndex index = list_->indexAt(position);
  if (!index.isValid() || !controller_) return;
  // A click on a selected row keeps the selection, so a command can act on all of it.
  auto* selection = list_->selectionModel();
  const auto keep = selection->isRowSelected(index.row(), {}) ? QItemSelectionModel::NoUpdate
                                                              : QItemSelectionModel::ClearAndSelect;
  selection->setCurrentIndex(index, keep | QItemSelectionModel::Rows);
  const std::string key = currentKey();
  const message::Message* message = controller_->scannedMessage(key);
  if (!message) return;
  ServerMailMenuState state;
  state.messageNumber = QString::number(message->messageNumThisAcc);
  state.server = toQString(controller_->accountServer(message->fromAccount));
  state.filterReason = toQString(message->filterReason);
  state.readOnServerDisabled = ctx_.settings.get("DisableReadOnServer", Value(false)).flag();
  state.senderBlocked = controller_->blocked(BlockTarget::Sender, key);
  state.recipientBlocked = controller_->blocked(BlockTarget::Recipient, key);
  state.senderDomainBlocked = controller_->blocked(BlockTarget::SenderDomain, key);
  state.recipientDomainBlocked = controller_->blocked(BlockTarget::RecipientDomain, key);
  state.recipientIgnored = controller_->recipientIgnored(key);
  listMenu_->prepare(state);
  listMenu_->popup(list_->viewport()->mapToGlobal(position));
}

void ScannerWindow::onListCommand(ServerMailCommand command, bool undo) {
  if (!controller_) return;
  const std::string key = currentKey();
  const message::Message* message = controller_->scannedMessage(key);
  switch (command) {
    case ServerMailCommand::BlockSender:
    case ServerMailCommand::BlockRecipient:
    case ServerMailCommand::BlockSenderDomain:
    case ServerMailCommand::BlockRecipientDomain:
      controller_->blockOrUnblock(blockTarget(command), !undo, selectedKeys());
      break;
    case ServerMailCommand::IgnoreRecipient:
      controller_->ignoreOrNot(undo, key);
      break;
    case ServerMailCommand::MarkJunk:
      if (host_.markJunk) host_.markJunk(selectedKeys(), true);
      break;
    case ServerMailCommand::CreateFilter:
      if (host_.createRuleFrom && message) host_.createRuleFrom(*message);
      break;
    case ServerMailCommand::EditFilter:
      if (host_.editRule && message) host_.editRule(message->filterReason);
      break;
    case ServerMailCommand::ReadMessage:
    case ServerMailCommand::ViewSource:
    case ServerMailCommand::Download:
      if (message) {
        const FetchPurpose purpose = command == ServerMailCommand::ReadMessage ? FetchPurpose::Read
                                     : command == ServerMailCommand::ViewSource ? FetchPurpose::ViewSource
                                                                                : FetchPurpose::Download;
        controller_->fetchSpecificMessage(purpose, message->fromAccount, message->messageNumThisAcc);
      }
      break;
    case ServerMailCommand::Bounce:
      if (host_.bounce && message) host_.bounce(*message);
      break;
  }
}

void ScannerWindow::readListSettings() {
  QFont font = list_->font();
  font.setPointSizeF(ctx_.settings.get("FontSize", Value(8)).numberOr(8));
  list_->setFont(font);
  if (auto* silent = findChild<QAction*>("mnuSilent")) {
    const QSignalBlocker quiet(silent);
    silent->setChecked(controller_ && !controller_->soundOn());
  }
}

void ScannerWindow::setupMenus() {
  toolbar_->setupAccountMenus(accountMenuEntries(ctx_.settings));
  if (mailer_) mailer_->setupAccountMenus(accountMenuEntries(ctx_.settings));
  readListSettings();
}

void ScannerWindow::showMessage(const message::Message& message) {
  if (host_.readMessage) host_.readMessage(message);
}

void ScannerWindow::openFile(const std::filesystem::path& file) { showSourceWindow(file, this); }

void ScannerWindow::showSettings() {
  if (controller_) showSettingsDialog(ctx_, *controller_, this);
}

void ScannerWindow::storeWindowState() {
  ctx_.settings.set("MainWindowState", Value(static_cast<int>(geometryTwips().state)));
}

void ScannerWindow::switchToMailer() {
  if (!host_.openMailer) return;
  storeWindowState();
  host_.openMailer();
  hide();
}

WindowGeometry ScannerWindow::screenTwips() const {
  const QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
  if (!screen) return {};
  const QSize size = screen->availableGeometry().size();
  return {twips::fromPixels(*this, size.width()), twips::fromPixels(*this, size.height())};
}

WindowGeometry ScannerWindow::geometryTwips() const {
  const WindowState state = isMaximized()   ? WindowState::Maximised
                            : isMinimized() ? WindowState::Minimised
                                            : WindowState::Normal;
  return {twips::fromPixels(*this, width()), twips::fromPixels(*this, height()), state};
}

void ScannerWindow::maximise() { setWindowState(windowState() | Qt::WindowMaximized); }

void ScannerWindow::resizeTwips(int widthTwips, int heightTwips) {
  resize(twips::toPixels(*this, widthTwips), twips::toPixels(*this, heightTwips));
}

void ScannerWindow::showMain() {
  show();
  raise();
  activateWindow();
}

// Without a tray a hidden window could never be reached again: it is
// minimised instead, but for the last hide of a program that is leaving.
bool ScannerWindow::mainVisible() const { return isVisible() && !isMinimized(); }

void ScannerWindow::openComposer(const message::ComposeRequest& request) {
  if (host_.openComposer) host_.openComposer(request);
}

void ScannerWindow::showMessageFile(const std::filesystem::path& file) {
  if (host_.openMessageFile) host_.openMessageFile(file);
}

void ScannerWindow::hideMain() {
  if (tray_ || leaving_) hide();
  else showMinimized();
}

void ScannerWindow::closeOtherWindows(const std::function<void(const std::string&)>& onClose) {
  const auto windows = QApplication::topLevelWidgets();
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    QWidget* window = *it;
    if (window == this || !window->isVisible()) continue;
    onClose(fromQString(window->objectName().isEmpty() ? window->windowTitle() : window->objectName()));
    if (window == mailer_.get()) mailer_->unloadNowPlease();
    else window->close();
  }
}

void ScannerWindow::pumpEvents() { QApplication::processEvents(); }

void ScannerWindow::closeToTray() {
  storeWindowState();
  hideMain();
  QApplication::processEvents();
}

void ScannerWindow::closeEvent(QCloseEvent* event) {
  if (event->spontaneous()) {
    closeToTray();
    event->ignore();
    return;
  }
  QMainWindow::closeEvent(event);
}

}  // namespace vonel
