#pragma once
// The scanner window: the list of messages waiting on the servers, the status
// bar and the tray icon. The controller reaches it through AppWindows.
#include <QMainWindow>
#include <functional>
#include <memory>

#include "app/app_windows.h"

class QSplashScreen;
class QSystemTrayIcon;
class QTreeWidget;
class QTreeWidgetItem;

namespace vonel {

class ScannerWindow final : public QMainWindow, public AppWindows {
  Q_OBJECT

 public:
  ScannerWindow();
  ~ScannerWindow() override;

  // Called by the Exit command; returns true when the program is to end.
  std::function<bool()> onExit;

  void showSplash() override;
  void splashStatus(std::string_view stage) override;
  void hideSplash() override;
  bool runAccountWizard() override;
  void setBusy(bool busy) override;
  void setupListView() override;
  void showTicketButton(bool show) override;
  void showTrayIcon(std::string_view tip) override;
  void removeTrayIcon() override;
  void setStatusText(std::string_view text) override;
  void addServerMessage(const message::Message& message, long number, const std::string& accountTitle) override;
  void setupMenus() override;
  void switchToMailer() override;
  WindowGeometry screenTwips() const override;
  WindowGeometry geometryTwips() const override;
  void maximise() override;
  void resizeTwips(int widthTwips, int heightTwips) override;
  void showMain() override;
  void hideMain() override;
  void closeOtherWindows(const std::function<void(const std::string&)>& onClose) override;
  void pumpEvents() override;
  void showTrayError(std::string_view text) override;
  void addServerToLists(const std::string& title) override;
  void setServerStatus(const std::string& title, std::string_view text) override;
  void showConnectionError(std::string_view text) override;
  void showTrayPicture(TrayPicture picture, std::string_view tip) override;
  // The end-of-pass chime, where the system can play sound; otherwise nothing.
  void playSound(const std::filesystem::path& wave) override;

 protected:
  // Closing the window only hides it; the program goes on in the tray.
  void closeEvent(QCloseEvent* event) override;

 private:
  void onExitTriggered();
  QTreeWidgetItem* serverRow(const std::string& title) const;
  int twipsPerPixel() const;

  QTreeWidget* list_;
  std::unique_ptr<QSplashScreen> splash_;
  QSystemTrayIcon* tray_ = nullptr;
  QObject* chime_ = nullptr;  // made at the first sound
};

}  // namespace vonel
