#include "ui/mailer/mailer_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <array>

#include "app/app_windows.h"
#include "app/qtext.h"
#include "core/log/log_places.h"
#include "core/store/folder_caches.h"
#include "core/store/tag_files.h"
#include "core/text/dates.h"
#include "ui/mailer/folder_tree.h"
#include "ui/mailer/mailer_toolbar.h"
#include "ui/mailer/message_list_pane.h"
#include "ui/mailer/message_preview.h"
#include "ui/mailer/new_folder_dialog.h"
#include "ui/pictures.h"
#include "ui/scanner/server_mail_model.h"
#include "ui/twips.h"

namespace vonel {
namespace {

namespace fs = std::filesystem;

constexpr int kDefaultWidthTwips = 9864;
// No height was ever given a default of its own; the width's serves.
constexpr int kDefaultHeightTwips = 9864;
constexpr int kDefaultTreeWidthTwips = 2580;

// The list's columns whose widths the settings keep, by column number.
constexpr std::array<std::pair<int, const char*>, 6> kColumnWidthKeys{{{0, "MLR_ICONWIDTH"},
                                                                       {1, "MLR_SIZEWIDTH"},
                                                                       {2, "MLR_FROMWIDTH"},
                                                                       {3, "MLR_SUBJECTWIDTH"},
                                                                       {4, "MLR_RECVWIDTH"},
                                                                       {5, "MLR_SENTWIDTH"}}};

QToolButton* paneButton(QWidget* parent, const char* name, const QString& picture, const QString& tip) {
  auto* button = new QToolButton(parent);
  button->setObjectName(name);
  button->setIcon(pictures::icon(picture));
  button->setAutoRaise(true);
  button->setToolTip(tip);
  button->setAccessibleName(tip);
  return button;
}

}  // namespace

MailerWindow::MailerWindow(AppContext& context, WindowHost& host, ServerMailModel& serverMail, QWidget* parent)
    : QMainWindow(parent),
      ctx_(context),
      host_(host),
      serverMail_(serverMail),
      folders_(context, *this),
      toolbar_(new MailerToolbar(this)),
      tree_(new FolderTree(context, this)),
      serverList_(new QTreeView(this)),
      list_(new MessageListPane(context, this)),
      preview_(new MessagePreview(context, this)) {
  setObjectName("frmMailer");
  setWindowTitle("Vonel Mailer");
  setWindowIcon(pictures::icon("vonel"));
  addToolBar(toolbar_);
  connect(toolbar_, &MailerToolbar::buttonClicked, this, &MailerWindow::onToolbarButton);
  connect(toolbar_, &MailerToolbar::menuEntryChosen, this, &MailerWindow::onToolbarMenuEntry);
  setCentralWidget(buildPanes());
  buildStatusBar();
  buildKeys();
  connectPanes();
  refreshAvailability();
}

MailerWindow::~MailerWindow() { list_->stopPopulating(); }

QWidget* MailerWindow::buildPanes() {
  // A click and the keyboard both make a node current.
  connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* node) { onNodeClicked(node); });

  leftPanes_ = new QSplitter(Qt::Vertical, this);
  leftPanes_->addWidget(tree_);
  leftPanes_->addWidget(buildServerList());
  leftPanes_->setStretchFactor(0, 3);
  leftPanes_->setStretchFactor(1, 1);

  rightPanes_ = new QSplitter(Qt::Vertical, this);
  rightPanes_->addWidget(list_);
  rightPanes_->addWidget(preview_);
  rightPanes_->setStretchFactor(0, 2);
  rightPanes_->setStretchFactor(1, 3);
  rightPanes_->handle(1)->setObjectName("imgHorDivide");
  rightPanes_->handle(1)->setAccessibleName("Divider between the message list and the preview");

  columns_ = new QSplitter(Qt::Horizontal, this);
  columns_->addWidget(leftPanes_);
  columns_->addWidget(rightPanes_);
  columns_->setStretchFactor(1, 1);
  columns_->handle(1)->setObjectName("imgVertDivide");
  columns_->handle(1)->setAccessibleName("Divider between the folders and the messages");
  return columns_;
}

QWidget* MailerWindow::buildServerList() {
  auto* panel = new QWidget(this);
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  auto* buttons = new QHBoxLayout;
  auto* scanButton = paneButton(panel, "imgScan", "scan", "Scan mail (F5)");
  auto* cleanButton = paneButton(panel, "imgScanDel", "delete", "Delete spam from server (Ctrl-F5)");
  auto* stopButton = paneButton(panel, "imgStop", "stop", "Stop");
  connect(scanButton, &QToolButton::clicked, this, &MailerWindow::scan);
  connect(cleanButton, &QToolButton::clicked, this, &MailerWindow::scanAndDelete);
  connect(stopButton, &QToolButton::clicked, this, &MailerWindow::stopMail);
  buttons->addWidget(scanButton);
  buttons->addWidget(cleanButton);
  buttons->addWidget(stopButton);
  buttons->addStretch();
  layout->addLayout(buttons);

  serverList_->setObjectName("ListServerMail");
  serverList_->setAccessibleName("Messages waiting on the servers");
  serverList_->setModel(&serverMail_);
  serverList_->setRootIsDecorated(false);
  serverList_->setUniformRowHeights(true);
  serverList_->setAllColumnsShowFocus(true);
  serverList_->setSelectionBehavior(QAbstractItemView::SelectRows);
  serverList_->setColumnHidden(static_cast<int>(ServerMailColumn::Number), true);
  connect(serverList_, &QTreeView::doubleClicked, this, &MailerWindow::readServerMessage);
  layout->addWidget(serverList_, 1);
  return panel;
}

void MailerWindow::buildStatusBar() {
  statusBar()->setObjectName("StatusBar1");
  countPanel_ = new QLabel(this);
  countPanel_->setObjectName("StatusBar1_1");
  countPanel_->setAccessibleName("Messages in the folder");
  hintPanel_ = new QLabel(this);
  hintPanel_->setObjectName("StatusBar1_2");
  hintPanel_->setAccessibleName("Hint");
  progressPanel_ = new QLabel(this);
  progressPanel_->setObjectName("StatusBar1_3");
  progressPanel_->setAccessibleName("Progress");
  statusBar()->addWidget(countPanel_);
  statusBar()->addWidget(hintPanel_, 1);
  statusBar()->addPermanentWidget(progressPanel_);
}

void MailerWindow::buildKeys() {
  auto* scanKey = new QShortcut(QKeySequence(Qt::Key_F5), this);
  connect(scanKey, &QShortcut::activated, this, &MailerWindow::scan);
  auto* cleanKey = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F5), this);
  connect(cleanKey, &QShortcut::activated, this, &MailerWindow::scanAndDelete);
}

void MailerWindow::connectPanes() {
  connect(list_, &MessageListPane::previewRequested, this,
          [this](const QString& file) { preview_->showMessage(fs::path(file.toStdString())); });
  connect(list_, &MessageListPane::clearPreview, preview_, &MessagePreview::clear);
  connect(list_, &MessageListPane::openRequested, this, [this](const QString& file) {
    if (host_.openMessageFile) host_.openMessageFile(fs::path(file.toStdString()));
  });
  connect(list_, &MessageListPane::countText, countPanel_, &QLabel::setText);
  connect(list_, &MessageListPane::folderCountHint, hintPanel_, &QLabel::setText);
  connect(list_, &MessageListPane::progressText, progressPanel_, &QLabel::setText);
  // A listing's last step leaves the panel, unless the mail pass has written there since.
  connect(list_, &MessageListPane::finished, this, [this] {
    if (!mailMoving_) progressPanel_->clear();
  });
  connect(list_, &MessageListPane::someUnread, this, [this] { tree_->showNodeAsUnread(); });
  connect(list_, &MessageListPane::noUnread, this, [this] { tree_->showNodeAsRead(); });
  connect(list_, &MessageListPane::unreadCompared, this,
          [this](int unreadRows) { tree_->compareUnread(tree_->chosenNode(), unreadRows); });
  connect(list_, &MessageListPane::showFilterChanged, toolbar_, &MailerToolbar::showFolderFilter);
}

void MailerWindow::refreshAvailability() {
  toolbar_->setWindowAvailable("newemail", bool(host_.openComposer));
  toolbar_->setWindowAvailable("contacts", bool(host_.openContacts));
  // Printing, replying and forwarding come with the composer.
  for (const char* key : {"print", "reply", "forward"}) toolbar_->setWindowAvailable(key, false);
  for (const auto& [entry, available] :
       {std::pair{"editlocal", bool(host_.openLocalRules)}, std::pair{"editserver", bool(host_.openServerRules)},
        std::pair{"applylocal", false}, std::pair{"selfromclipboard", false}, std::pair{"seldupes", false},
        std::pair{"archive", false}, std::pair{"importmail", false}, std::pair{"mailmerge", false}}) {
    if (auto* action = toolbar_->findChild<QAction*>(entry)) action->setEnabled(available);
  }
}

void MailerWindow::setupAccountMenus(const std::vector<AccountMenuEntry>& accounts) {
  toolbar_->setupAccountMenus(accounts);
}

void MailerWindow::logStep(std::string_view text) { ctx_.log.addAction(text, "Form_Load", log_places::kMailerModule); }

void MailerWindow::load() {
  logStep("Loading Mailer Form");
  logStep("Setting Window state");
  readWindowSettings();
  logStep("Setting col widths");
  QHeaderView* header = list_->view().header();
  for (const auto& [column, key] : kColumnWidthKeys) {
    const int width = ctx_.settings.get(key, Value(0)).numberOr(0);
    if (width > 0) header->resizeSection(column, twips::toPixels(*this, width));
  }
  logStep("Showing form");
  show();
  raise();
  activateWindow();
  logStep("Populating folders");
  populateFolders(false);
}

void MailerWindow::readWindowSettings() {
  const auto twipsSetting = [this](const char* key, int fallback) {
    return static_cast<int>(ctx_.settings.get(key, Value(fallback)).numberOr(fallback));
  };
  resize(twips::toPixels(*this, twipsSetting("MailerWidth", kDefaultWidthTwips)),
         twips::toPixels(*this, twipsSetting("MailerHeight", kDefaultHeightTwips)));
  const auto state = static_cast<WindowState>(twipsSetting("MailerWindowState", 0));
  if (state == WindowState::Maximised) setWindowState(windowState() | Qt::WindowMaximized);

  const int treeWidth = twips::toPixels(*this, twipsSetting("TreeViewWidth", kDefaultTreeWidthTwips));
  columns_->setSizes({treeWidth, std::max(1, width() - treeWidth)});
  // A height of 0 leaves that pair of panes to share the window by their stretch.
  const auto setHeights = [this, &twipsSetting](QSplitter* panes, const char* upperKey, const char* lowerKey) {
    const int upper = twipsSetting(upperKey, 0);
    const int lower = twipsSetting(lowerKey, 0);
    if (upper > 0 && lower > 0) panes->setSizes({twips::toPixels(*this, upper), twips::toPixels(*this, lower)});
  };
  setHeights(leftPanes_, "TreeViewHeight", "ServerListHeight");
  setHeights(rightPanes_, "ListViewHeight", "MessageViewHeight");
}

void MailerWindow::writeWindowSettings() {
  const auto store = [this](const char* key, int pixels) {
    ctx_.settings.set(key, Value(twips::fromPixels(*this, pixels)));
  };
  const WindowState state = isMaximized()   ? WindowState::Maximised
                            : isMinimized() ? WindowState::Minimised
                                            : WindowState::Normal;
  ctx_.settings.set("MailerWindowState", Value(static_cast<int>(state)));
  if (state == WindowState::Normal) {
    store("MailerWidth", width());
    store("MailerHeight", height());
  }
  store("TreeViewWidth", columns_->sizes().value(0));
  store("TreeViewHeight", leftPanes_->sizes().value(0));
  store("ServerListHeight", leftPanes_->sizes().value(1));
  store("ListViewHeight", rightPanes_->sizes().value(0));
  store("MessageViewHeight", rightPanes_->sizes().value(1));
  QHeaderView* header = list_->view().header();
  for (const auto& [column, key] : kColumnWidthKeys) store(key, header->sectionSize(column));
}

void MailerWindow::populateFolders(bool regenerate) { folders_.populateFolders(regenerate); }

void MailerWindow::onClearFolders() { tree_->clearFolders(); }

void MailerWindow::onAddFolder(std::string_view name, std::string_view parentName, std::string_view) {
  tree_->addFolder(toQString(name), toQString(parentName));
}

void MailerWindow::onFinishedAddingFolders() {
  ctx_.log.addAction("Finished adding folders", "cMailer_FinishedAddingFolders", log_places::kMailerModule);
  QTreeWidgetItem* inbox = tree_->nodeForFolder(ctx_.folders.inboxFolderPath);
  if (!inbox) {
    ctx_.log.addAction("Inbox not found, rescanning", "cMailer_FinishedAddingFolders", log_places::kMailerModule);
    // One more listing only: a store without an inbox would list for ever.
    if (!inboxRescanned_) {
      inboxRescanned_ = true;
      populateFolders(true);
    }
    return;
  }
  ctx_.log.addAction("Populating message folder", "cMailer_FinishedAddingFolders", log_places::kMailerModule);
  tree_->expandAll();
  QTreeWidgetItem* chosen = chosenKey_ ? tree_->nodeForKey(*chosenKey_) : nullptr;
  if (!chosen) chosen = inbox;
  {
    const QSignalBlocker quiet(tree_);
    tree_->setCurrentItem(chosen);
  }
  populateListView(chosen);
  tree_->setNodeColours();
  tree_->displaySpecialCounts();
}

void MailerWindow::letEventsRun() { QApplication::processEvents(); }

void MailerWindow::onNodeClicked(QTreeWidgetItem* node) {
  if (!node) return;
  if (list_->populating()) {
    list_->stopPopulating();
    QApplication::processEvents();
  }
  populateListView(node);
}

void MailerWindow::populateListView(QTreeWidgetItem* node) {
  chosenKey_ = FolderTree::keyOf(node);
  preview_->clear();
  list_->showFolder(tree_->folderOf(node), FolderTree::tagOf(node));
}

void MailerWindow::rescanAllCaches() {
  if (ctx_.noCacheMode) return;
  list_->rescanAll();
  populateFolders(false);
  tree_->setNodeColours();
}

void MailerWindow::onToolbarButton(const QString& key) {
  if (key == "scanner") emit showScanner();
  else if (key == "settings") emit showSettings();
  else if (key == "upanddown") emit sendAndReceive();
  else if (key == "sendrcvdel") emit sendReceiveAndDelete();
  else if (key == "unread") list_->cycleShowFilter();
  else if (key == "newemail" && host_.openComposer) host_.openComposer({});
  else if (key == "contacts" && host_.openContacts) host_.openContacts();
  else if (key == "close") hideForm();
  else if (QToolButton* button = toolbar_->button(key); button && button->menu()) button->showMenu();
}

void MailerWindow::onToolbarMenuEntry(const QString& buttonKey, const QString& entryKey) {
  if (const auto account = accountOfEntry(entryKey, "Account")) {
    emit sendReceiveAndDeleteFrom(*account);
  } else if (const auto download = accountOfEntry(entryKey, "DLM")) {
    emit downloadFrom(*download);
  } else if (entryKey == "upload") {
    emit uploadMail();
  } else if (entryKey == "download") {
    emit downloadMailNoUpload();
  } else if (entryKey == "updownwithclear") {
    emit upDownWithClear();
  } else if (entryKey == "newfolder") {
    newFolder();
  } else if (entryKey == "rescanfolders") {
    rescanAllCaches();
  } else if (entryKey == "editlocal" && host_.openLocalRules) {
    host_.openLocalRules();
  } else if (entryKey == "editserver" && host_.openServerRules) {
    host_.openServerRules();
  } else if (entryKey == "quit") {
    writeWindowSettings();
    hideForm();
    emit quitProgram();
  }
  (void)buttonKey;
}

void MailerWindow::newFolder() {
  const QString parent = FolderTree::keyOf(tree_->chosenNode());
  if (runNewFolderDialog(ctx_, fromQString(parent), this)) populateFolders(true);
}

void MailerWindow::showMailMoving(bool moving) {
  mailMoving_ = moving;
  toolbar_->showMailMoving(moving);
}

void MailerWindow::notifyFinishedGettingMail() {
  showMailMoving(false);
  tree_->setNodeColours();
  tree_->displaySpecialCounts();
}

void MailerWindow::notifyFinishedSendingMail() {
  auto& caches = list_->caches();
  for (const fs::path& folder : {ctx_.folders.outboxFolderPath, ctx_.folders.sentFolderPath}) {
    caches.rescan(folder);
    tree_->setNodeColour(tree_->nodeForFolder(folder));
  }
  tree_->displaySpecialCounts();
  QTreeWidgetItem* chosen = tree_->chosenNode();
  if (chosen && (chosen == tree_->nodeForFolder(ctx_.folders.outboxFolderPath) ||
                 chosen == tree_->nodeForFolder(ctx_.folders.sentFolderPath))) {
    list_->relist();
  }
}

void MailerWindow::showProgressMessage(const QString& text) { progressPanel_->setText(text); }

void MailerWindow::addNewMessage(const fs::path& file, const fs::path& folder, const message::Message& message) {
  store::addToUnreadTag(ctx_.log, folder, 0);
  message::Message arrived = message;
  arrived.setFilename(file.string());
  if (arrived.receiveDate.empty()) arrived.receiveDate = text::formatStoreDate(ctx_.clock.now());
  store::addToLastMessageTag(ctx_.log, ctx_.clock, folder, arrived);
  list_->caches().addMessage(folder, arrived);
  QTreeWidgetItem* node = tree_->nodeForFolder(folder);
  if (node && node == tree_->chosenNode()) list_->relist();
  tree_->setNodeColour(node);
}

void MailerWindow::hideForm() {
  writeWindowSettings();
  hide();
  emit hidden();
}

void MailerWindow::unloadNowPlease() {
  ctx_.log.addAction("Unloading mailer", "UnloadNowPlease", log_places::kMailerModule);
  close();
}

void MailerWindow::closeEvent(QCloseEvent* event) {
  list_->stopPopulating();
  if (event->spontaneous()) {
    // The window's close button only hides it; the program goes on.
    hideForm();
    event->ignore();
    return;
  }
  writeWindowSettings();
  QMainWindow::closeEvent(event);
}

}  // namespace vonel
