#pragma once
// The uuencoding of one short line.
#include <string>
#include <string_view>

namespace vonel::send {

// At most 63 bytes; longer input gives empty text. Starts with the table
// entry of the length; one byte in the last group adds "==", two add "=".
std::string uuencodeLine(std::string_view text);

}  // namespace vonel::send
