#include "core/send/data_text.h"

#include <algorithm>

#include "core/text/strings.h"

namespace vonel::send {
namespace {

constexpr std::size_t kMaxLine = 998;

std::string_view separatorOf(std::string_view text) {
  if (text.find("\r\n") != std::string_view::npos) return "\r\n";
  if (text.find('\r') != std::string_view::npos) return "\r";
  return "";
}

// Cuts at the last blank at or before position 998, else at 998, while at
// least 999 characters remain; the blank stays with the piece before the cut.
void appendCut(std::string& out, std::string_view line, std::string_view separator) {
  while (line.size() > kMaxLine) {
    std::size_t cut = line.rfind(' ', kMaxLine - 1);
    cut = cut == std::string_view::npos ? kMaxLine : cut + 1;
    out.append(line.substr(0, cut));
    out.append(separator);
    line.remove_prefix(cut);
  }
  out.append(line);
}

}  // namespace

std::string cutLongLines(std::string_view text) {
  if (text.empty()) return {};
  std::string_view separator = separatorOf(text);
  const std::vector<std::string> lines =
      separator.empty() ? std::vector<std::string>{std::string(text)} : text::split(text, separator);
  std::string out;
  out.reserve(text.size() + text.size() / 64 + 8);
  bool first = true;
  for (const auto& line : lines) {
    if (line.size() > kMaxLine && separator.empty()) separator = "\r\n";
    if (!first) out.append(separator);
    first = false;
    appendCut(out, line, separator);
  }
  return out;
}

std::string dotStuffed(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 64 + 1);
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && c == '.') out += '.';
    out += c;
    lineStart = c == '\n';
  }
  return out;
}

bool hasEightBit(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) > 127; });
}

}  // namespace vonel::send
