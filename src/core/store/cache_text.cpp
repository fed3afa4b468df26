#include "core/store/cache_text.h"

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
  if (text.find('%') == std::string_view::npos) return std::string(text);
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == '%' && i + 2 < text.size()) {
      // Two characters that aren't hex read as far as they go ("%zz" gives code 0), so a
      // damaged cache file still reads to the end.
      const auto code = static_cast<long long>(text::val("&H" + std::string(text.substr(i + 1, 2))));
      out += static_cast<char>(code & 0xFF);
      i += 3;
    } else {
      out += text[i++];
    }
  }
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
