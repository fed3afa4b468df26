#include "core/rules/editable_rule_set.h"

#include <gtest/gtest.h>

namespace vonel::rules {
namespace {

FilterRule named(std::string name, std::string action = "100") {
  FilterRule rule;
  rule.filterName = std::move(name);
  rule.action = std::move(action);
  return rule;
}

std::vector<std::string> names(const EditableRuleSet& set) {
  std::vector<std::string> result;
  for (const FilterRule& rule : set.rules()) result.push_back(rule.filterName);
  return result;
}

TEST(EditableRuleSetStore, NewNameAppendsAndOtherCaseReplacesInPlace) {
  EditableRuleSet set({named("a"), named("Spam"), named("c")});
  const auto appended = set.store(named("New"));
  EXPECT_TRUE(appended.appended);
  EXPECT_EQ(appended.row, 3u);

  const auto replaced = set.store(named("SPAM", "200"));
  EXPECT_FALSE(replaced.appended);
  EXPECT_TRUE(replaced.changed);
  EXPECT_EQ(replaced.row, 1u);
  EXPECT_EQ(names(set), (std::vector<std::string>{"a", "SPAM", "c", "New"}));
  EXPECT_EQ(set.at(1).action, "200");

  EXPECT_FALSE(set.store(named("SPAM", "200")).changed);
}

TEST(EditableRuleSetRename, KeepsCommasAndRefusesACaseOnlyChange) {
  EditableRuleSet set({named("abc")});
  EXPECT_FALSE(set.rename(0, "ABC"));
  EXPECT_EQ(set.at(0).filterName, "abc");
  EXPECT_TRUE(set.rename(0, "a, b"));
  EXPECT_EQ(set.at(0).filterName, "a, b");
}

TEST(EditableRuleSetOrder, MoveToTopAndRemoveKeepTheOthersInOrder) {
  EditableRuleSet set({named("a"), named("b"), named("c"), named("d")});
  set.moveToTop(2);
  EXPECT_EQ(names(set), (std::vector<std::string>{"c", "a", "b", "d"}));
  set.moveToTop(0);
  EXPECT_EQ(names(set), (std::vector<std::string>{"c", "a", "b", "d"}));
  set.remove(1);
  EXPECT_EQ(names(set), (std::vector<std::string>{"c", "b", "d"}));
}

TEST(EditableRuleSetFind, FromTheStartRowIgnoringCase) {
  EditableRuleSet set({named("Cheap pills"), named("lists"), named("More PILLS")});
  EXPECT_EQ(set.find("pills", 0), 0u);
  EXPECT_EQ(set.find("pills", 1), 2u);
  EXPECT_EQ(set.find("pills", 3), std::nullopt);
  EXPECT_EQ(set.find("", 1), 1u);
}

}  // namespace
}  // namespace vonel::rules
