#pragma once
// The scanner window's toolbar `Toolbar1`: one button per command key, the
// button's objectName being its key, and the drop-down menus that offer the
// commands per account. It only reports what the user chose; the window
// decides what each key does.
#include <QString>
#include <QToolBar>
#include <map>
#include <vector>

#include "app/account_menu_entries.h"

class QMenu;
class QToolButton;

namespace vonel {

class ScannerToolbar final : public QToolBar {
  Q_OBJECT

 public:
  explicit ScannerToolbar(QWidget* parent = nullptr);

  // Replaces the per-account entries of the drop-down menus; the fixed
  // entries stay.
  void setupAccountMenus(const std::vector<AccountMenuEntry>& accounts);
  // The ticket list's button "cms" shows only in ticket mode.
  void showTicketButton(bool show);
  // While a pass runs "upanddown" shows the stop picture and "stop" is enabled.
  void showPassRunning(bool running);
  // A button whose window isn't there yet is disabled.
  void setWindowAvailable(const QString& key, bool available);
  // The button of a key, for the window to give "help" its menu; null for an unknown key.
  QToolButton* button(const QString& key) const;

 signals:
  void buttonClicked(const QString& key);
  // `entryKey` is the objectName of the menu entry: "upload", "Account3", "DLM3", ...
  void menuEntryChosen(const QString& buttonKey, const QString& entryKey);

 protected:
  // Down, Alt+Down or F4 on a button opens its menu, so the menus need no mouse.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Button {
    QToolButton* button = nullptr;
    QAction* place = nullptr;  // the button's place in the toolbar; hiding it hides the button
    QMenu* menu = nullptr;
    std::vector<QAction*> accountEntries;
  };

  void addButton(const QString& key, const QString& picture, const QString& caption, const QString& description);
  void addMenu(const QString& key);
  void addFixedEntry(const QString& buttonKey, const QString& entryKey, const QString& caption);
  void addAccountEntry(Button& button, const QString& entryKey, const QString& caption);
  void addAccountSeparator(Button& button);
  void clearAccountEntries(Button& button);
  void updateMenuArrow(Button& button);
  void onToolButtonStyleChanged(Qt::ToolButtonStyle style);
  void setDescription(QToolButton* button, const QString& description);

  std::map<QString, Button> buttons_;
};

}  // namespace vonel
