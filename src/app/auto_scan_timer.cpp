#include "app/auto_scan_timer.h"

#include <string>

namespace vonel {
namespace {

constexpr int kTickMs = 1000;
constexpr int kFirstPassTickMs = 200;

}  // namespace

AutoScanTimer::AutoScanTimer(const SettingsStore& settings, AppWindows& windows)
    : settings_(settings), windows_(windows) {
  timer_.setInterval(kTickMs);
  connect(&timer_, &QTimer::timeout, this, &AutoScanTimer::onTick);
}

void AutoScanTimer::restart() {
  if (!settings_.get("ScanOnStart", Value(false)).flag()) return;
  ticks_ = 0;
  timer_.setInterval(kTickMs);
  delay_ = static_cast<int>(settings_.get("DELAY", Value(0)).numberOr(0));
  showTimeLeft();
  timer_.start();
}

void AutoScanTimer::stop() {
  timer_.stop();
  delay_ = 0;
  ticks_ = 0;
  windows_.setTimerStatus("Timer stopped");
}

void AutoScanTimer::armFirstPass(PassKind kind) {
  nextPassKind_ = kind;
  delay_ = 1;
  ticks_ = 0;
  timer_.start(kFirstPassTickMs);
}

void AutoScanTimer::showTimeLeft() {
  if (delay_ == 0) {
    windows_.setTimerStatus("Auto scan Disabled");
  } else if (ticks_ == delay_) {
    windows_.setTimerStatus("Scanning");
  } else {
    windows_.setTimerStatus("Next scan: " + std::to_string(delay_ - ticks_));
  }
}

void AutoScanTimer::onTick() {
  if (delay_ == 0) return;
  showTimeLeft();
  if (++ticks_ <= delay_) return;
  stop();
  emit passDue(nextPassKind_);
  nextPassKind_ = PassKind::Scan;
}

}  // namespace vonel
