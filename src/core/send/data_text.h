#pragma once
// Text made fit for the DATA command: dot-stuffed lines no longer than 998
// characters. Not idempotent: every pass adds one more dot to a line that
// begins with one, and the text passes three times on its way to the wire.
#include <string>
#include <string_view>

namespace vonel::send {

std::string fitForData(std::string_view text);

// True when a byte of the text is above 127.
bool hasEightBit(std::string_view text);

}  // namespace vonel::send
