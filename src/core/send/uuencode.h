#pragma once
// The uuencoding of one short line, kept for the uuencode mode of the spool.
#include <string>
#include <string_view>

namespace vonel::send {

// At most 63 bytes; longer input gives empty text. Starts with the table
// entry of the length; one byte in the last group adds "==", two add "=".
std::string uuEncodeString(std::string_view text);

}  // namespace vonel::send
