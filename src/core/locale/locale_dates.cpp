#include "core/locale/locale_dates.h"

#include "core/text/strings.h"

namespace vonel {
namespace {

std::string withProbeSeparator(std::string format, const std::string& probe) {
  if (probe.find('.') != std::string::npos) format = text::replaceAll(format, "/", ".");
  if (probe.find('-') != std::string::npos) format = text::replaceAll(format, "/", "-");
  return format;
}

}  // namespace

LocaleDates::LocaleDates(const LocaleFacts& facts, Log& log, const Clock& clock)
    : clock_(clock) {
  commaThousandSeparator = facts.decimalMark == ",";
  for (std::size_t m = 0; m < 12; ++m) {
    englishMonthNames[m] = text::upper(text::englishShortMonthNames()[m]);
    shortMonthNames[m] = text::upper(facts.shortMonthNames[m]);
    if (shortMonthNames[m] != englishMonthNames[m]) translateMonthNames = true;
  }
  readDateFormat(facts.shortDateProbe);
  fullDateFormatPlusTimeString = fullDateFormatString + " HH:MM";
  trueWord = text::upper(facts.trueWord);
  falseWord = text::upper(facts.falseWord);

  log.addAction("Date format: " + dateFormatString);
  log.addAction("Full date format: " + fullDateFormatString);
  log.addAction("Full date format plus time: " + fullDateFormatPlusTimeString);
  log.addAction("Date separator: " + dateSeparator);
  log.addAction("True string: " + trueWord + " False string: " + falseWord);
}

void LocaleDates::readDateFormat(const std::string& probe) {
  std::size_t year = text::find(probe, "2001");
  const bool twoDigitYear = year == 0;
  if (twoDigitYear) year = text::find(probe, "01");
  const std::size_t month = text::find(probe, "12");
  const std::size_t day = text::find(probe, "25");

  const bool yearFirst = year > 0 && year < month && year < day;
  if (!yearFirst) {
    yearField = 3;
    if (month < day) {
      dateFormatString = "MM/DD/YYYY";
      monthField = 1;
      dayField = 2;
    } else {
      dateFormatString = "DD/MM/YYYY";
      monthField = 2;
      dayField = 1;
    }
  } else {
    yearField = 1;
    // Year, day, month gets no picture: the format stays empty, and so does
    // every short date ($TODAY$ in a template).
    if (month < day) {
      dateFormatString = "YYYY/MM/DD";
      monthField = 2;
      dayField = 3;
    }
  }

  const char separator = probe.find('/') != std::string::npos   ? '/'
                         : probe.find('.') != std::string::npos ? '.'
                         : probe.find('-') != std::string::npos ? '-'
                                                                 : '/';
  dateSeparator = std::string(1, separator);
  dateFormatString = withProbeSeparator(dateFormatString, probe);
  fullDateFormatString = withProbeSeparator("DD/MMM/YYYY", probe);
  if (twoDigitYear) dateFormatString = text::replaceAll(dateFormatString, "YYYY", "YY");
}

std::string LocaleDates::formatDate(const text::DateTime& date) const {
  return text::formatDate(date, fullDateFormatString);
}

std::string LocaleDates::shortFormatDate(const text::DateTime& date) const {
  return text::formatDate(date, dateFormatString);
}

std::string LocaleDates::expandDateTokens(std::string_view input) const {
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
      {"$TODAY$", shortFormatDate(now)},
      {"$7DAYSAGO$", shortFormatDate(now.addDays(-7))},
      {"$TIME$", text::formatDate(now, "HH.MM.SS")},
  };
  for (const auto& [token, replacement] : tokens) out = text::replaceAllNoCase(out, token, replacement);
  return out;
}

}  // namespace vonel
