#include "protocol/smtp/date_line.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace vonel::smtp {

std::string timeZoneText(int standardBiasMinutes) {
  const int hours = -standardBiasMinutes / 60;
  const int minutes = std::abs(standardBiasMinutes % 60);
  char text[16];
  std::snprintf(text, sizeof text, "%s%02d%02d", hours < 0 ? "-" : "", std::abs(hours), minutes);
  const std::string zone = text;
  return zone.starts_with('-') ? zone : "+" + zone;
}

std::string dateLine(const text::DateTime& now, const std::string& timeZone) {
  static constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  char text[64];
  std::snprintf(text, sizeof text, "Date: %s, %d %s %04d %02d:%02d:%02d ", kDays[static_cast<std::size_t>(now.weekday() - 1)],
                now.day, text::englishShortMonthNames()[static_cast<std::size_t>(now.month - 1)].c_str(), now.year,
                now.hour, now.minute, now.second);
  return text + timeZone + "\r\n";
}

}  // namespace vonel::smtp
