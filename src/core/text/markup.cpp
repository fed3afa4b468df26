#include "core/text/markup.h"

#include <utility>

#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::text {
namespace {

constexpr std::string_view kBullet = "\x95";
constexpr std::string_view kEuro = "\x80";

struct Swap {
  std::string_view find;
  std::string_view replace;
};

// The order matters only in that it is the order these were always applied.
constexpr Swap kNumericForms[] = {
    {"&#8230;", "..."}, {"&#8220;", "\""}, {"&#8221;", "\""}, {"&#8216;", "'"},   {"&#8217;", "'"},
    {"&#8212;", "-"},   {"&#8230;", "..."}, {"&#8211;", "..."}, {"&#8220;", "\""}, {"&#8221;", "\""},
    {"&#8243;", "\""},  {"&#8216;", "'"},   {"&#8242;", "'"},   {"&#8217;", "'"},   {"&#8212;", "-"},
    {"&#8364;", kEuro},   {"&#8226;", kBullet},
};

// Each pass takes the first "&#...;" and resolves every copy of it at once.
void resolveDecimalReferences(std::string& text) {
  for (;;) {
    const std::size_t start = find(text, "&#");
    if (start == 0) return;
    const std::size_t semicolon = find(text, ";", start + 1);
    if (semicolon == 0) return;
    const std::string reference = mid(text, start, semicolon - start + 1);
    const double code = val(mid(text, start + 2, semicolon - start - 2));
    const char byte = static_cast<char>(static_cast<int>(code));
    const bool known = code >= 1 && code < 255;
    ReplaceWith(text, reference, known ? std::string_view(&byte, 1) : std::string_view());
  }
}

}  // namespace

void MyReplace(std::string& text, std::string_view find, std::string_view replace, bool caseSensitive) {
  // Most calls find nothing; they shouldn't pay for a copy of a whole body.
  if (caseSensitive) {
    if (text.find(find) != std::string::npos) text = replaceAll(text, find, replace);
  } else if (findNoCase(text, find)) {
    text = replaceAllNoCase(text, find, replace);
  }
}

void MyReplaceNoCaps(std::string& text, std::string_view find, std::string_view replace) {
  MyReplace(text, find, replace, true);
}

void ReplaceWith(std::string& text, std::string_view find, std::string_view replace) {
  MyReplace(text, find, replace, true);
}

void ReplaceWith_NC(std::string& text, std::string_view find, std::string_view replace) {
  MyReplace(text, find, replace, false);
}

void ReplaceUsingC(std::string& text, std::string_view find, std::string_view replace) {
  MyReplace(text, find, replace, true);
}

void cStripHTML(std::string& text) {
  std::string out;
  out.reserve(text.size());
  std::size_t from = 0;
  while (from < text.size()) {
    const std::size_t open = text.find('<', from);
    const std::size_t close = open == std::string::npos ? std::string::npos : text.find('>', open + 1);
    if (close == std::string::npos) break;
    out.append(text, from, open - from);
    from = close + 1;
  }
  out.append(text, std::min(from, text.size()));
  text = std::move(out);
}

void StripHtml(std::string& text) {
  if (trimView(text).empty()) return;
  if (text.find_first_of("<>") == std::string::npos) return;
  std::size_t from = 1;
  for (;;) {
    const std::size_t open = findNoCase(text, "<style>", from);
    if (open == 0) break;
    const std::size_t close = findNoCase(text, "</style>", open + 1);
    if (close == 0) break;
    text.erase(open - 1, close + 8 - open);
    from = open;
  }
  cStripHTML(text);
  CutOffNull(text);
}

void HTMLConstToChar(std::string& text) {
  // Every form below starts with "&".
  if (trimView(text).empty() || text.find('&') == std::string::npos) return;
  ReplaceWith_NC(text, "&hellip;", "...");
  ReplaceWith_NC(text, "&bull;", kBullet);
  ReplaceWith(text, "&prime;", "'");
  ReplaceWith(text, "&Prime;", "\"");
  if (find(text, "&#") == 0) return;
  for (const Swap& swap : kNumericForms) ReplaceWith_NC(text, swap.find, swap.replace);
  resolveDecimalReferences(text);
}

}  // namespace vonel::text
