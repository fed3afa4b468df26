#include "protocol/pop3/pop3_reply_text.h"

#include "core/text/strings.h"

namespace vonel::pop3 {

std::string withoutFirstLine(std::string text) {
  const std::size_t lineEnd = text::find(text, "\r\n");
  // Up to and including the first CR LF: find counts from 1, so lineEnd + 1
  // reaches the LF. Every text handed in holds the terminator, and so a CR LF.
  text.erase(0, lineEnd + 1);
  return text;
}

}  // namespace vonel::pop3
