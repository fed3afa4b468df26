#include "app/tray_flasher.h"

#include "core/settings/accounts.h"

namespace vonel {
namespace {

constexpr int kFlashMs = 500;

}  // namespace

TrayFlasher::TrayFlasher(const SettingsStore& settings, AppWindows& windows)
    : settings_(settings), windows_(windows) {
  timer_.setInterval(kFlashMs);
  connect(&timer_, &QTimer::timeout, this, &TrayFlasher::onFlashTick);
}

std::string TrayFlasher::startTip() const {
  const std::optional<int> first = firstAccount(settings_);
  if (!first) return "Vonel by Tessarine Software";
  return "Vonel - " + accountTitle(settings_, *first);
}

void TrayFlasher::start() {
  timer_.start();
  restartCount();
}

void TrayFlasher::stop() {
  timer_.stop();
  showLargeS();
}

void TrayFlasher::showLargeS() {
  large_ = true;
  show(TrayPicture::LargeS);
}

void TrayFlasher::onFlashTick() {
  large_ = !large_;
  show(large_ ? TrayPicture::LargeS : TrayPicture::SmallS);
}

void TrayFlasher::showError() {
  large_ = false;
  show(TrayPicture::Error);
}

void TrayFlasher::show(TrayPicture picture) {
  const std::optional<int> first = firstAccount(settings_);
  const std::string account = first ? accountTitle(settings_, *first) + " - " : "";
  windows_.showTrayPicture(picture, "Vonel - " + account + std::to_string(goodMessages_) + " message(s)");
}

}  // namespace vonel
