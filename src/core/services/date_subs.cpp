#include "core/services/date_subs.h"

#include "core/text/strings.h"

namespace vonel {
namespace {

std::string withProbeSeparator(std::string format, const std::string& probe) {
  if (probe.find('.') != std::string::npos) format = text::replaceAll(format, "/", ".");
  if (probe.find('-') != std::string::npos) format = text::replaceAll(format, "/", "-");
  return format;
}

}  // namespace

cSharedDateSubs::cSharedDateSubs(const LocaleFacts& facts, cSharedLogging& log, const Clock& clock)
    : clock_(clock) {
  CommaThousandSeparator = facts.decimalMark == ",";
  for (std::size_t m = 0; m < 12; ++m) {
    FullEnglishMonthNames[m] = text::englishMonthNames()[m];
    EnglishMonthNames[m] = text::upper(text::englishShortMonthNames()[m]);
    ShortMonthNames[m] = text::upper(facts.shortMonthNames[m]);
    if (ShortMonthNames[m] != EnglishMonthNames[m]) TranslateMonthNames = true;
  }
  readDateFormat(facts.shortDateProbe);
  FullDateFormatPlusTimeString = FullDateFormatString + " HH:MM";
  TrueStr = text::upper(facts.trueWord);
  FalseStr = text::upper(facts.falseWord);

  log.AddAction("Date format: " + DateFormatString);
  log.AddAction("Full date format: " + FullDateFormatString);
  log.AddAction("Full date format plus time: " + FullDateFormatPlusTimeString);
  log.AddAction("Date separator: " + DateSeparator);
  log.AddAction("True string: " + TrueStr + " False string: " + FalseStr);
}

void cSharedDateSubs::readDateFormat(const std::string& probe) {
  std::size_t year = text::find(probe, "2001");
  const bool twoDigitYear = year == 0;
  if (twoDigitYear) year = text::find(probe, "01");
  const std::size_t month = text::find(probe, "12");
  const std::size_t day = text::find(probe, "25");

  const bool yearFirst = year > 0 && year < month && year < day;
  if (!yearFirst) {
    SysDateYearField = 3;
    if (month < day) {
      DateFormatString = "MM/DD/YYYY";
      SysDateMonthField = 1;
      SysDateDayField = 2;
    } else {
      DateFormatString = "DD/MM/YYYY";
      SysDateMonthField = 2;
      SysDateDayField = 1;
    }
  } else {
    SysDateYearField = 1;
    if (year < month && month < day) {
      DateFormatString = "YYYY/MM/DD";
      SysDateMonthField = 2;
      SysDateDayField = 3;
    } else if (month < day) {
      // Kept as it always was: this second test can't tell the two orders
      // apart, and a probe that meets neither leaves the format empty.
      DateFormatString = "YYYY/DD/MM";
      SysDateMonthField = 3;
      SysDateDayField = 2;
    }
  }

  DateSeparator = probe.find('/') != std::string::npos   ? "/"
                  : probe.find('.') != std::string::npos ? "."
                  : probe.find('-') != std::string::npos ? "-"
                                                          : "/";
  DateFormatString = withProbeSeparator(DateFormatString, probe);
  FullDateFormatString = withProbeSeparator("DD/MMM/YYYY", probe);
  if (twoDigitYear) DateFormatString = text::replaceAll(DateFormatString, "YYYY", "YY");
}

std::string cSharedDateSubs::FormatDate(const text::DateTime& date) const {
  return text::formatDate(date, FullDateFormatString);
}

std::string cSharedDateSubs::FormatDatePlusTime(const text::DateTime& date) const {
  return text::formatDate(date, FullDateFormatString);
}

std::string cSharedDateSubs::ShortFormatDate(const text::DateTime& date) const {
  return text::formatDate(date, DateFormatString);
}

text::DateTime cSharedDateSubs::RemoveSeconds(text::DateTime date) {
  date.second = 0;
  return date;
}

std::string cSharedDateSubs::ConvertMyDateVar(std::string_view input) const {
  const text::DateTime now = clock_.now();
  std::string out = text::replaceAllNoCase(input, "$WEEKDAY$", "$DAY$");
  out = text::replaceAllNoCase(out, "$YYYY$", "$YEAR$");
  if (text::findNoCase(out, "$DAY$")) out = text::replaceAllNoCase(out, "$DAY$", text::formatDate(now, "DDD"));
  const std::pair<const char*, std::string> tokens[] = {
      {"$DATE$", text::formatDate(now, "YYYYMMDD")},
      {"$MMM$", text::formatDate(now, "MMM")},
      {"$DD$", text::formatDate(now, "DD")},
      {"$MM$", text::formatDate(now, "MM")},
      {"$MONTH$", text::formatDate(now, "MMMM")},
      {"$YY$", text::formatDate(now, "YY")},
      {"$YEAR$", text::formatDate(now, "YYYY")},
      {"$TODAY$", ShortFormatDate(now)},
      {"$7DAYSAGO$", ShortFormatDate(now.addDays(-7))},
      {"$TIME$", text::formatDate(now, "HH.MM.SS")},
  };
  for (const auto& [token, replacement] : tokens) out = text::replaceAllNoCase(out, token, replacement);
  return out;
}

}  // namespace vonel
