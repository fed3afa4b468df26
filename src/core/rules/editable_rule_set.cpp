#include "core/rules/editable_rule_set.h"

#include <algorithm>

#include "core/text/strings.h"

namespace vonel::rules {

EditableRuleSet::Stored EditableRuleSet::store(FilterRule rule) {
  const std::optional<std::size_t> same = rowOfName(rule.filterName);
  if (!same) {
    rules_.push_back(std::move(rule));
    return {rules_.size() - 1, true, true};
  }
  FilterRule& old = rules_[*same];
  const bool changed = !(old == rule);
  if (changed) old = std::move(rule);
  return {*same, false, changed};
}

std::optional<std::size_t> EditableRuleSet::rowOfName(std::string_view name) const {
  const auto same = std::ranges::find_if(
      rules_, [&](const FilterRule& rule) { return text::equalsNoCase(rule.filterName, name); });
  if (same == rules_.end()) return std::nullopt;
  return static_cast<std::size_t>(same - rules_.begin());
}

bool EditableRuleSet::rename(std::size_t row, std::string name) {
  FilterRule& rule = rules_.at(row);
  if (text::equalsNoCase(rule.filterName, name)) return false;
  rule.filterName = std::move(name);
  return true;
}

void EditableRuleSet::remove(std::size_t row) { rules_.erase(rules_.begin() + static_cast<std::ptrdiff_t>(row)); }

void EditableRuleSet::moveToTop(std::size_t row) {
  const auto at = rules_.begin() + static_cast<std::ptrdiff_t>(row);
  std::rotate(rules_.begin(), at, at + 1);
}

std::optional<std::size_t> EditableRuleSet::find(std::string_view text, std::size_t start) const {
  for (std::size_t row = start; row < rules_.size(); ++row) {
    if (text::findNoCase(rules_[row].filterName, text) != 0) return row;
  }
  return std::nullopt;
}

}  // namespace vonel::rules
