#pragma once
// The auto scan: a tick a second, and a pass due once DELAY ticks have gone
// by since the count started (the end of the last pass). Status panel 2
// shows the count-down.
#include <QObject>
#include <QTimer>

#include "app/app_windows.h"
#include "app/pass_request.h"
#include "core/settings/settings_store.h"

namespace vonel {

class AutoScanTimer final : public QObject {
  Q_OBJECT

 public:
  AutoScanTimer(const SettingsStore& settings, AppWindows& windows);

  // Counts DELAY ticks from zero when ScanOnStart is set: the one key turns on
  // both the scan at start and the repeating scan.
  void restart();
  void stop();
  // The first pass after start-up: a tick to wait at 200 ms, the pass on the
  // second, so that it never starts before the window is up.
  void armFirstPass(PassKind kind);

  bool isActive() const { return timer_.isActive(); }
  int interval() const { return timer_.interval(); }
  // Tests shorten the second between ticks.
  void setInterval(int milliseconds) { timer_.setInterval(milliseconds); }
  int delay() const { return delay_; }
  int ticks() const { return ticks_; }
  PassKind nextPassKind() const { return nextPassKind_; }

 signals:
  // The count has run out; the timer is stopped until restarted.
  void passDue(PassKind kind);

 private:
  void onTick();
  void showTimeLeft();

  const SettingsStore& settings_;
  AppWindows& windows_;
  QTimer timer_;
  int delay_ = 0;  // 0: the auto scan is off
  int ticks_ = 0;
  PassKind nextPassKind_ = PassKind::Scan;
};

}  // namespace vonel
