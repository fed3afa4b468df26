#pragma once
// A rule set as the rule editor changes it: a saved form replaces the rule
// of its name or is appended, rules are renamed, deleted, moved to the top
// and found by part of their name.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/rules/rule_file.h"

namespace vonel::rules {

class EditableRuleSet {
 public:
  explicit EditableRuleSet(RuleSet rules = {}) : rules_(std::move(rules)) {}

  const RuleSet& rules() const { return rules_; }
  std::size_t size() const { return rules_.size(); }
  const FilterRule& at(std::size_t row) const { return rules_.at(row); }

  struct Stored {
    std::size_t row;
    bool appended;
    bool changed;  // false when the same rule was already there
  };
  // Takes the place of the rule whose name is the same ignoring case, so a
  // change of case alone renames it where it stands; else goes to the end.
  Stored store(FilterRule rule);
  // The row of the rule of that name, ignoring case.
  std::optional<std::size_t> rowOfName(std::string_view name) const;
  // False, and nothing changes, when the new name differs only in case.
  bool rename(std::size_t row, std::string name);
  void remove(std::size_t row);
  void moveToTop(std::size_t row);
  // The first rule from `start` whose name holds `text`, ignoring case.
  std::optional<std::size_t> find(std::string_view text, std::size_t start) const;

 private:
  RuleSet rules_;
};

}  // namespace vonel::rules
