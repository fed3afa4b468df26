#pragma once
// The "Date:" line that goes in front of a message on the wire.
#include <string>

#include "core/text/dates.h"

namespace vonel::smtp {

// Sign, two digits of hours and two of minutes from the system's standard
// bias (minutes west of UTC). Daylight saving is not taken into account, and
// a zone less than an hour west of UTC comes out with "+" ("+0030" for a bias of 30).
std::string timeZoneText(int standardBiasMinutes);

// "Date: Mon, 23 Nov 2026 08:05:09 +0100" and CR LF.
std::string dateLine(const text::DateTime& now, const std::string& timeZone);

}  // namespace vonel::smtp
