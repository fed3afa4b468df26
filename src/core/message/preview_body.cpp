#include "core/message/preview_body.h"

#include <string_view>

namespace vonel::message {

std::string previewBody(std::string_view plainText) {
  const std::size_t first = plainText.find_first_not_of(" \r\n");
  if (first == std::string_view::npos) return {};
  // The blanks a line end in the lead would get are dropped with it, so the
  // lead can go first.
  const std::string_view rest = plainText.substr(first);
  std::string shown;
  shown.reserve(rest.size());
  std::size_t from = 0;
  for (std::size_t lineEnd = rest.find("\r\n"); lineEnd != std::string_view::npos;
       lineEnd = rest.find("\r\n", from)) {
    shown.append(rest, from, lineEnd - from).append("  \r\n");
    from = lineEnd + 2;
  }
  shown.append(rest, from);
  return shown;
}

}  // namespace vonel::message
