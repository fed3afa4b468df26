#include "core/time/clock.h"

#include <ctime>

namespace vonel {

text::DateTime SystemClock::now() const { return localDateTime(std::time(nullptr)); }

text::DateTime ShiftedClock::now() const {
  constexpr std::time_t kSecondsPerDay = 24 * 60 * 60;
  return localDateTime(std::time(nullptr) + static_cast<std::time_t>(days_) * kSecondsPerDay);
}

text::DateTime localDateTime(std::time_t t) {
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &t);
#else
  localtime_r(&t, &local);
#endif
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace vonel
