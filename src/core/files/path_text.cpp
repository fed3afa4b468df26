#include "core/files/path_text.h"

#include "core/text/cp1252.h"

namespace vonel::files {

std::filesystem::path pathFromText(std::string_view text) {
  const std::string utf8 = text::cp1252ToUtf8(text);
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string textFromPath(const std::filesystem::path& path) {
  const std::u8string utf8 = path.u8string();
  return text::utf8ToCp1252(std::string(utf8.begin(), utf8.end()));
}

}  // namespace vonel::files
