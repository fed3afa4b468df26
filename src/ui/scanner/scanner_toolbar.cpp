#include "ui/scanner/scanner_toolbar.h"

#include <QKeyEvent>
#include <QMenu>
#include <QToolButton>

#include "app/qtext.h"
#include "ui/pictures.h"

namespace vonel {
namespace {

constexpr int kIconSize = 24;

const QString kSendReceiveTip = QStringLiteral("Send the outbox and download new mail");
const QString kStopTip = QStringLiteral("Stop the mail check that is running");

}  // namespace

ScannerToolbar::ScannerToolbar(QWidget* parent) : QToolBar(QStringLiteral("Toolbar"), parent) {
  setObjectName("Toolbar1");
  setAccessibleName("Toolbar");
  setIconSize(QSize(kIconSize, kIconSize));
  // Pictures alone keep every button in view at the window's first size; the
  // one a user presses most also says what it is.
  setToolButtonStyle(Qt::ToolButtonIconOnly);
  connect(this, &QToolBar::toolButtonStyleChanged, this, &ScannerToolbar::onToolButtonStyleChanged);
  connect(this, &QToolBar::iconSizeChanged, this, [this](const QSize& size) {
    for (auto& [key, entry] : buttons_) entry.button->setIconSize(size);
  });

  addButton("sendrcvdel", "sendrcvdel", "Download and Delete Spam", "Check the servers, delete spam there and download the rest");
  addButton("cms", "cms", "Tickets", "Open the ticket list");
  addButton("brd", "brd", "Reminders", "Show the reminders");
  addButton("newmail", "newmail", "New Mail", "Write a new message");
  addButton("upanddown", "sendreceive", "Send/Receive", kSendReceiveTip);
  addButton("mailer", "mailer", "Mailer", "Switch to the mailer window");
  addButton("scan", "scan", "Scan", "Check the servers for waiting mail without downloading it");
  addButton("delete", "delete", "Scan and Delete", "Check the servers and delete the spam there");
  addButton("filters", "filters", "Filters", "Open the Bayes filter");
  addButton("settings", "settings", "Settings", "Change the settings");
  addButton("help", "help", "Help", "Help and error reports");
  addButton("stop", "stop", "Stop", kStopTip);
  addButton("close", "close", "Close", "Hide this window; Vonel goes on running in the tray");
  addButton("contacts", "contacts", "Contacts", "Open the contacts");

  for (const char* key : {"sendrcvdel", "scan", "delete"}) addMenu(key);
  addMenu("upanddown");
  addFixedEntry("upanddown", "upload", "Send Outbox");
  addFixedEntry("upanddown", "download", "Download Only");
  addFixedEntry("upanddown", "updownwithclear", "Download, Delete Spam and Send");
  addMenu("close");
  addFixedEntry("close", "quit", "Quit");
  addMenu("filters");
  addFixedEntry("filters", "localfilters", "Local Filters");
  addFixedEntry("filters", "serverfilters", "Server Filters");
  addFixedEntry("filters", "reinforce", "Reinforce from the List");
  addMenu("settings");
  addFixedEntry("settings", "checkupdate", "Check for Update");

  onToolButtonStyleChanged(toolButtonStyle());
  // There is no reminder component on this system.
  buttons_.at("brd").place->setVisible(false);
  showTicketButton(false);
  showPassRunning(false);
}

void ScannerToolbar::addButton(const QString& key, const QString& picture, const QString& caption,
                               const QString& description) {
  auto* button = new QToolButton(this);
  button->setObjectName(key);
  button->setText(caption);
  button->setAccessibleName(caption);
  setDescription(button, description);
  button->setIcon(pictures::icon(picture));
  button->setIconSize(iconSize());
  button->setToolButtonStyle(toolButtonStyle());
  button->setAutoRaise(true);
  button->installEventFilter(this);
  connect(button, &QToolButton::clicked, this, [this, key] { emit buttonClicked(key); });
  buttons_[key] = Button{button, addWidget(button), nullptr, {}};
}

void ScannerToolbar::setDescription(QToolButton* button, const QString& description) {
  button->setToolTip(button->text() + "\n" + description);
  button->setAccessibleDescription(description);
}

void ScannerToolbar::addMenu(const QString& key) {
  Button& entry = buttons_.at(key);
  entry.menu = new QMenu(entry.button->text(), this);
  entry.menu->setObjectName(key + "Menu");
  entry.button->setPopupMode(QToolButton::MenuButtonPopup);
  connect(entry.menu, &QMenu::triggered, this,
          [this, key](QAction* action) { emit menuEntryChosen(key, action->objectName()); });
  updateMenuArrow(entry);
}

void ScannerToolbar::addFixedEntry(const QString& buttonKey, const QString& entryKey, const QString& caption) {
  Button& entry = buttons_.at(buttonKey);
  entry.menu->addAction(caption)->setObjectName(entryKey);
  updateMenuArrow(entry);
}

void ScannerToolbar::addAccountEntry(Button& button, const QString& entryKey, const QString& caption) {
  QAction* action = button.menu->addAction(caption);
  action->setObjectName(entryKey);
  button.accountEntries.push_back(action);
}

void ScannerToolbar::addAccountSeparator(Button& button) {
  QAction* separator = button.menu->addSeparator();
  // What a screen reader meets between the two groups.
  separator->setText("----");
  button.accountEntries.push_back(separator);
}

void ScannerToolbar::clearAccountEntries(Button& button) {
  // Deleted later: the rebuild may come from a handler of one of these entries.
  for (QAction* action : button.accountEntries) {
    button.menu->removeAction(action);
    action->setParent(nullptr);
    action->deleteLater();
  }
  button.accountEntries.clear();
}

// A button offers its arrow only when the menu has something in it.
void ScannerToolbar::updateMenuArrow(Button& button) {
  button.button->setMenu(button.menu->isEmpty() ? nullptr : button.menu);
}

void ScannerToolbar::setupAccountMenus(const std::vector<AccountMenuEntry>& accounts) {
  Button& scan = buttons_.at("scan");
  Button& remove = buttons_.at("delete");
  Button& clean = buttons_.at("sendrcvdel");
  Button& upAndDown = buttons_.at("upanddown");
  for (Button* button : {&scan, &remove, &clean, &upAndDown}) clearAccountEntries(*button);

  auto name = [](const AccountMenuEntry& account) { return toQString(account.name); };
  auto key = [](const char* prefix, const AccountMenuEntry& account) {
    return QString::fromLatin1(prefix) + QString::number(account.index);
  };
  for (const AccountMenuEntry& account : accounts) {
    addAccountEntry(scan, key("Account", account), "Scan: " + name(account));
    addAccountEntry(remove, key("Account", account), "Scan and Delete: " + name(account));
    addAccountEntry(clean, key("Account", account), "Download Mail and Delete Spam: " + name(account));
  }
  if (!accounts.empty()) {
    addAccountSeparator(upAndDown);
    addAccountSeparator(remove);
  }
  for (const AccountMenuEntry& account : accounts) {
    addAccountEntry(upAndDown, key("DLM", account), "Download Mail from " + name(account));
    addAccountEntry(remove, key("DELALL", account), "Delete ALL from: " + name(account));
  }
  for (Button* button : {&scan, &remove, &clean, &upAndDown}) updateMenuArrow(*button);
}

void ScannerToolbar::showTicketButton(bool show) { buttons_.at("cms").place->setVisible(show); }

void ScannerToolbar::showPassRunning(bool running) {
  QToolButton* upAndDown = buttons_.at("upanddown").button;
  upAndDown->setIcon(pictures::icon(running ? "stop" : "sendreceive"));
  setDescription(upAndDown, running ? kStopTip : kSendReceiveTip);
  buttons_.at("stop").button->setEnabled(running);
}

void ScannerToolbar::setWindowAvailable(const QString& key, bool available) {
  if (QToolButton* found = button(key)) found->setEnabled(available);
}

QToolButton* ScannerToolbar::button(const QString& key) const {
  const auto found = buttons_.find(key);
  return found == buttons_.end() ? nullptr : found->second.button;
}

void ScannerToolbar::onToolButtonStyleChanged(Qt::ToolButtonStyle style) {
  for (auto& [key, entry] : buttons_) entry.button->setToolButtonStyle(style);
  if (style == Qt::ToolButtonIconOnly) buttons_.at("upanddown").button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

bool ScannerToolbar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto* button = qobject_cast<QToolButton*>(watched);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (button && button->menu() && (key == Qt::Key_Down || key == Qt::Key_F4)) {
      button->showMenu();
      return true;
    }
  }
  return QToolBar::eventFilter(watched, event);
}

}  // namespace vonel
