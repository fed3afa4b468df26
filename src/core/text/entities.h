#pragma once
// The named character entities of the mark-up conversions: the double quote,
// the blank, "<", ">", the two dashes and the Latin-1 letters and signs.
#include <optional>
#include <string>
#include <string_view>

namespace vonel::text {

// The entity ("&eacute;") that stands for one byte, or empty when the table has none.
std::string_view entityFor(unsigned char byte);
// The byte an entity name stands for ("eacute" without '&' and ';'), exact case.
std::optional<unsigned char> byteForEntity(std::string_view name);

// Turns the entities of the table back into their bytes and cuts the text at
// the first null byte.
void htmlToChar(std::string& text);

// One pass from the left over "&name;" references (names up to seven
// characters): each that `lookup` knows becomes its byte, the rest stay as
// they are. The result is cut at the first null byte.
using EntityLookup = std::optional<unsigned char> (*)(std::string_view name);
std::string decodeEntities(std::string_view text, EntityLookup lookup);

}  // namespace vonel::text
