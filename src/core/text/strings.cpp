#include "core/text/strings.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vonel::text {
namespace {

struct CaseTables {
  std::array<char, 256> up{};
  std::array<char, 256> down{};
  constexpr CaseTables() {
    for (int i = 0; i < 256; ++i) up[i] = down[i] = static_cast<char>(i);
    for (int c = 'A'; c <= 'Z'; ++c) pair(c, c + 32);
    for (int c = 0xC0; c <= 0xDE; ++c) {
      if (c != 0xD7) pair(c, c + 32);  // 0xD7 and 0xF7 are the multiply and divide signs
    }
    pair(0x8A, 0x9A);  // S caron
    pair(0x8C, 0x9C);  // OE ligature
    pair(0x8E, 0x9E);  // Z caron
    pair(0x9F, 0xFF);  // Y diaeresis
  }
  constexpr void pair(int upper, int lower) {
    up[lower] = static_cast<char>(upper);
    down[upper] = static_cast<char>(lower);
  }
};

// Built by the compiler, so that the hot case-blind searches pay no start-up check.
constexpr CaseTables kCaseTables;

constexpr const CaseTables& caseTables() { return kCaseTables; }

bool bytesEqualNoCase(char a, char b) {
  const auto& t = caseTables();
  return t.up[static_cast<unsigned char>(a)] == t.up[static_cast<unsigned char>(b)];
}

template <typename Matcher>
std::string replaceEach(std::string_view s, std::string_view findText, std::string_view with, Matcher findFrom) {
  if (findText.empty()) return std::string(s);
  std::string out;
  out.reserve(s.size());
  std::size_t from = 0;
  for (;;) {
    const std::size_t hit = findFrom(s, findText, from);
    if (hit == std::string_view::npos) break;
    out.append(s.substr(from, hit - from));
    out.append(with);
    from = hit + findText.size();
  }
  out.append(s.substr(from));
  return out;
}

std::size_t findNoCaseOffset(std::string_view haystack, std::string_view needle, std::size_t from) {
  if (needle.empty()) return from <= haystack.size() ? from : std::string_view::npos;
  if (needle.size() > haystack.size()) return std::string_view::npos;
  auto fold = [](char c) { return kCaseTables.up[static_cast<unsigned char>(c)]; };
  const char first = fold(needle[0]);
  // A first byte with no other case (a mark, a digit) can be jumped to with memchr.
  const bool caseless = caseTables().down[static_cast<unsigned char>(first)] == first;
  const std::size_t last = haystack.size() - needle.size();
  for (std::size_t i = from; i <= last; ++i) {
    if (caseless) {
      const void* hit = std::memchr(haystack.data() + i, first, last - i + 1);
      if (hit == nullptr) return std::string_view::npos;
      i = static_cast<std::size_t>(static_cast<const char*>(hit) - haystack.data());
    } else if (fold(haystack[i]) != first) {
      continue;
    }
    std::size_t k = 1;
    while (k < needle.size() && fold(haystack[i + k]) == fold(needle[k])) ++k;
    if (k == needle.size()) return i;
  }
  return std::string_view::npos;
}

}  // namespace

char upperByte(char c) { return caseTables().up[static_cast<unsigned char>(c)]; }
char lowerByte(char c) { return caseTables().down[static_cast<unsigned char>(c)]; }

std::string upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = upperByte(c);
  return out;
}

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = lowerByte(c);
  return out;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), bytesEqualNoCase);
}

std::string_view trimView(std::string_view s) {
  const auto first = s.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

std::string trim(std::string_view s) { return std::string(trimView(s)); }

std::string trimLeft(std::string_view s) {
  const auto first = s.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string() : std::string(s.substr(first));
}

std::string trimRight(std::string_view s) {
  const auto last = s.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string() : std::string(s.substr(0, last + 1));
}

std::size_t find(std::string_view haystack, std::string_view needle, std::size_t start) {
  if (start == 0 || start > haystack.size() + 1) return 0;
  const auto hit = haystack.find(needle, start - 1);
  return hit == std::string_view::npos ? 0 : hit + 1;
}

std::size_t findNoCase(std::string_view haystack, std::string_view needle, std::size_t start) {
  if (start == 0 || start > haystack.size() + 1) return 0;
  const auto hit = findNoCaseOffset(haystack, needle, start - 1);
  return hit == std::string_view::npos ? 0 : hit + 1;
}

std::size_t findLast(std::string_view haystack, std::string_view needle, std::size_t start) {
  const std::size_t from = start == std::string_view::npos ? std::string_view::npos : start - 1;
  if (start == 0) return 0;
  const auto hit = haystack.rfind(needle, from);
  return hit == std::string_view::npos ? 0 : hit + 1;
}

std::string mid(std::string_view s, std::size_t start, std::size_t length) {
  if (start == 0 || start > s.size()) return {};
  return std::string(s.substr(start - 1, length));
}

std::string left(std::string_view s, std::size_t length) { return std::string(s.substr(0, length)); }

std::string right(std::string_view s, std::size_t length) {
  return length >= s.size() ? std::string(s) : std::string(s.substr(s.size() - length));
}

std::string replaceAll(std::string_view s, std::string_view findText, std::string_view with) {
  return replaceEach(s, findText, with,
                     [](std::string_view h, std::string_view n, std::size_t from) { return h.find(n, from); });
}

std::string replaceAllNoCase(std::string_view s, std::string_view findText, std::string_view with) {
  return replaceEach(s, findText, with, findNoCaseOffset);
}

void replaceAllInPlace(std::string& text, std::string_view findText, std::string_view with) {
  if (text.find(findText) != std::string::npos) text = replaceAll(text, findText, with);
}

void replaceAllNoCaseInPlace(std::string& text, std::string_view findText, std::string_view with) {
  if (findNoCase(text, findText) != 0) text = replaceAllNoCase(text, findText, with);
}

std::vector<std::string> split(std::string_view s, std::string_view separator) {
  std::vector<std::string> pieces;
  if (separator.empty()) {
    pieces.emplace_back(s);
    return pieces;
  }
  std::size_t from = 0;
  for (;;) {
    const auto hit = s.find(separator, from);
    if (hit == std::string_view::npos) break;
    pieces.emplace_back(s.substr(from, hit - from));
    from = hit + separator.size();
  }
  pieces.emplace_back(s.substr(from));
  return pieces;
}

bool startsWithNoCase(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() && equalsNoCase(s.substr(0, prefix.size()), prefix);
}

std::string_view nextLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

}  // namespace vonel::text
