#pragma once
// The number forms of the program's files: the print form (a blank for the
// sign, no zero before the decimal point, a trailing blank), the plain text
// form, the two numeric readers, and rounding of halves to even.
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace vonel::text {

// Shortest text of a number as the files and log lines carry it: 15
// significant digits for a double, 7 for a single float, exponent form
// ("1E+15", "1.5E-05") outside the fixed range, no "0" before the point.
// `leadingBlank` reserves the sign column, as the print form does.
std::string numberText(double value, bool leadingBlank);
std::string numberText(float value, bool leadingBlank);

// The print form: " 5 ", "-1 ", " .5 ".
std::string printForm(double value);
std::string printForm(float value);
std::string printForm(long long value);

// Plain text of a number: "5", "-1", "0.5" (with the zero, unlike the print form).
std::string plainText(double value);
std::string plainText(float value);

// Lenient reader: skips blanks, tabs and line feeds anywhere, reads the
// longest leading number ("&H" and "&O" prefixes too) and gives 0 when there is none.
double val(std::string_view text);

// Strict reader: the whole text, less surrounding blanks, must be a number
// (or the words True/False, which read -1 and 0). Nothing otherwise.
std::optional<double> toNumber(std::string_view text);

// Rounding to `places` decimals with halves going to the even neighbour.
double roundHalfEven(double value, int places = 0);

// A number as a whole number of type T: rounded half to even, held within
// the type's range (a value that doesn't fit takes the nearest end).
template <typename T>
T toWhole(double value) {
  const double rounded = roundHalfEven(value);
  if (!(rounded == rounded)) return T{};
  if (rounded <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  if (rounded >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  return static_cast<T>(rounded);
}

}  // namespace vonel::text
