#include "core/store/cache_text.h"

#include <charconv>

#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace {

bool staysPlain(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == ':' || c == '.' ||
         c == ',' || c == '?';
}

// 0-based offset of `needle` at or after `from`, any case; npos when absent.
std::size_t findNoCaseAt(std::string_view text, std::string_view needle, std::size_t from) {
  const std::size_t hit = text::findNoCase(text, needle, from + 1);
  return hit == 0 ? std::string_view::npos : hit - 1;
}

// `text` less every occurrence of `tag`, any case, in one pass.
std::string withoutTag(std::string_view text, std::string_view tag) {
  std::string out;
  out.reserve(text.size());
  std::size_t at = 0;
  for (std::size_t hit = findNoCaseAt(text, tag, 0); hit != std::string_view::npos; hit = findNoCaseAt(text, tag, at)) {
    out.append(text.substr(at, hit - at));
    at = hit + tag.size();
  }
  out.append(text.substr(at));
  return out;
}

// The byte of an escape's two characters, read as hex as far as they go
// ("%zz" gives 0, so a damaged cache file still reads to the end); blanks
// among them are passed over as the number reader does.
char escapedByte(std::string_view two) {
  if (two.find_first_of(" \t\n") != std::string_view::npos) {
    return static_cast<char>(static_cast<long long>(text::val("&H" + std::string(two))) & 0xFF);
  }
  unsigned value = 0;
  std::from_chars(two.data(), two.data() + two.size(), value, 16);
  return static_cast<char>(value & 0xFF);
}

}  // namespace

std::string htmlEncode(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (const char c : text) {
    if (staysPlain(c)) {
      out += c;
      continue;
    }
    const auto code = static_cast<unsigned char>(c);
    out += '%';
    out += kHex[code >> 4];
    out += kHex[code & 15];
  }
  return out;
}

std::string htmlDecode(std::string_view text) {
  std::size_t escape = text.find('%');
  if (escape == std::string_view::npos) return std::string(text);
  std::string out;
  out.reserve(text.size());
  std::size_t done = 0;
  // A folder of thousands of entries opens through here: runs between escapes are copied whole.
  for (; escape != std::string_view::npos && escape + 2 < text.size(); escape = text.find('%', done)) {
    out.append(text.substr(done, escape - done));
    out += escapedByte(text.substr(escape + 1, 2));
    done = escape + 3;
  }
  out.append(text.substr(done));
  return out;
}

std::string extractBetweenTags(std::string_view text, std::string_view open, std::string_view close) {
  const std::size_t start = findNoCaseAt(text, open, 0);
  if (start == std::string_view::npos) return {};
  const std::size_t end = findNoCaseAt(text, close, start);
  const auto inner = text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
  // One tag after the other, as deleting the first may join pieces into the second.
  return withoutTag(withoutTag(inner, open), close);
}

double extractFloat(std::string_view text, std::string_view open, std::string_view close) {
  return text::val(extractBetweenTags(text, open, close));
}

bool extractBool(std::string_view text, std::string_view open, std::string_view close) {
  return extractBetweenTags(text, open, close) == "-1";
}

std::string extractString(std::string_view text, std::string_view open, std::string_view close) {
  return htmlDecode(extractBetweenTags(text, open, close));
}

}  // namespace vonel::store
