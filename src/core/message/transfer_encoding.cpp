#include "core/message/transfer_encoding.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Marks the bytes of the table that are no base64 digit.
constexpr int kNotBase64 = -1;

// The six-bit value of each byte, a plain table because the decoder asks it
// once per byte of every attachment.
const std::array<int, 256>& base64Values() {
  static const std::array<int, 256> values = [] {
    std::array<int, 256> table{};
    table.fill(kNotBase64);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i) table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int>(i);
    return table;
  }();
  return values;
}

std::optional<int> hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return std::nullopt;
}

// Exactly at 76 and 154: the shape of a body wrapped by the book.
bool isCleanlySoftWrapped(std::string_view text) {
  return text::find(text, "=\r\n") == 76 && text::find(text, "=\r\n", 77) == 154;
}

// The byte written as two hex digits after the "=" at `at`.
std::optional<char> hexPairAfter(std::string_view text, std::size_t at) {
  if (at + 2 >= text.size()) return std::nullopt;
  const auto high = hexValue(text::upperByte(text[at + 1]));
  const auto low = hexValue(text::upperByte(text[at + 2]));
  if (!high || !low) return std::nullopt;
  return static_cast<char>(*high * 16 + *low);
}

// Hex pairs after "=" become their bytes; any other "=" stays.
std::string decodeHexPairs(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = text[i] == '=' ? hexPairAfter(text, i) : std::nullopt;
    if (byte) {
      out += *byte;
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace

std::string quotedPrintableDecode(std::string_view input) {
  if (input.find('=') == std::string_view::npos) return std::string(input);
  std::string text(input);
  if (isCleanlySoftWrapped(text)) text::replaceAllInPlace(text, "=\r\n", "");
  if (text::find(text, "=0D")) {
    text::replaceAllInPlace(text, "\r\n", "");
    text::replaceAllInPlace(text, "=0D", "\r\n");
  }
  text::replaceAllInPlace(text, "=0A", "");
  if (text::find(text, "=2E")) {
    // The dot code is taken as a line end: people's paragraphs came through that way.
    text::replaceAllInPlace(text, "\r\n", "");
    text::replaceAllInPlace(text, "=2E", "\r\n");
  }
  bool keptEquals = false;
  if (text::find(text, "=\r\n")) {
    if (text::findNoCase(text, "ebay")) {
      keptEquals = true;
      text::replaceAllInPlace(text, "=\r\n", "");
      text::replaceAllInPlace(text, "=3D", "\x01");
      text::replaceAllInPlace(text, "=20\r\n", " ");
      text::replaceAllInPlace(text, "=2E\r\n", " ");
      text::replaceAllInPlace(text, "=09", "");
    } else {
      text::replaceAllInPlace(text, "=\r\n", "\r\n");
    }
  }
  if (text.empty()) return text;
  text = text::trimBlanksAndNulls(decodeHexPairs(text));
  if (keptEquals) {
    text::replaceAllInPlace(text, "\x01", "=");
  } else {
    text::replaceAllInPlace(text, "=\r", "\r");
  }
  return text;
}

std::string decodeBase64Bytes(std::string_view text) {
  std::string out(text.size() / 4 * 3 + 3, '\0');
  char* written = out.data();
  const auto& values = base64Values();
  unsigned bits = 0;
  int bitCount = 0;
  for (const char c : text) {
    if (c == '=') break;
    const int value = values[static_cast<unsigned char>(c)];
    if (value == kNotBase64) continue;
    bits = ((bits << 6) | static_cast<unsigned>(value)) & 0xFFFFFFu;
    bitCount += 6;
    if (bitCount >= 8) {
      bitCount -= 8;
      *written++ = static_cast<char>((bits >> bitCount) & 0xFF);
    }
  }
  out.resize(static_cast<std::size_t>(written - out.data()));
  return out;
}

std::string decodeMime64(std::string_view text) {
  // The fill is measured without line ends; the decoder skips them anyway.
  std::size_t lineEnds = 0;
  for (std::size_t at = text.find("\r\n"); at != std::string_view::npos; at = text.find("\r\n", at + 2)) ++lineEnds;
  const std::size_t length = text.size() - 2 * lineEnds;
  if (length == 0) return {};
  const auto bufferSize = text::toWhole<std::size_t>(3.0 * (static_cast<double>(length) / 4.0) + 2.0);
  std::string out = decodeBase64Bytes(text);
  if (out.size() < bufferSize) out.resize(bufferSize, ' ');
  return out;
}

std::string decodeQuotedPrintableBytes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '=') {
      out += text[i];
      continue;
    }
    // A soft line break: "=", blanks or tabs an encoder may have left, and the
    // line end, be it CR LF, LF, a lone CR or CRs doubled by a careless relay.
    const std::size_t next = text.find_first_not_of(" \t\r", i + 1);
    if (next == std::string_view::npos) break;
    if (text[next] == '\n' || text.substr(i + 1, next - i - 1).find('\r') != std::string_view::npos) {
      i = text[next] == '\n' ? next : next - 1;
      continue;
    }
    const auto byte = hexPairAfter(text, i);
    if (byte) {
      out += *byte;
      i += 2;
    } else {
      out += '=';
    }
  }
  return out;
}

std::string encodeMime64String(std::string_view text) {
  if (text.empty()) return {};
  std::string out;
  out.reserve((text.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < text.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, text.size() - i);
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = (group << 8) | (k < count ? static_cast<unsigned char>(text[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      out += k <= count ? kAlphabet[(group >> (18 - 6 * k)) & 0x3F] : '=';
    }
  }
  return out;
}

}  // namespace vonel::message
