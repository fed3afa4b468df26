#include "core/rules/rule_form.h"

#include <algorithm>

#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

// The stored comparison by list position; the third belongs to a number of
// matches that only rules of older files still hold.
constexpr std::array<std::string_view, 3> kStoredComparisons = {kContains, kDoesNotContain, "mtch"};

std::string rowNumber(std::size_t index) { return std::to_string(index + 1); }

}  // namespace

std::optional<std::string> RuleForm::problem() const {
  if (lineValue(name).empty()) return "Please supply a name for this filter";
  for (const ConditionForm& row : conditions) {
    if (row.comparison >= 2 && text::val(row.text) == 0) return "Please specify a number from 1 to 10";
  }
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    if (conditions[i].on && conditions[i].text.empty()) {
      return "Rule " + rowNumber(i) + " doesn't have anything in the text field. Please deselect this rule, or enter some text.";
    }
  }
  return std::nullopt;
}

FilterRule RuleForm::toRule() const {
  FilterRule rule;
  rule.filterName = text::replaceAll(lineValue(name), ",", " ");
  rule.action = actionCode;
  if (actionCode == action::kMoveToFolder) {
    rule.destFolder = mailFolder;
  } else if (actionCode == action::kSaveAttachments) {
    rule.destFolder = lineValue(destFolder);
    if (!rule.destFolder.ends_with('\\')) rule.destFolder += '\\';
  } else if (actionCode == action::kRunFile || actionCode == action::kTag) {
    rule.destFolder = lineValue(destFolder);
  }
  rule.stopProcessing = stopProcessing;
  int used = 0;
  for (const ConditionForm& row : conditions) {
    if (!row.on) continue;
    ++used;
    rule.setFields(used, row.field);
    rule.setStrings(used, lineValue(row.text));
    const auto position = static_cast<std::size_t>(std::clamp(row.comparison, 0, 2));
    rule.setComparisons(used, std::string(kStoredComparisons[position]));
  }
  rule.ruleCount = static_cast<std::int16_t>(used);
  rule.scope = static_cast<RuleScope>(category);
  return rule;
}

std::vector<std::string_view> offeredFields(bool local) {
  std::vector<std::string_view> fields = {field::kTo,       field::kCC,         field::kBCC,
                                          field::kSubject,  field::kFrom,       field::kReturnPath,
                                          field::kSpamTestsFailed, field::kEnvelopeTo, field::kAllHeaders};
  if (local) fields.insert(fields.end(), {field::kAttachmentNames, field::kBody});
  return fields;
}

std::vector<ActionChoice> offeredActions(bool local) {
  if (local) {
    return {{"When downloading, move to folder", action::kMoveToFolder},
            {"Save attachments to ...", action::kSaveAttachments},
            {"Run the following file ...", action::kRunFile},
            {"Tag the email with ...", action::kTag}};
  }
  return {{"Delete from server", action::kDelete},
          {"Mark as suspicious", action::kSuspicious},
          {"Allow download of message", action::kAllow}};
}

RuleForm ruleFormFromSubject(std::string_view subject, bool local) {
  RuleForm form;
  form.name = std::string(subject);
  const std::vector<std::string> words = text::split(subject, " ");
  for (std::size_t i = 0; i < form.conditions.size() && i < words.size(); ++i) {
    ConditionForm& condition = form.conditions[i];
    condition.on = true;
    condition.field = std::string(offeredFields(local)[3]);
    condition.text = text::cleanString(text::replaceAll(text::trim(words[i]), ".", ""));
  }
  form.actionCode = std::string(offeredActions(local).front().code);
  return form;
}

std::string lineValue(std::string_view text) {
  std::string value(text);
  std::erase_if(value, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
  return value;
}

std::optional<int> comparisonPosition(std::string_view stored) {
  if (stored == kContains) return 0;
  if (stored == kDoesNotContain) return 1;
  return std::nullopt;
}

}  // namespace vonel::rules
