#pragma once
// The send date of a message in the machine's local standard time.
#include <optional>
#include <string_view>

#include "core/text/dates.h"

namespace vonel::message {

// The usual date and time forms of a Date header, without weekday and zone:
// "1 Jan 2024 10:00:00", "Jan 1 2024 10:00", "2024-01-15 10:00:00",
// "15-Jan-24", "1/15/2024 10:00 PM". Nothing when the text is not a date.
std::optional<text::DateTime> readDateText(std::string_view text);

// The machine's bias from UTC in minutes for standard time (UTC = local +
// bias, so zones east of Greenwich are negative). Daylight saving is left out.
int standardZoneBias();

// The date of a Date header taken out of its own zone and into the zone of
// the given bias. The minutes of a zone always count forwards, so "-0930"
// is nine hours back and thirty minutes forward. Throws AppError when the
// date or the zone can't be read, a date without a zone included.
text::DateTime localSendDate(std::string_view dateHeader, int biasMinutes);

}  // namespace vonel::message
