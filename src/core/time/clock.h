#pragma once
// The present moment, injectable so that tests can fix the time.
#include "core/text/dates.h"

#include <ctime>

namespace vonel {

// Local wall-clock time of a moment of the system clock.
text::DateTime localDateTime(std::time_t moment);

class Clock {
 public:
  virtual ~Clock() = default;
  virtual text::DateTime now() const = 0;
};

// Local wall-clock time of the machine.
class SystemClock final : public Clock {
 public:
  text::DateTime now() const override;
};

// The system's local time moved by whole days: a fixture's "today" on
// another day, at the real time of day.
class ShiftedClock final : public Clock {
 public:
  explicit ShiftedClock(long days) : days_(days) {}
  text::DateTime now() const override;

 private:
  long days_;
};

// A clock that stands still until it is moved; for tests and golden runs.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(text::DateTime moment) : moment_(moment) {}
  text::DateTime now() const override { return moment_; }
  void set(text::DateTime moment) { moment_ = moment; }

 private:
  text::DateTime moment_;
};

}  // namespace vonel
