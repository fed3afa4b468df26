#pragma once
// The tray icon through a pass: it flashes between its two pictures while the
// pass runs, shows the error picture when there is no connection, and its tip
// names the first account and counts the pass's good messages.
#include <QObject>
#include <QTimer>
#include <string>

#include "app/app_windows.h"
#include "core/settings/settings_store.h"

namespace vonel {

class TrayFlasher final : public QObject {
  Q_OBJECT

 public:
  TrayFlasher(const SettingsStore& settings, AppWindows& windows);

  // The tip of the icon when it first shows.
  std::string startTip() const;
  // Flashes for a new pass, counting its good messages from zero.
  void start();
  // Stops flashing, back to the large picture.
  void stop();
  void showLargeS();
  // For a list judged again: its good messages are counted afresh.
  void restartCount() { goodMessages_ = 0; }
  void showError();
  void countGoodMessage() { ++goodMessages_; }
  bool isFlashing() const { return timer_.isActive(); }

 private:
  void onFlashTick();
  void show(TrayPicture picture);

  const SettingsStore& settings_;
  AppWindows& windows_;
  QTimer timer_;
  bool large_ = true;
  long goodMessages_ = 0;
};

}  // namespace vonel
