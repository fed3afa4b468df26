#pragma once
// Tells the windows when the date has changed, looking every ten seconds, so
// that what they show by day moves on at midnight.
#include <QObject>
#include <QTimer>

#include "app/app_windows.h"
#include "core/time/clock.h"

namespace vonel {

class DayChangeWatch final : public QObject {
  Q_OBJECT

 public:
  DayChangeWatch(const Clock& clock, AppWindows& windows);
  // Watches from today on.
  void start();

 private:
  void onCheckTick();

  const Clock& clock_;
  AppWindows& windows_;
  QTimer timer_;
  int dayOfMonth_ = 0;
};

}  // namespace vonel
