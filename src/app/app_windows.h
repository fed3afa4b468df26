#pragma once
// What the controller asks of the program's windows. The scanner window fills
// it; a run without windows uses the quiet HeadlessWindows.
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "app/untrusted_certificate.h"
#include "core/message/mailto_link.h"
#include "core/message/message.h"
#include "core/store/received_mail.h"

namespace vonel {

// The numbers are what MainWindowState holds in the settings file.
enum class WindowState { Normal = 0, Minimised = 1, Maximised = 2 };

// Sizes are in twips (1/1440 inch): MainWidth and MainHeight in the settings
// file hold twips.
struct WindowGeometry {
  int widthTwips = 0;
  int heightTwips = 0;
  WindowState state = WindowState::Normal;
};

// The tray's three pictures: the letter S large or small, and the error.
enum class TrayPicture { LargeS, SmallS, Error };

class AppWindows {
 public:
  virtual ~AppWindows() = default;

  virtual void showSplash() = 0;
  // Shows a start-up stage on the splash and lets the window repaint.
  virtual void splashStatus(std::string_view stage) = 0;
  virtual void hideSplash() = 0;
  // Runs the account wizard to its end; true when it wrote the settings file.
  virtual bool runAccountWizard() = 0;
  // A run without windows has nobody to ask, and nothing to start without a
  // settings file.
  virtual bool canRunAccountWizard() const { return true; }
  virtual void setBusy(bool busy) = 0;

  virtual void setupListView() = 0;
  virtual void showTicketButton(bool show) = 0;
  virtual void showTrayIcon(std::string_view tip) = 0;
  virtual void removeTrayIcon() = 0;
  virtual void setStatusText(std::string_view text) = 0;
  // A judged header of the present pass, as row `number` of the server list;
  // `server` is where its account was polled.
  virtual void addServerMessage(const message::Message& message, long number, const std::string& accountTitle,
                                const std::string& server) = 0;
  virtual void setupMenus() = 0;
  virtual void switchToMailer() = 0;

  virtual WindowGeometry screenTwips() const = 0;
  virtual WindowGeometry geometryTwips() const = 0;
  virtual void maximise() = 0;
  virtual void resizeTwips(int widthTwips, int heightTwips) = 0;
  virtual void showMain() = 0;
  virtual void hideMain() = 0;

  // The mail cycle's effects; a window without the part concerned ignores them.
  // Status panel 2: the auto scan's count-down.
  virtual void setTimerStatus(std::string_view) {}
  virtual void addServerToLists(const std::string& /*title*/) {}
  // False when the list has no row for that server.
  virtual bool setServerStatus(const std::string& /*title*/, std::string_view /*text*/) { return true; }
  // The status bar's picture: the error picture, or none.
  virtual void showStatusError(bool) {}
  // The tray balloon of a failure.
  virtual void showTrayError(std::string_view) {}
  // The box of a server that could not be reached. A run without windows
  // reports the failure at the end of the pass instead.
  virtual void showConnectionError(std::string_view /*text*/) {}
  virtual void showTrayPicture(TrayPicture, std::string_view /*tip*/) {}
  // The toolbar's send-and-receive button shows "stop" while a pass runs.
  virtual void showPassRunning(bool) {}
  // A downloaded message has its file.
  virtual void messageStored(const message::Message&, const std::filesystem::path& /*file*/) {}
  // A message fetched to be read, in its own window.
  virtual void showMessage(const message::Message&) {}
  // Opens a file in the system's viewer for it.
  virtual void openFile(const std::filesystem::path&) {}
  virtual void playSound(const std::filesystem::path& /*wave*/) {}
  virtual void showSettings() {}
  // The mail window, when it is open, takes new mail itself.
  virtual store::NewMessageSink* openMailer() { return nullptr; }
  // The outbox has been sent, or had nothing to send.
  virtual void sendingFinished() {}
  virtual void dayChanged() {}
  // A server's certificate was not trusted; a window may offer to trust it
  // and run the account again.
  virtual void certificateUntrusted(const UntrustedCertificate&) {}

  // Closes every other window, last opened first, naming each to `onClose`.
  virtual void closeOtherWindows(const std::function<void(const std::string&)>& onClose) = 0;
  virtual void pumpEvents() = 0;

  // What a second start asks of the running copy (and a start of its own
  // command line): the mail window, the main window, a composer filled from
  // a mail link, a saved message file in its own window.
  virtual bool mailerLoaded() const { return false; }
  virtual void showMailer() {}
  virtual bool mainVisible() const { return true; }
  virtual void openComposer(const message::ComposeRequest&) {}
  virtual void showMessageFile(const std::filesystem::path&) {}
};

}  // namespace vonel
