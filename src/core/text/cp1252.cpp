#include "core/text/cp1252.h"

#include <array>

namespace vonel::text {
namespace {

constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace

char32_t cp1252ToUnicode(unsigned char byte) {
  if (byte >= 0x80 && byte < 0xA0) return kHighControls[byte - 0x80];
  return byte;
}

std::optional<char> unicodeToCp1252(char32_t codePoint) {
  if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) return static_cast<char>(codePoint);
  for (std::size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == codePoint) return static_cast<char>(0x80 + i);
  }
  return std::nullopt;
}

std::string cp1252ToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (char c : bytes) appendUtf8(out, cp1252ToUnicode(static_cast<unsigned char>(c)));
  return out;
}

std::string utf8ToCp1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    int length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + length > utf8.size()) {
      out += '?';
      ++i;
      continue;
    }
    char32_t cp = length == 1 ? lead : lead & (0x7F >> length);
    bool valid = true;
    for (int k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) valid = false;
      cp = (cp << 6) | (next & 0x3F);
    }
    if (!valid) {
      out += '?';
      ++i;
      continue;
    }
    out += unicodeToCp1252(cp).value_or('?');
    i += length;
  }
  return out;
}

}  // namespace vonel::text
