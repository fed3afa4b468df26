#include "core/rules/filter_rule.h"

#include "core/log/app_error.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

std::string currentActionCode(std::string_view code) {
  static constexpr std::array<std::string_view, 5> kByOldCode = {action::kDelete, action::kSuspicious,
                                                                 action::kMoveToFolder, action::kAllow,
                                                                 action::kSaveAttachments};
  if (code.size() == 1 && code[0] >= '0' && code[0] <= '4') return std::string(kByOldCode[code[0] - '0']);
  return std::string(code);
}

std::optional<RuleAction> actionOfCode(std::string_view code) {
  const std::optional<double> number = text::toNumber(currentActionCode(text::trimView(code)));
  if (!number) return std::nullopt;
  static constexpr std::pair<double, RuleAction> kByNumber[] = {
      {100, RuleAction::Delete},          {200, RuleAction::Suspicious}, {300, RuleAction::MoveToFolder},
      {400, RuleAction::Allow},           {500, RuleAction::SaveAttachments}, {600, RuleAction::RunFile},
      {700, RuleAction::Tag},
  };
  for (const auto& [value, action] : kByNumber) {
    if (*number == value) return action;
  }
  return RuleAction::Unknown;
}

void FilterRule::setFields(int n, std::string value) {
  if (n >= 1 && n <= kMaxConditions) fields_[n - 1] = std::move(value);
}

std::string& FilterRule::at(Column& column, int n) {
  if (n < 1 || n > kMaxConditions) throw AppError(error_number::kSubscriptOutOfRange, "Subscript out of range");
  return column[n - 1];
}

}  // namespace vonel::rules
