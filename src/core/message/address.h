#pragma once
// Splitting an address header into the address and the display name, the
// plain way the rule check and the windows rely on.
#include <string>
#include <string_view>

namespace vonel::message {

// The address in lower case: what follows the first "<" (less every ">"),
// else the whole text; blanks around "@" closed up, then cut at the first
// blank, so a bare list of two addresses gives the first with its comma.
std::string extractEmail(std::string_view text);

// What stands before a "<" at position 2 or later, else the whole text,
// without double quotes and apostrophes.
std::string extractName(std::string_view text);

// The first address a text mentions: the word around its first "@", from
// the blank before to the blank after, taken out of angle brackets. Empty
// when the text holds no "@".
std::string firstAddressIn(std::string_view text);

}  // namespace vonel::message
