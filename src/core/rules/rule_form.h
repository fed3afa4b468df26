#pragma once
// The rule editor's form as plain values, what it offers for each rule set,
// and the checks and conversion that make a rule of it.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rules/filter_rule.h"

namespace vonel::rules {

// One condition row; `comparison` is the position in the comparison list.
struct ConditionForm {
  bool on = false;
  std::string field;
  int comparison = 0;
  std::string text;
};

struct RuleForm {
  std::string name;
  std::array<ConditionForm, FilterRule::kMaxConditions> conditions;
  std::string actionCode;
  std::string mailFolder;  // the chosen mail folder, for a move
  std::string destFolder;  // the typed argument of the other actions
  bool stopProcessing = false;
  int category = 0;  // position in the category list

  // The message to show when the form can't be saved, checked in this order:
  // the name, a number of matches, the text of each ticked row.
  std::optional<std::string> problem() const;
  // The rule the form describes; commas in the name become blanks, since a
  // name is a key of the rule file's "key, value" lines.
  FilterRule toRule() const;
};

// A rule to start from for a message: named by its subject, with the first
// four words of the subject as four conditions that must all hold.
RuleForm ruleFormFromSubject(std::string_view subject, bool local);

struct ActionChoice {
  std::string_view text;
  std::string_view code;
};

// The lists of the form, in their order, for the local or the server set.
std::vector<std::string_view> offeredFields(bool local);
std::vector<ActionChoice> offeredActions(bool local);
inline constexpr std::array<std::string_view, 2> kComparisonTexts = {"Contains", "Doesn't Contain"};
inline constexpr std::array<std::string_view, 2> kCategoryTexts = {"Shared", "Private"};

// A text as a line of the rule file can hold it: without CR, LF or NUL,
// which a paste into a box may bring.
std::string lineValue(std::string_view text);

// The list position that shows a stored comparison; nothing for one the list
// doesn't hold ("mtch" of older files), which leaves the list as it was.
std::optional<int> comparisonPosition(std::string_view stored);

}  // namespace vonel::rules
