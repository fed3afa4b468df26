#pragma once
// The value escaping and the tag extraction of the folder cache file. The
// reader finds elements by a search that ignores case and tolerates a missing
// closing tag, which is what lets cache files with mixed spellings of the
// tags read back.
#include <string>
#include <string_view>

namespace vonel::store {

// Letters, digits and ":" "." "," "?" stay; every other byte becomes "%" and
// two upper-case hex digits.
std::string htmlEncode(std::string_view text);
// The reverse, forgiving: a "%" without two characters after it stays.
std::string htmlDecode(std::string_view text);

// From the first `open` (any case) up to the first `close` after it, or to
// the end; every occurrence of both tags deleted. Empty when `open` is absent.
std::string extractBetweenTags(std::string_view text, std::string_view open, std::string_view close);
double extractFloat(std::string_view text, std::string_view open, std::string_view close);
// True only for "-1".
bool extractBool(std::string_view text, std::string_view open, std::string_view close);
std::string extractString(std::string_view text, std::string_view open, std::string_view close);

}  // namespace vonel::store
