#pragma once
// Header decoding. It does not parse encoded words: it looks for charset and
// encoding markers anywhere in the value and cuts around them, so that a
// plain subject holding "q?" loses all up to it, and text after the first
// blank of a base64 value comes out twice (decoded, then as it was).
#include <string>
#include <string_view>

namespace vonel::message {

std::string isoDecode(std::string_view text);

}  // namespace vonel::message
