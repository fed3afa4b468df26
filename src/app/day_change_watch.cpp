#include "app/day_change_watch.h"

namespace vonel {
namespace {

constexpr int kCheckMs = 10000;

}  // namespace

DayChangeWatch::DayChangeWatch(const Clock& clock, AppWindows& windows) : clock_(clock), windows_(windows) {
  timer_.setInterval(kCheckMs);
  connect(&timer_, &QTimer::timeout, this, &DayChangeWatch::onCheckTick);
}

void DayChangeWatch::start() {
  dayOfMonth_ = clock_.now().day;
  timer_.start();
}

void DayChangeWatch::onCheckTick() {
  const int day = clock_.now().day;
  if (day == dayOfMonth_) return;
  dayOfMonth_ = day;
  windows_.dayChanged();
}

}  // namespace vonel
