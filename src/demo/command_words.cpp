#include "demo/command_words.h"

#include "core/text/strings.h"

namespace vonel::sandbox {

CommandWords splitCommand(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return {text::upper(line), {}};
  return {text::upper(line.substr(0, blank)), line.substr(blank + 1)};
}

std::optional<std::size_t> plainNumber(std::string_view text) {
  if (text.empty() || text.size() > 9) return std::nullopt;
  std::size_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<std::size_t>(c - '0');
  }
  return value;
}

}  // namespace vonel::sandbox
