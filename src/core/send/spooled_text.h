#pragma once
// The texts the outbox makes on the way in and out: address lists split for
// the sender, and a spool file's text made ready for DATA.
#include <string>
#include <string_view>

namespace vonel::send {

struct AddressList {
  std::string addresses;  // joined with ";"
  std::string names;      // joined with ";"
};

// Splits on ";": each piece gives its address and its name; a piece without a
// name takes the addresses so far (its own included) as its name.
AddressList splitAddressList(std::string_view list);

// The addresses of a ";" list, each through extractEmail, joined with ";".
std::string addressesOf(std::string_view list);

// Cuts the first "Bcc:" header (any case) with its folded lines: up to the
// last line end before the next ":". Left as it is when no ":" follows.
std::string cutBccHeader(const std::string& text);

// The text without the store's own header lines (and their folded
// continuations); lines of the body that look alike stay.
std::string withoutStoreHeaders(std::string_view text);

// Trailing line ends off, every LF dropped, every CR made CR LF; then long
// lines cut. The dots of transparency are the session's to add.
std::string wireText(std::string text);

}  // namespace vonel::send
