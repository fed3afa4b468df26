#pragma once
// The Message-ID a message gets when it is spooled without one, so that the
// recipient and the Sent Items copy see the same one.
#include <string>
#include <string_view>

#include "core/text/dates.h"

namespace vonel::send {

// "<20261123093015.5f0c9e2a7b41d3c8a6e1f07d@example.org>": the moment, 96
// random bits, and the domain of the address (its letters, digits, dots and
// hyphens; "localhost" when it has none).
std::string newMessageId(std::string_view address, const text::DateTime& now);

}  // namespace vonel::send
