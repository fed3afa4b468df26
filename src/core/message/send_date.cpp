#include "core/message/send_date.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "core/log/app_error.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

struct DateParts {
  std::vector<int> numbers;  // day, month and year numbers in the order met
  std::vector<bool> longNumber;  // written with more than two digits
  int month = 0;              // from a month name
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool afternoon = false;
  bool morning = false;
};

bool allDigits(std::string_view s) {
  if (s.empty() || s.size() > 9) return false;
  for (const char c : s) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

int monthNamed(std::string_view word) {
  if (word.size() < 3) return 0;
  const auto& names = text::englishShortMonthNames();
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (text::equalsNoCase(word.substr(0, 3), names[i])) return static_cast<int>(i) + 1;
  }
  return 0;
}

bool readTime(std::string_view token, DateParts& parts) {
  const auto pieces = text::split(token, ":");
  if (pieces.size() < 2 || pieces.size() > 3) return false;
  int values[3] = {0, 0, 0};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (!allDigits(pieces[i])) return false;
    values[i] = std::atoi(pieces[i].c_str());
  }
  parts.hour = values[0];
  parts.minute = values[1];
  parts.second = values[2];
  return true;
}

bool readDatePiece(std::string_view piece, DateParts& parts) {
  if (allDigits(piece)) {
    parts.numbers.push_back(std::atoi(std::string(piece).c_str()));
    parts.longNumber.push_back(piece.size() > 2);
    return true;
  }
  const int month = monthNamed(piece);
  if (month == 0 || parts.month != 0) return false;
  parts.month = month;
  return true;
}

bool readToken(std::string_view token, DateParts& parts) {
  if (token.find(':') != std::string_view::npos) return readTime(token, parts);
  if (text::equalsNoCase(token, "PM")) return parts.afternoon = true;
  if (text::equalsNoCase(token, "AM")) return parts.morning = true;
  for (const auto& piece : text::split(token, token.find('/') != std::string_view::npos ? "/" : "-")) {
    if (!readDatePiece(piece, parts)) return false;
  }
  return true;
}

int fullYear(int year, bool written4) {
  if (written4) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<text::DateTime> assemble(const DateParts& parts) {
  int day = 0;
  int month = parts.month;
  int year = 0;
  bool yearLong = false;
  const auto& n = parts.numbers;
  if (month != 0 && n.size() == 2) {
    // A year written long, or too big for a day, may come first; else day then year.
    const bool yearFirst = parts.longNumber[0] || n[0] > 31;
    day = yearFirst ? n[1] : n[0];
    year = yearFirst ? n[0] : n[1];
    yearLong = yearFirst ? parts.longNumber[0] : parts.longNumber[1];
  } else if (month == 0 && n.size() == 3) {
    if (parts.longNumber[0]) {  // year-month-day
      year = n[0], month = n[1], day = n[2], yearLong = true;
    } else {  // month/day/year, as the system reads short dates
      month = n[0], day = n[1], year = n[2], yearLong = parts.longNumber[2];
    }
  } else {
    return std::nullopt;
  }
  text::DateTime out;
  out.year = fullYear(year, yearLong);
  out.month = month;
  out.day = day;
  out.hour = parts.hour;
  if (parts.afternoon && out.hour < 12) out.hour += 12;
  if (parts.morning && out.hour == 12) out.hour = 0;
  out.minute = parts.minute;
  out.second = parts.second;
  if (out.year < 100 || out.year > 9999 || !text::isValidDate(out.year, out.month, out.day) || out.hour > 23 || out.minute > 59 || out.second > 59) {
    return std::nullopt;
  }
  return out;
}

// Hours by the lenient reading of all but the last two characters, plus the
// last two as minutes, which therefore always count forwards.
int zoneMinutes(std::string_view zone) {
  const auto minutes = text::toNumber(text::right(zone, 2));
  if (!minutes) throw AppError(error_number::kTypeMismatch, "Type mismatch");
  if (zone.size() < 2) throw AppError(error_number::kInvalidCall, "Invalid procedure call or argument");
  // Hours and minutes were 16-bit numbers; beyond that the time can't be formed.
  const double hours = text::roundHalfEven(text::val(text::left(zone, zone.size() - 2)));
  if (std::fabs(hours) > 32767 || std::fabs(*minutes) > 32767) throw AppError(error_number::kOverflow, "Overflow");
  return static_cast<int>(hours) * 60 + text::toWhole<int>(*minutes);
}

// The zone text of a bias: negated hours in two digits, then the minutes.
std::string zoneTextOfBias(int biasMinutes) {
  const int hours = -biasMinutes / 60;
  const int minutes = std::abs(biasMinutes) % 60;
  char text[32];
  std::snprintf(text, sizeof text, "%c%02d%02d", hours < 0 ? '-' : '+', std::abs(hours), minutes);
  return text;
}

}  // namespace

std::optional<text::DateTime> readDateText(std::string_view text) {
  DateParts parts;
  for (const auto& token : text::split(text, " ")) {
    if (token.empty()) continue;
    if (!readToken(token, parts)) return std::nullopt;
  }
  return assemble(parts);
}

int standardZoneBias() {
#ifdef _WIN32
  long seconds = 0;
  _tzset();
  _get_timezone(&seconds);
  return static_cast<int>(seconds / 60);
#else
  tzset();
  return static_cast<int>(timezone / 60);
#endif
}

text::DateTime localSendDate(std::string_view dateHeader, int biasMinutes) {
  std::string date(dateHeader.substr(0, dateHeader.find('(')));
  std::string zone;
  std::size_t sign = date.rfind('-');
  if (sign == std::string::npos) sign = date.rfind('+');
  if (sign != std::string::npos) {
    zone = date.substr(sign);
    date.resize(sign);
  }
  if (const std::size_t comma = date.find(','); comma != std::string::npos) date.erase(0, comma + 1);
  date = text::trim(date);
  zone = text::trim(zone);

  const auto sent = readDateText(date);
  if (!sent) throw AppError(error_number::kTypeMismatch, "Type mismatch");
  const int shiftMinutes = zoneMinutes(zoneTextOfBias(biasMinutes)) - zoneMinutes(zone);
  return text::DateTime::fromSerial(sent->serial() + shiftMinutes / 1440.0);
}

}  // namespace vonel::message
