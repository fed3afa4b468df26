#pragma once
// The small text jobs of the mail code: cutting, cleaning and comparing
// strings of Windows-1252 bytes. Procedures that take a `std::string&`
// change it in place; the others return their result.
#include <cstddef>
#include <string>
#include <string_view>

namespace vonel::text {

// Cuts the text before its first null byte.
void cutOffNull(std::string& text);
// Deletes every occurrence of the first character of `character`; an empty one does nothing.
void removeChar(std::string& text, std::string_view character);
// Each run of blanks becomes one blank.
void removeExtraSpaces(std::string& text);
// Blanks and null bytes off both ends, as the helper library's trim does.
std::string trimBlanksAndNulls(std::string_view text);
// Words are runs of characters other than blanks, tabs and line ends.
std::size_t wordCount(std::string_view text);

// While the last character is CR, LF, blank or "-": drops it and right-trims blanks.
void trimJunkFromEnd(std::string& text);
// The same at the front.
void trimJunkFromStart(std::string& text);

// Keeps only A-Z, a-z, 0-9 and blanks (accented letters go too), then trims.
void removeNonAlphaNumeric(std::string& text);

// Whether the text holds the search text, ignoring case.
bool containsNoCase(std::string_view text, std::string_view search);
// Equal once both are trimmed, ignoring case.
bool stringsEqual(std::string_view a, std::string_view b);

// A file name made of any text: the characters Windows forbids (and & , %)
// become blanks, the device names get a "1", quotes become blanks, trimmed.
std::string cleanString(std::string_view text);

}  // namespace vonel::text
