#pragma once
// How the system writes dates, and the date forms and date tokens the
// windows and templates use. The locale's facts come from the platform.
#include <array>
#include <string>
#include <string_view>

#include "core/log/log.h"
#include "core/time/clock.h"
#include "core/text/dates.h"

namespace vonel {

struct LocaleFacts {
  std::string shortDateProbe = "12/25/2001";  // the system's short text of 25 December 2001
  text::MonthNames shortMonthNames = text::englishShortMonthNames();
  std::string trueWord = "True";
  std::string falseWord = "False";
  std::string decimalMark = ".";
};

class LocaleDates {
 public:
  LocaleDates(const LocaleFacts& facts, Log& log, const Clock& clock);

  bool translateMonthNames = false;
  std::array<std::string, 12> shortMonthNames;
  std::array<std::string, 12> englishMonthNames;
  bool commaThousandSeparator = false;
  int yearField = 0;
  int monthField = 0;
  int dayField = 0;
  std::string trueWord;
  std::string falseWord;
  std::string dateFormatString;
  std::string fullDateFormatString;
  std::string fullDateFormatPlusTimeString;
  std::string dateSeparator;

  std::string formatDate(const text::DateTime& date) const;
  std::string shortFormatDate(const text::DateTime& date) const;
  std::string expandDateTokens(std::string_view text) const;

 private:
  void readDateFormat(const std::string& probe);

  const Clock& clock_;
};

}  // namespace vonel
