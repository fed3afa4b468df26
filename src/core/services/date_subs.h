#pragma once
// How the system writes dates, and the date forms and date tokens the
// windows and templates use. The locale's facts come from the platform.
#include <array>
#include <string>
#include <string_view>

#include "core/log/logging.h"
#include "core/services/clock.h"
#include "core/text/dates.h"

namespace vonel {

struct LocaleFacts {
  std::string shortDateProbe = "12/25/2001";  // the system's short text of 25 December 2001
  text::MonthNames shortMonthNames = text::englishShortMonthNames();
  std::string trueWord = "True";
  std::string falseWord = "False";
  std::string decimalMark = ".";
};

class cSharedDateSubs {
 public:
  cSharedDateSubs(const LocaleFacts& facts, cSharedLogging& log, const Clock& clock);

  bool TranslateMonthNames = false;
  std::array<std::string, 12> ShortMonthNames;
  std::array<std::string, 12> EnglishMonthNames;
  std::array<std::string, 12> FullEnglishMonthNames;
  bool CommaThousandSeparator = false;
  int SysDateYearField = 0;
  int SysDateMonthField = 0;
  int SysDateDayField = 0;
  std::string TrueStr;
  std::string FalseStr;
  std::string DateFormatString;
  std::string FullDateFormatString;
  std::string FullDateFormatPlusTimeString;
  std::string DateSeparator;

  std::string FormatDate(const text::DateTime& date) const;
  // Uses the long format without the time, as it always has.
  std::string FormatDatePlusTime(const text::DateTime& date) const;
  std::string ShortFormatDate(const text::DateTime& date) const;
  const std::string& LocalDateFormat() const { return DateFormatString; }
  static text::DateTime RemoveSeconds(text::DateTime date);
  std::string ConvertMyDateVar(std::string_view text) const;

 private:
  void readDateFormat(const std::string& probe);

  const Clock& clock_;
};

}  // namespace vonel
