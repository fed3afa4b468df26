#pragma once
// Calendar dates and times as the program keeps them: a local wall-clock
// moment, a serial day number (days since 30 December 1899, time as the
// fraction) for arithmetic, and the fixed text forms of files and headers.
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vonel::text {

struct DateTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
  friend auto operator<=>(const DateTime&, const DateTime&) = default;

  double serial() const;
  static DateTime fromSerial(double serial);
  int weekday() const;  // 1 = Sunday ... 7 = Saturday
  DateTime addDays(int days) const;
};

bool isValidDate(int year, int month, int day);

// "YYYY-MM-DD HH:MM:SS", the form of dates in files and store headers.
std::string formatStoreDate(const DateTime& moment);
std::optional<DateTime> parseStoreDate(std::string_view text);

using MonthNames = std::array<std::string, 12>;
const MonthNames& englishMonthNames();      // "January" ... "December"
const MonthNames& englishShortMonthNames(); // "Jan" ... "Dec"

// A picture of date tokens, as the settings and locale formats hold them: "YYYY", "YY",
// "MMMM", "MMM", "MM", "M", "DDDD", "DDD", "DD", "D", "HH", "H", "NN", "SS",
// case-blind. "MM" right after an hour token means minutes. Anything else is
// copied. Month and day names come from the given tables.
std::string formatDate(const DateTime& moment, std::string_view picture, const MonthNames& monthNames,
                       const MonthNames& shortMonthNames);
std::string formatDate(const DateTime& moment, std::string_view picture);

}  // namespace vonel::text
