#pragma once
// A window's toolbar `Toolbar1`: one button per command key, the button's
// objectName being its key, with drop-down menus of fixed entries and of
// entries per account. It only reports what the user chose; the window
// decides what each key does.
#include <QString>
#include <QToolBar>
#include <map>
#include <vector>

#include "app/account_menu_entries.h"

class QMenu;
class QToolButton;

namespace vonel {

class CommandToolbar : public QToolBar {
  Q_OBJECT

 public:
  // `captionedKey` is the one button that shows its caption beside its picture.
  CommandToolbar(const QString& captionedKey, QWidget* parent);

  // A button whose window isn't there yet is disabled.
  void setWindowAvailable(const QString& key, bool available);
  // The button of a key; null for an unknown key.
  QToolButton* button(const QString& key) const;
  void setButtonVisible(const QString& key, bool visible);
  // A new picture and tool-tip for a button whose meaning changes, such as
  // send-and-receive turning into stop.
  void setButtonLook(const QString& key, const QString& picture, const QString& description);

 signals:
  void buttonClicked(const QString& key);
  // `entryKey` is the objectName of the menu entry: "upload", "Account3", "DLM3", ...
  void menuEntryChosen(const QString& buttonKey, const QString& entryKey);

 protected:
  // The tool-tips of the buttons both windows have.
  static const QString kStopTip;
  static const QString kSendReceiveTip;
  static const QString kCleanTip;

  struct AccountEntry {
    const char* keyPrefix;  // the entry's objectName is this and the account's number
    QString captionPrefix;  // its caption is this and the account's name
  };

  void addButton(const QString& key, const QString& picture, const QString& caption, const QString& description);
  void addMenu(const QString& key);
  void addFixedEntry(const QString& buttonKey, const QString& entryKey, const QString& caption);
  // Send-and-receive's own menu: send only, download only, and both with spam deleted.
  void addSendReceiveMenu(const QString& buttonKey);
  void clearAccountEntries(const QString& buttonKey);
  // Appends one entry per account, after a separator when `separated`.
  void addAccountEntries(const QString& buttonKey, const std::vector<AccountMenuEntry>& accounts,
                         const AccountEntry& entry, bool separated = false);
  // Down or F4 on a button opens its menu, so the menus need no mouse.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Button {
    QToolButton* button = nullptr;
    QAction* place = nullptr;  // the button's place in the toolbar; hiding it hides the button
    QMenu* menu = nullptr;
    std::vector<QAction*> accountEntries;
  };

  void updateMenuArrow(Button& button);
  void onToolButtonStyleChanged(Qt::ToolButtonStyle style);
  static void setDescription(QToolButton* button, const QString& description);

  QString captionedKey_;
  std::map<QString, Button> buttons_;
};

}  // namespace vonel
