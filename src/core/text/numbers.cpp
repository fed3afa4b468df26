#include "core/text/numbers.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "core/text/strings.h"

namespace vonel::text {
namespace {

// Formats with %G at the given precision and then reshapes the C form into
// the files': mantissa without trailing zeros, two-digit exponent at least.
std::string formatSignificant(double value, int digits, bool leadingBlank) {
  if (value == 0) return leadingBlank ? " 0" : "0";
  // to_chars prints as %.*g does, at a fraction of printf's cost: scores and
  // logs format numbers by the thousand. Only the letters differ from %G.
  char buffer[64];
  const auto printed = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  std::string s(buffer, printed.ptr);
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const bool negative = s.front() == '-';
  if (negative) s.erase(0, 1);
  if (s.rfind("0.", 0) == 0) s.erase(0, 1);  // "0.5" is written ".5"
  if (!negative && leadingBlank) return " " + s;
  return negative ? "-" + s : s;
}

int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

double readRadix(std::string_view digits, int radix) {
  double value = 0;
  for (char c : digits) {
    const int d = digitValue(c);
    if (d >= radix) break;
    value = value * radix + d;
  }
  return value;
}

std::string withLeadingZero(std::string s) {
  if (s.rfind(".", 0) == 0) return "0" + s;
  if (s.rfind("-.", 0) == 0) return "-0" + s.substr(1);
  return s;
}

}  // namespace

std::string numberText(double value, bool leadingBlank) { return formatSignificant(value, 15, leadingBlank); }

std::string numberText(float value, bool leadingBlank) {
  return formatSignificant(static_cast<double>(value), 7, leadingBlank);
}

std::string printForm(double value) { return numberText(value, true) + " "; }
std::string printForm(float value) { return numberText(value, true) + " "; }
std::string printForm(long long value) {
  std::string out = value < 0 ? "" : " ";
  out += std::to_string(value);
  out += ' ';
  return out;
}

std::string plainText(double value) { return withLeadingZero(numberText(value, false)); }
std::string plainText(float value) { return withLeadingZero(numberText(value, false)); }

double val(std::string_view text) {
  std::string compact;
  compact.reserve(text.size());
  for (char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') compact += c;
  }
  if (compact.size() >= 2 && compact[0] == '&') {
    const char kind = upperByte(compact[1]);
    if (kind == 'H') return readRadix(std::string_view(compact).substr(2), 16);
    if (kind == 'O') return readRadix(std::string_view(compact).substr(2), 8);
  }
  std::size_t i = 0;
  std::string number;
  if (i < compact.size() && (compact[i] == '+' || compact[i] == '-')) number += compact[i++];
  bool digits = false;
  while (i < compact.size() && std::isdigit(static_cast<unsigned char>(compact[i]))) number += compact[i++], digits = true;
  if (i < compact.size() && compact[i] == '.') {
    number += compact[i++];
    while (i < compact.size() && std::isdigit(static_cast<unsigned char>(compact[i]))) number += compact[i++], digits = true;
  }
  if (!digits) return 0;
  if (i < compact.size() && (upperByte(compact[i]) == 'E' || upperByte(compact[i]) == 'D')) {
    std::string exponent = "e";
    std::size_t j = i + 1;
    if (j < compact.size() && (compact[j] == '+' || compact[j] == '-')) exponent += compact[j++];
    bool expDigits = false;
    while (j < compact.size() && std::isdigit(static_cast<unsigned char>(compact[j]))) exponent += compact[j++], expDigits = true;
    if (expDigits) number += exponent;
  }
  return std::strtod(number.c_str(), nullptr);
}

std::optional<double> toNumber(std::string_view text) {
  const std::string_view t = trimView(text);
  if (t.empty()) return std::nullopt;
  if (equalsNoCase(t, "True")) return -1.0;
  if (equalsNoCase(t, "False")) return 0.0;
  if (t.size() >= 2 && t[0] == '&') {
    const char kind = upperByte(t[1]);
    const int radix = kind == 'H' ? 16 : kind == 'O' ? 8 : 0;
    if (radix == 0 || t.size() == 2) return std::nullopt;
    for (char c : t.substr(2)) {
      if (digitValue(c) >= radix) return std::nullopt;
    }
    return readRadix(t.substr(2), radix);
  }
  std::string number;
  for (char c : t) number += (c == 'd' || c == 'D') ? 'e' : c;
  for (char c : number) {
    if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E')) {
      return std::nullopt;
    }
  }
  char* end = nullptr;
  const double value = std::strtod(number.c_str(), &end);
  if (end != number.c_str() + number.size()) return std::nullopt;
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

double roundHalfEven(double value, int places) {
  if (!std::isfinite(value)) return value;
  const double scale = std::pow(10.0, places);
  const double scaled = value * scale;
  if (!std::isfinite(scaled)) return value;
  // nearbyint follows the default rounding mode, which rounds halves to even.
  return std::nearbyint(scaled) / scale;
}

}  // namespace vonel::text
