#include <gtest/gtest.h>

#include "core/time/clock.h"

namespace vonel {
namespace {

// Days since 1 March of year 0, for comparing calendar dates across months and years.
long dayNumber(const text::DateTime& t) {
  const long year = t.month <= 2 ? t.year - 1 : t.year;
  const long month = t.month <= 2 ? t.month + 9 : t.month - 3;
  return 365 * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5 + t.day - 1;
}

TEST(ShiftedClock, ShowsTheDayThatManyDaysAwayAcrossMonthsAndYears) {
  for (const long days : {-400L, -1L, 0L, 1L, 59L, 3650L}) {
    const text::DateTime before = SystemClock().now();
    const text::DateTime shifted = ShiftedClock(days).now();
    const text::DateTime after = SystemClock().now();
    // Midnight may pass between the readings; the shift then shows against either side.
    const long apart = dayNumber(shifted) - dayNumber(before);
    EXPECT_TRUE(apart == days || dayNumber(shifted) - dayNumber(after) == days) << days;
  }
}

}  // namespace
}  // namespace vonel
