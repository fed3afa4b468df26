#include "core/text/shared_text.h"

#include <algorithm>
#include <array>

#include "core/text/strings.h"

namespace vonel::text {
namespace {

bool isCrap(char c) { return c == '\r' || c == '\n' || c == ' ' || c == '-'; }

bool isPlainAlphaNumeric(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ';
}

}  // namespace

void cutOffNull(std::string& text) {
  const auto null = text.find('\0');
  if (null != std::string::npos) text.resize(null);
}

void removeChar(std::string& text, std::string_view character) {
  if (character.empty()) return;
  std::erase(text, character.front());
}

void removeExtraSpaces(std::string& text) {
  const auto end = std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; });
  text.erase(end, text.end());
}

std::string trimBlanksAndNulls(std::string_view text) {
  const auto first = text.find_first_not_of(std::string_view(" \0", 2));
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(std::string_view(" \0", 2));
  return std::string(text.substr(first, last - first + 1));
}

std::size_t wordCount(std::string_view text) {
  std::size_t words = 0;
  bool inWord = false;
  for (const char c : text) {
    const bool separator = c == ' ' || c == '\t' || c == '\r' || c == '\n';
    if (!separator && !inWord) ++words;
    inWord = !separator;
  }
  return words;
}

void trimJunkFromEnd(std::string& text) {
  while (!text.empty() && isCrap(text.back())) {
    text.pop_back();
    text.erase(text.find_last_not_of(' ') + 1);  // npos + 1 is 0: an all-blank rest goes too
  }
}

void trimJunkFromStart(std::string& text) {
  std::size_t from = 0;
  while (from < text.size() && isCrap(text[from])) {
    ++from;
    while (from < text.size() && text[from] == ' ') ++from;
  }
  text.erase(0, from);
}

void removeNonAlphaNumeric(std::string& text) {
  std::erase_if(text, [](char c) { return !isPlainAlphaNumeric(c); });
  text = trim(text);
}

bool containsNoCase(std::string_view text, std::string_view search) { return findNoCase(text, search) != 0; }

bool stringsEqual(std::string_view a, std::string_view b) { return equalsNoCase(trimView(a), trimView(b)); }

std::string cleanString(std::string_view text) {
  static constexpr std::string_view kForbidden = "\\/:*?<>|&,%";
  std::string out(text);
  for (char& c : out) {
    if (kForbidden.find(c) != std::string_view::npos) c = ' ';
  }
  static constexpr std::array<std::string_view, 4> kDevices = {"PRN", "CON", "NUL", "AUX"};
  if (std::find(kDevices.begin(), kDevices.end(), out) != kDevices.end()) out += '1';
  std::replace(out.begin(), out.end(), '"', ' ');
  return trim(out);
}

}  // namespace vonel::text
