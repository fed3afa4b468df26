#include "core/send/uuencode.h"

namespace vonel::send {
namespace {

constexpr std::size_t kMaxInput = 63;

// Entry i is the character 32 + i, except that 0 maps to the back quote.
char tableEntry(unsigned value) { return value == 0 ? '`' : static_cast<char>(32 + value); }

}  // namespace

std::string uuencodeLine(std::string_view text) {
  if (text.size() > kMaxInput) return {};
  std::string out(1, tableEntry(static_cast<unsigned>(text.size())));
  for (std::size_t i = 0; i < text.size(); i += 3) {
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group <<= 8;
      if (i + k < text.size()) group |= static_cast<unsigned char>(text[i + k]);
    }
    for (int shift = 18; shift >= 0; shift -= 6) out += tableEntry((group >> shift) & 63u);
  }
  if (text.size() % 3 == 1) out += "==";
  if (text.size() % 3 == 2) out += "=";
  return out;
}

}  // namespace vonel::send
