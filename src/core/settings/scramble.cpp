#include "core/settings/scramble.h"

#include <optional>

#include "core/text/entities.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr int kShift = 100;
// A first byte below this reads as a plain, unscrambled password.
constexpr unsigned char kFirstScrambledByte = 129;
// After the entity step no byte may exceed this, or the shift would overflow.
constexpr unsigned char kHighestShiftable = 255 - kShift;

std::string numericEntity(unsigned char byte) { return "&#" + std::to_string(byte) + ";"; }

// The entity step. Beyond the named entities of the mark-up table, which
// settings files hold, three things keep Decrypt(Encrypt(p)) == p for every
// password of bytes 1 to 255:
// - "&" itself becomes "&amp;", so a password that contains entity text
//   ("&lt;") doesn't turn into the character on the way back;
// - a byte that has no name and would overflow the shift (156 to 160, 162,
//   223) becomes a numeric entity "&#N;";
// - a first byte below 29 becomes a numeric entity too, because after the
//   shift it would be below 129 and the whole value would read as plain text.
// Named entities are matched in exact case, so "a grave" stays lower case.
std::string escape(std::string_view plain) {
  std::string out;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto byte = static_cast<unsigned char>(plain[i]);
    const std::string_view named = text::entityFor(byte);
    if (byte == '&') out += "&amp;";
    else if (!named.empty()) out += named;
    else if (byte > kHighestShiftable || (i == 0 && byte + kShift < kFirstScrambledByte)) out += numericEntity(byte);
    else out += static_cast<char>(byte);
  }
  return out;
}

std::optional<unsigned char> decodeEntity(std::string_view name) {
  if (name == "amp") return static_cast<unsigned char>('&');
  if (name.size() >= 2 && name.size() <= 4 && name[0] == '#') {
    int code = 0;
    for (char c : name.substr(1)) {
      if (c < '0' || c > '9') return std::nullopt;
      code = code * 10 + (c - '0');
    }
    if (code >= 1 && code <= 255) return static_cast<unsigned char>(code);
    return std::nullopt;
  }
  return text::byteForEntity(name);
}

}  // namespace

std::string encrypt(std::string_view plain) {
  std::string out = escape(plain);
  for (char& c : out) c = static_cast<char>(static_cast<unsigned char>(c) + kShift);
  return out;
}

std::string decrypt(std::string_view scrambled) {
  if (scrambled.empty()) return {};
  if (static_cast<unsigned char>(scrambled.front()) < kFirstScrambledByte) return std::string(scrambled);
  std::string shifted(scrambled);
  for (char& c : shifted) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > kShift) c = static_cast<char>(byte - kShift);
  }
  // One pass from the left, so "&amp;lt;" gives "&lt;" and not "<".
  std::string plain = text::decodeEntities(shifted, decodeEntity);
  // The entity step can only come back empty when the text held a null byte
  // at the front; then the shifted text is the better answer. (A password of
  // blanks is kept: it is what the user typed.)
  return plain.empty() ? shifted : plain;
}

}  // namespace vonel
