#include "core/rules/rule_form.h"

#include <gtest/gtest.h>

namespace vonel::rules {
namespace {

RuleForm namedForm(std::string name) {
  RuleForm form;
  form.name = std::move(name);
  form.actionCode = std::string(action::kDelete);
  return form;
}

TEST(RuleFormCheck, NameFirstThenNumberOfMatchesThenEmptyTickedTexts) {
  RuleForm form = namedForm("");
  form.conditions[1] = {true, "To:", 0, ""};
  form.conditions[2] = {false, "To:", 2, "abc"};
  EXPECT_EQ(form.problem(), "Please supply a name for this filter");
  form.name = "x";
  EXPECT_EQ(form.problem(), "Please specify a number from 1 to 10");
  form.conditions[2].text = "3";
  EXPECT_EQ(form.problem(),
            "Rule 2 doesn't have anything in the text field. Please deselect this rule, or enter some text.");
  form.conditions[1].on = false;
  EXPECT_EQ(form.problem(), std::nullopt);
}

TEST(RuleFormCheck, CommasOnlyIsANameAndBecomesBlanks) {
  const RuleForm form = namedForm(",,,");
  EXPECT_EQ(form.problem(), std::nullopt);
  EXPECT_EQ(form.toRule().filterName, "   ");
}

TEST(RuleFormToRule, TickedRowsPackFromTheFirstCondition) {
  RuleForm form = namedForm("Pills, cheap");
  form.conditions[1] = {true, "Subject:", 0, "viagra"};
  form.conditions[2] = {false, "From:", 1, "ignored"};
  form.conditions[3] = {true, "From:", 1, "friend@"};
  form.stopProcessing = true;
  form.category = 1;
  const FilterRule rule = form.toRule();
  EXPECT_EQ(rule.filterName, "Pills  cheap");
  EXPECT_EQ(rule.ruleCount, 2);
  EXPECT_EQ(rule.fields(1), "Subject:");
  EXPECT_EQ(rule.comparisons(1), "cnt");
  EXPECT_EQ(rule.strings(1), "viagra");
  EXPECT_EQ(rule.fields(2), "From:");
  EXPECT_EQ(rule.comparisons(2), "!cnt");
  EXPECT_EQ(rule.strings(2), "friend@");
  EXPECT_EQ(rule.fields(3), "");
  EXPECT_TRUE(rule.stopProcessing);
  EXPECT_EQ(rule.scope, RuleScope::Private);
  EXPECT_EQ(rule.action, "100");
}

TEST(RuleFormToRule, PastedLineBreaksAndNulsAreDropped) {
  RuleForm form = namedForm(std::string("two\r\nlines\0", 11));
  form.conditions[0] = {true, "To:", 0, "a\nb"};
  const FilterRule rule = form.toRule();
  EXPECT_EQ(rule.filterName, "twolines");
  EXPECT_EQ(rule.strings(1), "ab");
  EXPECT_EQ(namedForm("\r\n").problem(), "Please supply a name for this filter");
}

TEST(RuleFormToRule, DestinationDependsOnTheAction) {
  RuleForm form = namedForm("a");
  form.mailFolder = "\\Lists\\";
  form.destFolder = "/tmp/saved";
  const auto destFor = [&](std::string_view code) {
    form.actionCode = std::string(code);
    return form.toRule().destFolder;
  };
  EXPECT_EQ(destFor(action::kMoveToFolder), "\\Lists\\");
  EXPECT_EQ(destFor(action::kSaveAttachments), "/tmp/saved\\");
  EXPECT_EQ(destFor(action::kRunFile), "/tmp/saved");
  EXPECT_EQ(destFor(action::kTag), "/tmp/saved");
  EXPECT_EQ(destFor(action::kDelete), "");
  form.destFolder = "C:\\Saved\\";
  EXPECT_EQ(destFor(action::kSaveAttachments), "C:\\Saved\\");
}

TEST(RuleFormLists, LocalSetOffersTwoMoreFieldsAndItsOwnActions) {
  EXPECT_EQ(offeredFields(false).size(), 9u);
  EXPECT_EQ(offeredFields(true).back(), "Message Body");
  EXPECT_EQ(offeredActions(false).back().code, "400");
  EXPECT_EQ(offeredActions(true).front().code, "300");
  EXPECT_EQ(comparisonPosition("!cnt"), 1);
  EXPECT_EQ(comparisonPosition("mtch"), std::nullopt);
}

}  // namespace
}  // namespace vonel::rules

namespace vonel::rules {
namespace {

TEST(RuleFormFromSubject, TheFirstFourWordsBecomeSubjectConditionsCleanedForAFileName) {
  const RuleForm six = ruleFormFromSubject("Win a.b: cash now today friend", false);
  EXPECT_EQ(six.name, "Win a.b: cash now today friend");
  EXPECT_EQ(six.actionCode, std::string(offeredActions(false).front().code));
  EXPECT_EQ(six.conditions[1].text, "ab");  // dots go, the colon turns into a blank that trimming drops
  EXPECT_EQ(six.conditions[3].text, "now");
  for (const ConditionForm& condition : six.conditions) {
    EXPECT_TRUE(condition.on);
    EXPECT_EQ(condition.field, "Subject:");
  }
  const RuleForm one = ruleFormFromSubject("Hello", true);
  EXPECT_TRUE(one.conditions[0].on);
  EXPECT_FALSE(one.conditions[1].on);
  EXPECT_EQ(one.actionCode, std::string(offeredActions(true).front().code));
}

}  // namespace
}  // namespace vonel::rules
