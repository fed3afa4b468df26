#pragma once
// Mail text is held as bytes of the Windows-1252 code page, one byte per character.
#include <optional>
#include <string>
#include <string_view>

namespace vonel::text {

// The Unicode code point of one Windows-1252 byte. The five bytes the code page
// leaves unassigned map to the C1 control of the same value, as Windows does.
char32_t cp1252ToUnicode(unsigned char byte);

// The Windows-1252 byte of a code point; nothing when the code page has none.
std::optional<char> unicodeToCp1252(char32_t codePoint);

// Conversions between Windows-1252 bytes and UTF-8, for terminals and files
// that the outside world reads. Unmappable characters become '?'.
std::string cp1252ToUtf8(std::string_view bytes);
std::string utf8ToCp1252(std::string_view utf8);

}  // namespace vonel::text
