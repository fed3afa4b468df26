#include "ui/command_toolbar.h"

#include <QKeyEvent>
#include <QMenu>
#include <QToolButton>

#include "app/qtext.h"
#include "ui/pictures.h"

namespace vonel {
namespace {

constexpr int kIconSize = 24;

}  // namespace

const QString CommandToolbar::kStopTip = QStringLiteral("Stop the mail check that is running");
const QString CommandToolbar::kSendReceiveTip = QStringLiteral("Send the outbox and download new mail");
const QString CommandToolbar::kCleanTip =
    QStringLiteral("Check the servers, delete spam there and download the rest");

CommandToolbar::CommandToolbar(const QString& captionedKey, QWidget* parent)
    : QToolBar(QStringLiteral("Toolbar"), parent), captionedKey_(captionedKey) {
  setObjectName("Toolbar1");
  setAccessibleName("Toolbar");
  setIconSize(QSize(kIconSize, kIconSize));
  // Pictures alone keep every button in view at the window's first size; the
  // one a user presses most also says what it is.
  setToolButtonStyle(Qt::ToolButtonIconOnly);
  connect(this, &QToolBar::toolButtonStyleChanged, this, &CommandToolbar::onToolButtonStyleChanged);
  connect(this, &QToolBar::iconSizeChanged, this, [this](const QSize& size) {
    for (auto& [key, entry] : buttons_) entry.button->setIconSize(size);
  });
}

void CommandToolbar::addButton(const QString& key, const QString& picture, const QString& caption,
                               const QString& description) {
  auto* button = new QToolButton(this);
  button->setObjectName(key);
  button->setText(caption);
  button->setAccessibleName(caption);
  setDescription(button, description);
  button->setIcon(pictures::icon(picture));
  button->setIconSize(iconSize());
  button->setAutoRaise(true);
  button->installEventFilter(this);
  connect(button, &QToolButton::clicked, this, [this, key] { emit buttonClicked(key); });
  buttons_[key] = Button{button, addWidget(button), nullptr, {}};
  onToolButtonStyleChanged(toolButtonStyle());
}

void CommandToolbar::setDescription(QToolButton* button, const QString& description) {
  button->setToolTip(button->text() + "\n" + description);
  button->setAccessibleDescription(description);
}

void CommandToolbar::addMenu(const QString& key) {
  Button& entry = buttons_.at(key);
  entry.menu = new QMenu(entry.button->text(), this);
  entry.menu->setObjectName(key + "Menu");
  entry.button->setPopupMode(QToolButton::MenuButtonPopup);
  connect(entry.menu, &QMenu::triggered, this,
          [this, key](QAction* action) { emit menuEntryChosen(key, action->objectName()); });
  updateMenuArrow(entry);
}

void CommandToolbar::addFixedEntry(const QString& buttonKey, const QString& entryKey, const QString& caption) {
  Button& entry = buttons_.at(buttonKey);
  entry.menu->addAction(caption)->setObjectName(entryKey);
  updateMenuArrow(entry);
}

void CommandToolbar::addSendReceiveMenu(const QString& buttonKey) {
  addMenu(buttonKey);
  addFixedEntry(buttonKey, "upload", "Send Outbox");
  addFixedEntry(buttonKey, "download", "Download Only");
  addFixedEntry(buttonKey, "updownwithclear", "Download, Delete Spam and Send");
}

void CommandToolbar::clearAccountEntries(const QString& buttonKey) {
  Button& button = buttons_.at(buttonKey);
  // Deleted later: the rebuild may come from a handler of one of these entries.
  for (QAction* action : button.accountEntries) {
    button.menu->removeAction(action);
    action->setParent(nullptr);
    action->deleteLater();
  }
  button.accountEntries.clear();
  updateMenuArrow(button);
}

void CommandToolbar::addAccountEntries(const QString& buttonKey, const std::vector<AccountMenuEntry>& accounts,
                                       const AccountEntry& entry, bool separated) {
  Button& button = buttons_.at(buttonKey);
  if (separated && !accounts.empty()) {
    QAction* separator = button.menu->addSeparator();
    // What a screen reader meets between the two groups.
    separator->setText("----");
    button.accountEntries.push_back(separator);
  }
  for (const AccountMenuEntry& account : accounts) {
    QAction* action = button.menu->addAction(entry.captionPrefix + toQString(account.name));
    action->setObjectName(QString::fromLatin1(entry.keyPrefix) + QString::number(account.index));
    button.accountEntries.push_back(action);
  }
  updateMenuArrow(button);
}

// A button offers its arrow only when the menu has something in it.
void CommandToolbar::updateMenuArrow(Button& button) {
  button.button->setMenu(button.menu->isEmpty() ? nullptr : button.menu);
}

void CommandToolbar::setWindowAvailable(const QString& key, bool available) {
  if (QToolButton* found = button(key)) found->setEnabled(available);
}

QToolButton* CommandToolbar::button(const QString& key) const {
  const auto found = buttons_.find(key);
  return found == buttons_.end() ? nullptr : found->second.button;
}

void CommandToolbar::setButtonVisible(const QString& key, bool visible) { buttons_.at(key).place->setVisible(visible); }

void CommandToolbar::setButtonLook(const QString& key, const QString& picture, const QString& description) {
  QToolButton* changed = buttons_.at(key).button;
  changed->setIcon(pictures::icon(picture));
  setDescription(changed, description);
}

void CommandToolbar::onToolButtonStyleChanged(Qt::ToolButtonStyle style) {
  for (auto& [key, entry] : buttons_) {
    const bool captioned = style == Qt::ToolButtonIconOnly && key == captionedKey_;
    entry.button->setToolButtonStyle(captioned ? Qt::ToolButtonTextBesideIcon : style);
  }
}

bool CommandToolbar::eventFilter(QObject* watched, QEvent* event) {
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
