#include "core/settings/value.h"

#include "core/log/app_error.h"
#include "core/text/numbers.h"

namespace vonel {

std::string Value::text() const {
  switch (kind()) {
    case Kind::Empty:
      return {};
    case Kind::Text:
      return std::get<std::string>(data_);
    case Kind::Integer:
      return std::to_string(std::get<long long>(data_));
    case Kind::Single:
      return text::plainText(std::get<float>(data_));
    case Kind::Double:
      return text::plainText(std::get<double>(data_));
    case Kind::Boolean:
      return std::get<bool>(data_) ? "True" : "False";
  }
  return {};
}

double Value::number() const {
  switch (kind()) {
    case Kind::Empty:
      return 0;
    case Kind::Text: {
      const auto parsed = text::toNumber(std::get<std::string>(data_));
      if (!parsed) throw AppError(error_number::kTypeMismatch, "Type mismatch");
      return *parsed;
    }
    case Kind::Integer:
      return static_cast<double>(std::get<long long>(data_));
    case Kind::Single:
      return static_cast<double>(std::get<float>(data_));
    case Kind::Double:
      return std::get<double>(data_);
    case Kind::Boolean:
      return std::get<bool>(data_) ? -1 : 0;
  }
  return 0;
}

double Value::numberOr(double fallback) const {
  if (kind() == Kind::Text) return text::toNumber(std::get<std::string>(data_)).value_or(fallback);
  return number();
}

bool Value::flag() const { return numberOr(0) != 0; }

std::string Value::fileForm() const {
  switch (kind()) {
    case Kind::Integer:
      return text::printForm(std::get<long long>(data_));
    case Kind::Single:
      return text::printForm(std::get<float>(data_));
    case Kind::Double:
      return text::printForm(std::get<double>(data_));
    case Kind::Boolean:
      return text::printForm(std::get<bool>(data_) ? -1LL : 0LL);
    default:
      return text();
  }
}

}  // namespace vonel
