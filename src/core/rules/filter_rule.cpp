#include "core/rules/filter_rule.h"

#include "core/log/app_error.h"

namespace vonel::rules {

std::string currentActionCode(std::string_view code) {
  static constexpr std::array<std::string_view, 5> kByOldCode = {action::kDelete, action::kSuspicious,
                                                                 action::kMoveToFolder, action::kAllow,
                                                                 action::kSaveAttachments};
  if (code.size() == 1 && code[0] >= '0' && code[0] <= '4') return std::string(kByOldCode[code[0] - '0']);
  return std::string(code);
}

void FilterRule::setFields(int n, std::string value) {
  if (n >= 1 && n <= kMaxConditions) fields_[n - 1] = std::move(value);
}

std::string& FilterRule::at(Column& column, int n) {
  if (n < 1 || n > kMaxConditions) throw AppError(9, "Subscript out of range");
  return column[n - 1];
}

}  // namespace vonel::rules
