#pragma once
// The scanner window: the list of messages waiting on the servers with the
// verdict on each, the selected message's headers, the toolbar, the status
// bar and the tray icon. The controller reaches it through AppWindows; the
// window's commands go to the controller.
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/app_windows.h"
#include "core/context/app_context.h"
#include "ui/scanner/server_mail_menu.h"
#include "ui/scanner/server_mail_model.h"
#include "ui/window_host.h"

class QLabel;
class QMenu;
class QTimer;
class QPlainTextEdit;
class QTreeView;

namespace vonel {

class MailController;
class MailerWindow;
class ScannerToolbar;
class SplashWindow;
class TrayIcon;

class ScannerWindow final : public QMainWindow, public AppWindows {
  Q_OBJECT

 public:
  explicit ScannerWindow(AppContext& context);
  ~ScannerWindow() override;

  // The window's commands go to this controller from now on.
  void attach(MailController& controller);
  WindowHost& host() { return host_; }
  // Enables the controls whose window or feature has arrived in the host.
  void refreshAvailability();
  // The model that the mailer's list of server mail shows too.
  ServerMailModel& serverMail() { return model_; }

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
  void showStatusError(bool error) override;
  void setTimerStatus(std::string_view text) override;
  void addServerMessage(const message::Message& message, long number, const std::string& accountTitle,
                        const std::string& server) override;
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
  bool setServerStatus(const std::string& title, std::string_view text) override;
  void showConnectionError(std::string_view text) override;
  void showTrayPicture(TrayPicture picture, std::string_view tip) override;
  void showMessage(const message::Message& message) override;
  void openFile(const std::filesystem::path& file) override;
  void showSettings() override;
  void showPassRunning(bool running) override;
  bool mainVisible() const override;
  void openComposer(const message::ComposeRequest& request) override;
  void showMessageFile(const std::filesystem::path& file) override;
  bool mailerLoaded() const override;
  void showMailer() override;
  store::NewMessageSink* openMailer() override;
  void sendingFinished() override;
  MailerWindow* mailer() { return mailer_.get(); }
  // The end-of-pass chime, where the system can play sound; otherwise nothing.
  void playSound(const std::filesystem::path& wave) override;
  void certificateUntrusted(const UntrustedCertificate& certificate) override;

  // The progress text as last set; the panel catches up within a moment.
  const QString& statusText() const { return statusLatest_; }

  // The keys of the selected message rows, in list order.
  std::vector<std::string> selectedKeys() const;

 protected:
  // Closing the window only hides it; the program goes on in the tray.
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildMenus();
  QMenu* buildHelpMenu();
  void buildTray();
  void onToolbarButton(const QString& key);
  void onToolbarMenuEntry(const QString& buttonKey, const QString& entryKey);
  void askToReinforce();
  // The certificate dialog; Trust runs the account again once no pass runs.
  void askToTrust(const UntrustedCertificate& certificate);
  void closeToTray();
  void buildKeys();
  void buildStatusBar();
  QWidget* buildListAndHeaders();
  void onExitTriggered();
  void onCurrentRowChanged();
  void onContextMenu(const QPoint& position);
  void onListCommand(ServerMailCommand command, bool undo);
  // The message of the current row; none for a server's or a notice row.
  const message::Message* currentMessage() const;
  std::string currentKey() const;
  void showHeaders(const message::Message* message, const QString& key);
  void storeWindowState();
  void showStatusNow();
  // The mail window's requests go to the controller.
  void connectMailer();
  void readListSettings();

  AppContext& ctx_;
  MailController* controller_ = nullptr;
  WindowHost host_;
  ServerMailModel model_;
  QTreeView* list_;
  QPlainTextEdit* headers_;
  QLabel* messageNumber_;
  QLabel* statusPicture_;
  QLabel* statusText_;
  QLabel* timerText_;
  // A scan reports every header; the panel shows the newest text at most
  // twenty times a second instead of repainting for each.
  QString statusLatest_;
  QTimer* statusPace_;
  ServerMailMenu* listMenu_;
  ScannerToolbar* toolbar_;
  QMenu* helpMenu_ = nullptr;
  std::unique_ptr<SplashWindow> splash_;
  std::unique_ptr<MailerWindow> mailer_;  // made when first shown
  TrayIcon* tray_ = nullptr;  // none where the desktop has no tray
  QObject* chime_ = nullptr;  // made at the first sound
  bool leaving_ = false;       // the program is shutting down
};

}  // namespace vonel
