#pragma once
// The small text jobs of the mail code: cutting, cleaning and comparing
// strings of Windows-1252 bytes. Procedures that take a `std::string&`
// change it in place; the others return their result.
#include <cstddef>
#include <string>
#include <string_view>

namespace vonel::text {

// Cuts the text before its first null byte.
void CutOffNull(std::string& text);
// Deletes every occurrence of the first character of `character`; an empty one does nothing.
void RemoveChar(std::string& text, std::string_view character);
// Each run of blanks becomes one blank.
void RemoveExtraSpaces(std::string& text);
// Blanks and null bytes off both ends, as the helper library's trim does.
std::string cTrim(std::string_view text);
// A string of the given bytes, trimmed by cTrim.
std::string ByteArrayToString(std::string_view bytes);
// Words are runs of characters other than blanks, tabs and line ends.
std::size_t WordCount(std::string_view text);

// While the last character is CR, LF, blank or "-": drops it and right-trims blanks.
void EatCrapFromEnd(std::string& text);
// The same at the front.
void EatCrapFromStart(std::string& text);

// Keeps only A-Z, a-z, 0-9 and blanks (accented letters go too), then trims.
void RemoveNonAlphaNumeric(std::string& text);

bool Contains(std::string_view text, std::string_view search);
// The name the mail code uses when it searches a message body.
bool StringContains(std::string_view text, std::string_view search);
// Equal once both are trimmed, ignoring case.
bool StringsEqual(std::string_view a, std::string_view b);

// A file name made of any text: the characters Windows forbids (and & , %)
// become blanks, the device names get a "1", quotes become blanks, trimmed.
std::string CleanString(std::string_view text);

}  // namespace vonel::text
