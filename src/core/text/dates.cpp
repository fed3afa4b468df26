#include "core/text/dates.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "core/text/strings.h"

namespace vonel::text {
namespace {

// Days from 1 January 1970 of a civil date (proleptic Gregorian).
long long daysFromCivil(long long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long long>(doe) - 719468;
}

void civilFromDays(long long z, int& year, int& month, int& day) {
  z += 719468;
  const long long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(static_cast<long long>(yoe) + era * 400 + (month <= 2));
}

constexpr long long kSerialEpoch = -25569;  // 30 December 1899 in days from 1970

std::string twoDigits(int n) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%02d", n);
  return buffer;
}

const std::array<const char*, 7> kDayNames = {"Sunday", "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};

std::optional<int> readDigits(std::string_view s, std::size_t at, std::size_t count) {
  if (at + count > s.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (s[i] < '0' || s[i] > '9') return std::nullopt;
    value = value * 10 + (s[i] - '0');
  }
  return value;
}

}  // namespace

bool isValidDate(int year, int month, int day) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

double DateTime::serial() const {
  const double days = static_cast<double>(daysFromCivil(year, static_cast<unsigned>(month),
                                                        static_cast<unsigned>(day)) - kSerialEpoch);
  const double fraction = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
  // Before the epoch the fraction still counts forward from midnight.
  return days >= 0 ? days + fraction : days - fraction;
}

DateTime DateTime::fromSerial(double serial) {
  double whole = std::trunc(serial);
  double fraction = std::fabs(serial - whole);
  long long seconds = std::llround(fraction * 86400.0);
  if (seconds >= 86400) {
    seconds -= 86400;
    whole += serial >= 0 ? 1 : -1;
  }
  DateTime out;
  civilFromDays(static_cast<long long>(whole) + kSerialEpoch, out.year, out.month, out.day);
  out.hour = static_cast<int>(seconds / 3600);
  out.minute = static_cast<int>(seconds / 60 % 60);
  out.second = static_cast<int>(seconds % 60);
  return out;
}

int DateTime::weekday() const {
  const long long days = daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
  // 1 January 1970 was a Thursday (5 when Sunday is 1).
  return static_cast<int>(((days % 7) + 7 + 4) % 7) + 1;
}

DateTime DateTime::addDays(int days) const {
  DateTime out = *this;
  civilFromDays(daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) + days, out.year,
                out.month, out.day);
  return out;
}

std::string formatStoreDate(const DateTime& m) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", m.year, m.month, m.day, m.hour, m.minute,
                m.second);
  return buffer;
}

std::optional<DateTime> parseStoreDate(std::string_view text) {
  const std::string_view t = trimView(text);
  if (t.size() < 10 || t[4] != '-' || t[7] != '-') return std::nullopt;
  const auto year = readDigits(t, 0, 4);
  const auto month = readDigits(t, 5, 2);
  const auto day = readDigits(t, 8, 2);
  if (!year || !month || !day || !isValidDate(*year, *month, *day)) return std::nullopt;
  DateTime m;
  m.year = *year;
  m.month = *month;
  m.day = *day;
  m.hour = m.minute = m.second = 0;
  if (t.size() == 10) return m;
  if (t.size() != 19 || t[10] != ' ' || t[13] != ':' || t[16] != ':') return std::nullopt;
  const auto hour = readDigits(t, 11, 2);
  const auto minute = readDigits(t, 14, 2);
  const auto second = readDigits(t, 17, 2);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  m.hour = *hour;
  m.minute = *minute;
  m.second = *second;
  return m;
}

const MonthNames& englishMonthNames() {
  static const MonthNames names = {"January", "February", "March",     "April",   "May",      "June",
                                   "July",    "August",   "September", "October", "November", "December"};
  return names;
}

const MonthNames& englishShortMonthNames() {
  static const MonthNames names = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return names;
}

std::string formatDate(const DateTime& m, std::string_view picture) {
  return formatDate(m, picture, englishMonthNames(), englishShortMonthNames());
}

std::string formatDate(const DateTime& m, std::string_view picture, const MonthNames& monthNames,
                       const MonthNames& shortMonthNames) {
  std::string out;
  bool afterHour = false;
  std::size_t i = 0;
  auto run = [&](char letter) {
    std::size_t n = 0;
    while (i + n < picture.size() && upperByte(picture[i + n]) == letter) ++n;
    return n;
  };
  while (i < picture.size()) {
    const char letter = upperByte(picture[i]);
    std::size_t n = (letter == 'Y' || letter == 'M' || letter == 'D' || letter == 'H' || letter == 'N' ||
                     letter == 'S')
                        ? run(letter)
                        : 0;
    if (n == 0) {
      out += picture[i++];
      continue;
    }
    switch (letter) {
      case 'Y':
        if (n >= 4) out += std::to_string(m.year), n = 4;
        else if (n >= 2) out += twoDigits(m.year % 100), n = 2;
        else out += std::to_string(m.year % 100);  // a lone Y is rare; keep it short
        break;
      case 'M':
        if (afterHour && n <= 2) {
          out += n == 2 ? twoDigits(m.minute) : std::to_string(m.minute);
        } else if (n >= 4) {
          out += monthNames[static_cast<std::size_t>(m.month - 1)], n = 4;
        } else if (n == 3) {
          out += shortMonthNames[static_cast<std::size_t>(m.month - 1)];
        } else {
          out += n == 2 ? twoDigits(m.month) : std::to_string(m.month);
        }
        break;
      case 'D':
        if (n >= 4) out += kDayNames[static_cast<std::size_t>(m.weekday() - 1)], n = 4;
        else if (n == 3) out += std::string(kDayNames[static_cast<std::size_t>(m.weekday() - 1)]).substr(0, 3);
        else out += n == 2 ? twoDigits(m.day) : std::to_string(m.day);
        break;
      case 'H':
        if (n > 2) n = 2;
        out += n == 2 ? twoDigits(m.hour) : std::to_string(m.hour);
        break;
      case 'N':
        if (n > 2) n = 2;
        out += n == 2 ? twoDigits(m.minute) : std::to_string(m.minute);
        break;
      case 'S':
        if (n > 2) n = 2;
        out += n == 2 ? twoDigits(m.second) : std::to_string(m.second);
        break;
      default:
        break;
    }
    afterHour = letter == 'H' || (afterHour && letter != 'Y' && letter != 'D' && letter != 'M');
    if (letter == 'M') afterHour = false;
    i += n;
  }
  return out;
}

}  // namespace vonel::text
