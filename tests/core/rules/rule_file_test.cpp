#include "core/rules/rule_file.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::rules {
namespace {

constexpr std::string_view kTwoRules =
    "Filtername, Cheap pills\r\n"
    "FilterField, Subject:\r\n"
    "FilterComparison, cnt\r\n"
    "FilterString, viagra\r\n"
    "FilterField, From:\r\n"
    "FilterComparison, !cnt\r\n"
    "FilterString, friend@example.com\r\n"
    "FilterAction, 100\r\n"
    "FilterDest, \r\n"
    "FilterStop, -1\r\n"
    "Filter_Category,  0 \r\n"
    "Filtername, Lists\r\n"
    "FilterField, To:\r\n"
    "FilterComparison, cnt\r\n"
    "FilterString, list@\r\n"
    "FilterAction, 300\r\n"
    "FilterDest, \\Lists\r\n"
    "FilterStop, 0\r\n"
    "Filter_Category,  1 \r\n";

class RuleFileTest : public ::testing::Test {
 protected:
  RuleSet read(std::string_view text, bool clear = true) {
    RuleSet rules;
    readRules(text, rules, clear, home.log);
    return rules;
  }
  std::string logText() {
    home.log.writeActionsToLog();
    return files::fileExists(home.log.currentLogFilename()) ? files::loadTextFile(home.log.currentLogFilename()) : "";
  }
  testing::TestHome home;
};

TEST_F(RuleFileTest, WrittenTextReadsBackAndIsWrittenAgainByteForByte) {
  const RuleSet rules = read(kTwoRules);
  ASSERT_EQ(rules.size(), 2u);
  const FilterRule& first = rules[0];
  EXPECT_EQ(first.filterName, "Cheap pills");
  EXPECT_EQ(first.ruleCount, 2);
  EXPECT_EQ(first.fields(2), "From:");
  EXPECT_EQ(first.comparisons(2), "!cnt");
  EXPECT_EQ(first.strings(1), "viagra");
  EXPECT_TRUE(first.stopProcessing);
  EXPECT_EQ(first.destFolder, "");
  EXPECT_EQ(rules[1].scope, RuleScope::Private);
  EXPECT_EQ(rules[1].destFolder, "\\Lists");
  EXPECT_EQ(ruleFileText(rules, false), kTwoRules);

  const std::string sharedOnly = ruleFileText(rules, true);
  EXPECT_EQ(sharedOnly.find("Lists"), std::string::npos);
  EXPECT_EQ(read(sharedOnly).size(), 1u);
}

TEST_F(RuleFileTest, OddLinesAreReadLeniently) {
  // A name alone: one rule, no conditions, no action.
  RuleSet rules = read("Filtername, a");
  ASSERT_EQ(rules.size(), 1u);
  EXPECT_EQ(rules[0].ruleCount, 0);
  EXPECT_EQ(rules[0].action, "");

  // Single-digit action codes are rewritten; a value is cut at its second ", ";
  // comparison and text may come in either order; keys ignore case.
  rules = read("FILTERNAME, b\nfilterfield, Subject:\nFilterString, a, b\nFilterComparison, cnt\n"
               "FilterAction,  2 \nFilterStop, True\nSomething, else\n");
  ASSERT_EQ(rules.size(), 1u);
  EXPECT_EQ(rules[0].action, "300");
  EXPECT_EQ(rules[0].strings(1), "a");
  EXPECT_EQ(rules[0].comparisons(1), "cnt");
  EXPECT_TRUE(rules[0].stopProcessing);
  EXPECT_NE(ruleFileText(rules, false).find("FilterAction, 300\r\n"), std::string::npos);

  for (const auto& [old, current] : {std::pair{"0", "100"}, {"1", "200"}, {"3", "400"}, {"4", "500"}, {"600", "600"}}) {
    EXPECT_EQ(read(std::string("Filtername, x\nFilterAction, ") + old)[0].action, current);
  }
}

TEST_F(RuleFileTest, AFifthConditionEndsTheReadKeepingEarlierRules) {
  std::string text = "Filtername, kept\r\nFilterAction, 100\r\nFiltername, five\r\n";
  for (int i = 0; i < 5; ++i) text += "FilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, x\r\n";
  text += "Filtername, after\r\n";
  const RuleSet rules = read(text);
  ASSERT_EQ(rules.size(), 1u);
  EXPECT_EQ(rules[0].filterName, "kept");
  EXPECT_NE(logText().find("LoadFilters"), std::string::npos);

  // A fifth field alone is dropped, though it is counted.
  const RuleSet counted = read("Filtername, f\nFilterField, a\nFilterField, b\nFilterField, c\nFilterField, d\nFilterField, e\n");
  ASSERT_EQ(counted.size(), 1u);
  EXPECT_EQ(counted[0].ruleCount, 5);
  EXPECT_EQ(counted[0].fields(4), "d");
  EXPECT_THROW(counted[0].fields(5), AppError);
}

TEST_F(RuleFileTest, LinesThatMakeNoRuleAreWrittenBackInPlace) {
  const std::string junk = std::string("\x01\xff binary\x00 bytes", 17);
  const std::string text = "# my rules\r\nFilterField, before any rule\r\n"
                           "Filtername, a\r\nFilterField, Subject:\r\nNote, about a\r\nFilterComparison, cnt\r\n"
                           "FilterString, x\r\nFilterAction, 100\r\nFilterDest, \r\nFilterStop, 0\r\n"
                           "Filter_Category,  0 \r\n\r\n" + junk + "\r\n"
                           "Filtername, skipped\r\nFilterStop, maybe\r\n"
                           "Filtername, b\r\nFilterAction, 400\r\nFilterDest, \r\nFilterStop, -1\r\nFilter_Category,  1 \r\n";
  files::KeptLines kept;
  RuleSet rules;
  readRules(text, rules, true, home.log, &kept);
  ASSERT_EQ(rules.size(), 2u);
  EXPECT_EQ(rules[1].filterName, "b");
  EXPECT_EQ(ruleFileText(rules, false, &kept), text);
  EXPECT_EQ(ruleFileText(rules, false).find("about a"), std::string::npos);  // exports hold rules only

  // A line in a form other than the written one is rewritten; the kept lines
  // stay beside the rule lines they followed.
  readRules("filtername, c\nfilteraction, 2\nX-Old, 1\nFilterStop, True\n", rules, true, home.log, &kept);
  EXPECT_EQ(ruleFileText(rules, false, &kept),
            "Filtername, c\r\nFilterAction, 300\r\nX-Old, 1\r\nFilterDest, \r\nFilterStop, -1\r\n"
            "Filter_Category,  0 \r\n");
}

TEST_F(RuleFileTest, TheRestOfTheFileFromALineThatEndsTheReadStaysAfterAllRules) {
  std::string failing = "Filtername, five\r\n";
  for (int i = 0; i < 5; ++i) failing += "FilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, x\r\n";
  failing += "Filtername, after\r\nFilterAction, 100\r\n";
  files::KeptLines kept;
  RuleSet rules;
  readRules("Filtername, kept\r\nFilterAction, 100\r\n" + failing, rules, true, home.log, &kept);
  ASSERT_EQ(rules.size(), 1u);  // the read ends as before

  // A rule added since is written ahead of the unread lines, so the next read finds it.
  rules.push_back(rules[0]);
  rules[1].filterName = "added";
  const std::string written = ruleFileText(rules, false, &kept);
  EXPECT_TRUE(written.ends_with("FilterStop, 0\r\nFilter_Category,  0 \r\n" + failing)) << written;
  RuleSet again;
  readRules(written, again, true, home.log, &kept);
  EXPECT_EQ(again, rules);
  EXPECT_EQ(ruleFileText(again, false, &kept), written);
}

TEST_F(RuleFileTest, BadStopFlagSkipsOnlyThatRule) {
  const RuleSet rules = read("Filtername, a\nFilterStop, maybe\nFiltername, b\nFilterStop, 0\n");
  ASSERT_EQ(rules.size(), 1u);
  EXPECT_EQ(rules[0].filterName, "b");
  EXPECT_NE(logText().find("Rule \"a\" skipped"), std::string::npos);
}

TEST_F(RuleFileTest, AddingLoadDropsRepeatedNamesButNotInTheLastRule) {
  RuleSet rules = read("Filtername, one\nFilterAction, 100\n");
  readRules("Filtername, one\nFilterAction, 200\nFiltername, two\nFiltername, two\nFilterAction, 400\n", rules,
            false, home.log);
  ASSERT_EQ(rules.size(), 3u);
  EXPECT_EQ(rules[0].action, "100");
  EXPECT_EQ(rules[1].filterName, "two");
  EXPECT_EQ(rules[2].filterName, "two");
  EXPECT_EQ(rules[2].action, "400");
}

TEST_F(RuleFileTest, MergeKeepsExistingRulesAndEmptiesTheSource) {
  RuleSet destination = read("Filtername, abc\nFilterAction, 100\n");
  RuleSet source = read("Filtername,  ABC \nFilterAction, 400\nFiltername, new\nFiltername, NEW\n");
  mergeFilters(source, destination);
  EXPECT_TRUE(source.empty());
  ASSERT_EQ(destination.size(), 2u);
  EXPECT_EQ(destination[0].action, "100");
  EXPECT_EQ(destination[1].filterName, "new");
}

TEST_F(RuleFileTest, SaveReplacesTheFileWholeAndAFailedSaveKeepsIt) {
  const auto file = home.dir.path() / "Rules.txt";
  const RuleSet rules = read(kTwoRules);
  ASSERT_TRUE(saveFilters(file, rules, false, home.log));
  EXPECT_EQ(files::loadTextFile(file), kTwoRules);

  RuleSet loaded = read("Filtername, stale\n");
  loadFilters(loaded, file, true, home.log);
  EXPECT_EQ(loaded, rules);

  EXPECT_FALSE(saveFilters(home.dir.path() / "missing" / "Rules.txt", rules, false, home.log));
  EXPECT_EQ(files::loadTextFile(file), kTwoRules);
}

TEST_F(RuleFileTest, JunkAndHugeFilesNeverStopTheProgram) {
  std::string junk;
  for (int i = 0; i < 256; ++i) junk += static_cast<char>(i);
  junk += "\nFilterField, before any rule\n";
  EXPECT_TRUE(read(junk).empty());
  EXPECT_NE(logText().find("before the first Filtername"), std::string::npos);

  std::string big;
  for (int i = 0; i < 20000; ++i) big += "Filtername, r" + std::to_string(i % 10000) + "\nFilterAction, 100\n";
  RuleSet rules = read("Filtername, r0\n");
  readRules(big, rules, false, home.log);
  EXPECT_EQ(rules.size(), 10001u);  // the repeats are dropped, the last rule kept
}

}  // namespace
}  // namespace vonel::rules
