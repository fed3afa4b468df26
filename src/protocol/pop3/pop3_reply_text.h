#pragma once
// The shape of POP3 replies as the session reads them.
#include <cstddef>
#include <string>
#include <string_view>

namespace vonel::pop3 {

// The end of a multi-line reply, with the line end before it.
inline constexpr std::string_view kTerminator = "\n.\r\n";
// A list or header block beyond this is not a reply any more.
inline constexpr std::size_t kLongestGatheredReply = std::size_t{64} << 20;

// The reply without its status line; the rest stays where it is, as a message may be very large.
std::string withoutFirstLine(std::string text);

}  // namespace vonel::pop3
