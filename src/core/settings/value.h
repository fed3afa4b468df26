#pragma once
// A setting's value: empty, text, a whole number, a single or double float, or
// a Boolean. Values read from a file are text, blanks and all, so readers
// convert numerically rather than compare text.
#include <string>
#include <string_view>
#include <variant>

namespace vonel {

class Value {
 public:
  enum class Kind { Empty, Text, Integer, Single, Double, Boolean };

  Value() = default;
  Value(std::string text) : data_(std::move(text)) {}
  Value(std::string_view text) : data_(std::string(text)) {}
  Value(const char* text) : data_(std::string(text)) {}
  Value(int number) : data_(static_cast<long long>(number)) {}
  Value(long number) : data_(static_cast<long long>(number)) {}
  Value(long long number) : data_(number) {}
  Value(float number) : data_(number) {}
  Value(double number) : data_(number) {}
  Value(bool flag) : data_(flag) {}

  Kind kind() const { return static_cast<Kind>(data_.index()); }
  bool isEmpty() const { return kind() == Kind::Empty; }
  bool isText() const { return kind() == Kind::Text; }

  // The value as text: numbers in their plain form ("5", "0.5"), Booleans as
  // "True"/"False", empty as "".
  std::string text() const;
  // The value as a number; throws AppError 13 (type mismatch) for text that
  // isn't one. Empty reads 0, Booleans -1 and 0.
  double number() const;
  // The number, or `fallback` when it has none.
  double numberOr(double fallback) const;
  // The value as a flag: non-zero numbers and the words True/False; text
  // that is neither is false.
  bool flag() const;
  // The form in a settings file: text as it stands, numbers in print form.
  std::string fileForm() const;

  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<std::monostate, std::string, long long, float, double, bool> data_;
};

}  // namespace vonel
