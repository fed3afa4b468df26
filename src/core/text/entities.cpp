#include "core/text/entities.h"

#include <array>
#include <unordered_map>

#include "core/text/strings.h"

namespace vonel::text {
namespace {

// HTML 4 names of the Latin-1 codes 160 to 255; 162 and 223 stay out of the
// conversion table even though they have names.
constexpr std::array<const char*, 96> kLatin1Names = {
    "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",    "brvbar", "sect",   "uml",    "copy",   "ordf",
    "laquo",  "not",    "shy",    "reg",    "macr",   "deg",    "plusmn", "sup2",   "sup3",   "acute",  "micro",
    "para",   "middot", "cedil",  "sup1",   "ordm",   "raquo",  "frac14", "frac12", "frac34", "iquest", "Agrave",
    "Aacute", "Acirc",  "Atilde", "Auml",   "Aring",  "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",  "Euml",
    "Igrave", "Iacute", "Icirc",  "Iuml",   "ETH",    "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde", "Ouml",
    "times",  "Oslash", "Ugrave", "Uacute", "Ucirc",  "Uuml",   "Yacute", "THORN",  "szlig",  "agrave", "aacute",
    "acirc",  "atilde", "auml",   "aring",  "aelig",  "ccedil", "egrave", "eacute", "ecirc",  "euml",   "igrave",
    "iacute", "icirc",  "iuml",   "eth",    "ntilde", "ograve", "oacute", "ocirc",  "otilde", "ouml",   "divide",
    "oslash", "ugrave", "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml"};

struct EntityTable {
  std::array<std::string, 256> byByte;
  std::unordered_map<std::string, unsigned char> byName;

  void put(unsigned char byte, const std::string& name) {
    byByte[byte] = "&" + name + ";";
    byName.emplace(name, byte);
  }

  EntityTable() {
    put('"', "quot");
    put(' ', "nbsp");
    put('<', "lt");
    put('>', "gt");
    put(150, "ndash");
    put(151, "mdash");
    for (int code = 161; code <= 255; ++code) {
      if (code == 162 || code == 223) continue;
      put(static_cast<unsigned char>(code), kLatin1Names[static_cast<std::size_t>(code - 160)]);
    }
  }
};

const EntityTable& table() {
  static const EntityTable instance;
  return instance;
}

}  // namespace

std::string_view entityFor(unsigned char byte) { return table().byByte[byte]; }

std::optional<unsigned char> byteForEntity(std::string_view name) {
  const auto it = table().byName.find(std::string(name));
  if (it == table().byName.end()) return std::nullopt;
  return it->second;
}

void htmlToChar(std::string& text) {
  if (trimView(text).empty()) return;
  text = decodeEntities(text, byteForEntity);
}

std::string decodeEntities(std::string_view text, EntityLookup lookup) {
  std::string out;
  out.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] == '&') {
      const auto semicolon = text.find(';', i + 1);
      if (semicolon != std::string_view::npos && semicolon - i <= 8) {
        if (const auto byte = lookup(text.substr(i + 1, semicolon - i - 1))) {
          out += static_cast<char>(*byte);
          i = semicolon + 1;
          continue;
        }
      }
    }
    out += text[i++];
  }
  const auto null = out.find('\0');
  if (null != std::string::npos) out.resize(null);
  return out;
}

}  // namespace vonel::text
