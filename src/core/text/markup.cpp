#include "core/text/markup.h"

#include <optional>
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

// No replacement makes another's text, so their order changes nothing. An
// en dash reads as "...": the stripped body the rules and the Bayes tokens
// see depends on it.
constexpr Swap kNumericForms[] = {
    {"&#8230;", "..."}, {"&#8220;", "\""}, {"&#8221;", "\""}, {"&#8216;", "'"}, {"&#8217;", "'"},
    {"&#8212;", "-"},   {"&#8211;", "..."}, {"&#8243;", "\""}, {"&#8242;", "'"}, {"&#8364;", kEuro},
    {"&#8226;", kBullet},
};

// The byte a decimal reference stands for; nothing for codes outside 1 to 254.
std::string_view referenceByte(std::string_view digits, char& byte) {
  const int code = toWhole<int>(val(digits));  // rounded: "&#65.6;" stands for "B"
  if (code < 1 || code >= 255) return {};
  byte = static_cast<char>(code);
  return std::string_view(&byte, 1);
}

// The defining form: each pass takes the first "&#...;" and resolves every
// copy of it at once. It costs a pass over the text per distinct reference.
void resolveStepwise(std::string& text) {
  for (;;) {
    const std::size_t start = find(text, "&#");
    if (start == 0) return;
    const std::size_t semicolon = find(text, ";", start + 1);
    if (semicolon == 0) return;
    const std::string reference = mid(text, start, semicolon - start + 1);
    char byte = 0;
    replaceAllInPlace(text, reference, referenceByte(mid(text, start + 2, semicolon - start - 2), byte));
  }
}

// The same result in one pass, as long as no reference holds a second "&#"
// before its ";" and no replacement makes a new "&#" with its neighbours;
// nothing when either happens.
std::optional<std::string> resolveInOnePass(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t from = 0;
  for (;;) {
    const std::size_t start = text.find("&#", from);
    const std::size_t semicolon = start == std::string_view::npos ? start : text.find(';', start + 2);
    if (semicolon == std::string_view::npos) break;
    const std::string_view digits = text.substr(start + 2, semicolon - start - 2);
    if (digits.find("&#") != std::string_view::npos) return std::nullopt;
    out.append(text, from, start - from);
    char byte = 0;
    out.append(referenceByte(digits, byte));
    from = semicolon + 1;
    const bool ampersandBeforeHash =
        (!out.empty() && out.back() == '&' && from < text.size() && text[from] == '#') ||
        (out.size() >= 2 && out.back() == '#' && out[out.size() - 2] == '&');
    if (ampersandBeforeHash) return std::nullopt;
  }
  out.append(text, from);
  return out;
}

void resolveDecimalReferences(std::string& text) {
  if (auto resolved = resolveInOnePass(text)) {
    text = std::move(*resolved);
  } else {
    resolveStepwise(text);
  }
}

}  // namespace

void stripTags(std::string& text) {
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

void stripHtml(std::string& text) {
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
  stripTags(text);
  cutOffNull(text);
}

void htmlConstToChar(std::string& text) {
  // Every form below starts with "&".
  if (trimView(text).empty() || text.find('&') == std::string::npos) return;
  replaceAllNoCaseInPlace(text, "&hellip;", "...");
  replaceAllNoCaseInPlace(text, "&bull;", kBullet);
  replaceAllInPlace(text, "&prime;", "'");
  replaceAllInPlace(text, "&Prime;", "\"");
  if (find(text, "&#") == 0) return;
  for (const Swap& swap : kNumericForms) replaceAllNoCaseInPlace(text, swap.find, swap.replace);
  resolveDecimalReferences(text);
}

std::string cleanWord(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  for (const char c : text) {
    if (c != '.' && c != ':' && c != '^' && c != '\'' && c != ',') kept += c;
  }
  std::string out;
  out.reserve(kept.size());
  for (std::size_t i = 0; i < kept.size(); ++i) {
    switch (const char c = kept[i]) {
      case '@': out += 'a'; break;
      case '1': out += 'i'; break;
      case '0': out += 'o'; break;
      case '_': out += ' '; break;
      case '(':
        if (i + 1 < kept.size() && kept[i + 1] == ')') {
          out += 'o';
          ++i;
        }
        break;
      case ')': case '-': case '~': case '{': case '}': break;
      default: out += c;
    }
  }
  return out;
}

}  // namespace vonel::text
