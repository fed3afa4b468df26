#include "core/log/log_tail.h"

#include <fstream>

namespace vonel {

std::size_t tailStart(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return 0;
  const std::size_t cut = text.size() - limit;
  // A cut right after a line end keeps that line whole.
  const std::size_t lineEnd = text.find('\n', cut - 1);
  if (lineEnd == std::string_view::npos || lineEnd + 1 >= text.size()) return cut;
  return lineEnd + 1;
}

std::optional<std::string> readLogTail(const std::filesystem::path& file, std::size_t limit) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) return std::nullopt;
  const auto size = static_cast<std::size_t>(in.tellg());
  // One byte before the window tells whether it starts at a line start.
  const std::size_t read = size > limit ? limit + 1 : size;
  std::string bytes(read, '\0');
  in.seekg(static_cast<std::streamoff>(size - read));
  if (!in.read(bytes.data(), static_cast<std::streamsize>(read))) return std::nullopt;
  return bytes.substr(tailStart(bytes, limit));
}

}  // namespace vonel
