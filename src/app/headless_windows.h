#pragma once
// The windows of a run without a display: nothing shows, and the account
// wizard can't run.
#include "app/app_windows.h"

namespace vonel {

class HeadlessWindows : public AppWindows {
 public:
  void showSplash() override {}
  void splashStatus(std::string_view) override {}
  void hideSplash() override {}
  bool runAccountWizard() override { return false; }
  bool canRunAccountWizard() const override { return false; }
  void setBusy(bool) override {}
  void setupListView() override {}
  void showTicketButton(bool) override {}
  void showTrayIcon(std::string_view) override {}
  void removeTrayIcon() override {}
  void setStatusText(std::string_view text) override { statusText = text; }
  void setTimerStatus(std::string_view text) override { timerStatus = text; }
  void showTrayPicture(TrayPicture picture, std::string_view tip) override {
    trayPicture = picture;
    trayTip = tip;
  }
  void addServerMessage(const message::Message& message, long number, const std::string& title,
                        const std::string&) override {
    if (onServerMessage) onServerMessage(message, number, title);
  }
  void setupMenus() override {}
  void switchToMailer() override {}
  // A screen larger than any window, so that the saved size comes back unchanged.
  WindowGeometry screenTwips() const override { return {1 << 24, 1 << 24}; }
  WindowGeometry geometryTwips() const override { return geometry; }
  void maximise() override { geometry.state = WindowState::Maximised; }
  void resizeTwips(int widthTwips, int heightTwips) override { geometry = {widthTwips, heightTwips}; }
  void showMain() override { hidden = false; }
  void hideMain() override { hidden = true; }
  void closeOtherWindows(const std::function<void(const std::string&)>&) override {}
  // Nobody to ask: the failure is reported, and --trust-cert trusts.
  void certificateUntrusted(const UntrustedCertificate&) override {}
  void pumpEvents() override {}
  void messageStored(const message::Message& message, const std::filesystem::path& file) override {
    if (onMessageStored) onMessageStored(message, file);
  }

  std::function<void(const message::Message&, long, const std::string&)> onServerMessage;
  std::function<void(const message::Message&, const std::filesystem::path&)> onMessageStored;
  std::string statusText;
  std::string timerStatus;
  TrayPicture trayPicture = TrayPicture::LargeS;
  std::string trayTip;
  bool hidden = false;
  WindowGeometry geometry{7668, 7300};
};

}  // namespace vonel
