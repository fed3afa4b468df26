#include <gtest/gtest.h>

#include <cmath>

#include "core/rules/rule_engine.h"
#include "core/rules/status_word.h"
#include "../store/store_home.h"

namespace vonel::rules {
namespace {

class FixedScore final : public SpamScorer {
 public:
  void spamminess(message::Message&, bool, float& score) override {
    ++calls;
    score = value;
  }
  float value = 0.3f;
  int calls = 0;
};

FilterRule rule(std::string name, std::string fieldName, std::string comparison, std::string wanted,
                  std::string action, bool stop = false, std::string dest = "") {
  FilterRule r;
  r.filterName = std::move(name);
  r.ruleCount = 1;
  r.setFields(1, std::move(fieldName));
  r.setComparisons(1, std::move(comparison));
  r.setStrings(1, std::move(wanted));
  r.action = std::move(action);
  r.stopProcessing = stop;
  r.destFolder = std::move(dest);
  return r;
}

class MessageCheckTest : public ::testing::Test {
 protected:
  MessageCheckTest() {
    filters.setScorer(&scorer);
    filters.reloadFilters(false);
  }
  message::Message header(std::string subject = "Hello", std::string from = "Ann <ann@example.com>") {
    message::Message m;
    m.headerOnly = true;
    m.subject = std::move(subject);
    m.from = std::move(from);
    m.setToEmail("bob@example.org");
    m.headers = "From: " + m.from + "\r\nSubject: " + m.subject + "\r\nX-Mailer: Bulk 1.0\r\n";
    m.size = 4;
    return m;
  }
  message::Message checked(message::Message m, bool useBayes = true) {
    filters.checkMessage(m, useBayes);
    return m;
  }

  testing::StoreHome home;
  FixedScore scorer;
  RuleEngine filters{home.context};
};

TEST_F(MessageCheckTest, ListsDecideBeforeRulesInTheirOrder) {
  filters.setRules({rule("never reached", "Subject:", "cnt", "", "400")});
  filters.blockSender("ann@example.com");
  filters.blockSenderDomain("x@spam.example");
  filters.blockRecipientDomain("someone@example.org");
  filters.blockRecipient("bob@example.org");

  auto m = checked(header());
  EXPECT_EQ(statusWord(m), "BLOCK");
  EXPECT_EQ(m.filterReason, "Sender Blocked");
  EXPECT_EQ(m.colour, colour::kRed);
  EXPECT_TRUE(m.blockedSender);
  EXPECT_EQ(scorer.calls, 0);

  m = checked(header("Hi", "Eve <eve@SPAM.example>"));
  EXPECT_EQ(m.filterReason, "Domain Blocked");
  m = checked(header("Hi", "Carl <carl@elsewhere.example>"));
  EXPECT_EQ(m.filterReason, "Recip Domain Blocked");
  EXPECT_TRUE(m.blockedRecip);
  EXPECT_FALSE(m.blockedSender);
  filters.unblockRecipientDomain("bob@example.org");
  m = checked(header("Hi", "Carl <carl@elsewhere.example>"));
  EXPECT_EQ(m.filterReason, "bob@example.org Blocked");

  // An ignored recipient wins over a blocked sender and gets no score.
  filters.ignoreRecipient("BOB@example.org");
  m = checked(header());
  EXPECT_EQ(statusWord(m), "IGNORE");
  EXPECT_EQ(m.colour, colour::kGrey);
  EXPECT_FALSE(m.deleted);
  EXPECT_EQ(m.bayes, 0.0f);

  // A TAB before the sender's name blocks ahead of everything, without the resets.
  m = header("Hi", "\tAnn <ann@example.com>");
  m.ignored = true;
  m = checked(m);
  EXPECT_EQ(m.filterReason, "TAB in sender name");
  EXPECT_TRUE(m.deleted && m.blockedSender && m.ignored);
}

TEST_F(MessageCheckTest, ListLookUpsUseTheSendersAddressWhenFromIsEmpty) {
  filters.blockSender("sender@example.com");
  auto m = header("Hi", "");
  m.sender = "The Sender <Sender@Example.com>";
  EXPECT_EQ(checked(m).filterReason, "Sender Blocked");
  filters.unblockSender("sender@example.com");
  filters.setRules({rule("by sender", "From:", "cnt", "the sender", "100")});
  EXPECT_EQ(checked(m).filterReason, "by sender");
}

struct ConditionCase {
  const char* field;
  const char* comparison;
  const char* wanted;
  bool fires;
};

TEST_F(MessageCheckTest, ConditionsReadTheirFieldsAndCompareIgnoringCase) {
  auto m = header("Cheap V1AGRA now");
  m.cc = "carol@example.com";
  m.bcc = "";
  m.returnPath = "<bounce@lists.example>";
  m.xEnvelopeTo = "env@example.org";
  m.spamTestsFailed = "RCVD_IN_DUL";
  m.strippedBody = "Click here to UNSUBSCRIBE";
  m.addAttachment("invoice.zip");
  const ConditionCase cases[] = {
      {"Subject:", "cnt", "viagra", true},        // through the cleaned subject
      {"subject:", "CNT", "cheap", true},         // names and comparisons ignore case
      {"Subject:", "!cnt", "viagra", false},
      {"To:", "cnt", "BOB@", true},
      {"From:", "cnt", "ann@", true},
      {"CC:", "cnt", "carol", true},
      {"BCC:", "!cnt", "x", true},                // an empty field doesn't contain anything
      {"BCC:", "cnt", "", false},                 // and an empty text is not found in it
      {"CC:", "cnt", "", true},                   // but is in any other
      {"Return-Path:", "cnt", "lists.example", true},
      {"X-Envelope-To:", "cnt", "env@", true},
      {"X-Spam-Tests-Failed:", "cnt", "dul", true},
      {"All Headers", "cnt", "x-mailer: bulk", true},
      {"Attachment Filenames", "cnt", ".zip", true},
      {"Message Body", "cnt", "unsubscribe", true},
      {"Unknown:", "!cnt", "x", true},
      {"Subject:", "mtch", "Cheap", false},       // an unknown comparison never makes a rule hold
  };
  for (const auto& c : cases) {
    filters.setRules({rule("r", c.field, c.comparison, c.wanted, "100")});
    EXPECT_EQ(checked(m).deleted, c.fires) << c.field << " " << c.comparison << " '" << c.wanted << "'";
  }
  // An unknown comparison after one that held keeps it holding.
  FilterRule two = rule("two", "Subject:", "cnt", "cheap", "100");
  two.ruleCount = 2;
  two.setFields(2, "Subject:");
  two.setComparisons(2, "mtch");
  filters.setRules({two});
  EXPECT_TRUE(checked(m).deleted);
  two.setComparisons(2, "!cnt");
  filters.setRules({two});
  EXPECT_FALSE(checked(m).deleted);  // every condition must hold
}

TEST_F(MessageCheckTest, SpamSubjectsAreReadThroughTheirDisguises) {
  filters.setRules({rule("pills", "Subject:", "cnt", "viagra", "100")});
  EXPECT_TRUE(checked(header("v.i.a.g.r.a")).deleted);
  EXPECT_TRUE(checked(header("V1AGRA")).deleted);
  EXPECT_FALSE(checked(header("vi agra")).deleted);
  EXPECT_FALSE(checked(header("")).deleted);
}

struct ActionCase {
  const char* action;
  bool stop;
  const char* status;
  std::int32_t colour;
  float bayes;  // 0 when the rule turned the score off
};

TEST_F(MessageCheckTest, EachActionWritesItsResultAndDecidesOnTheScore) {
  const ActionCase cases[] = {
      {"100", false, "FAIL", colour::kOrange, 0.3f},  {"100", true, "FAIL", colour::kOrange, 0.0f},
      {"0", true, "FAIL", colour::kOrange, 0.0f},     {"200", false, "SPAM?", colour::kPurple, 0.3f},
      {"200", true, "SPAM?", colour::kPurple, 0.0f},  {"400", false, "PASS", colour::kGreen, 0.3f},
      {"400", true, "PASS", colour::kGreen, 0.0f},    {"300", false, "PASS", colour::kGreen, 0.0f},
      {"2", false, "PASS", colour::kGreen, 0.0f},     {"500", false, "PASS", colour::kGreen, 0.0f},
      {"600", false, "PASS", colour::kGreen, 0.0f},   {"700", false, "PASS", colour::kGreen, 0.0f},
      {"999", true, "PASS", colour::kGreen, 0.3f},
  };
  for (const auto& c : cases) {
    filters.setRules({rule("act", "Subject:", "cnt", "offer", c.action, c.stop, "\\Deals")});
    const auto m = checked(header("Great offer"));
    const std::string what = std::string(c.action) + (c.stop ? " stop" : "");
    EXPECT_EQ(statusWord(m), c.status) << what;
    EXPECT_EQ(m.colour, c.colour) << what;
    EXPECT_EQ(m.bayes, c.bayes) << what;
  }
  filters.setRules({rule("a", "Subject:", "cnt", "offer", "500", false, "/tmp/att/"),
                     rule("b", "Subject:", "cnt", "offer", "600", false, "/usr/bin/tool"),
                     rule("c", "Subject:", "cnt", "offer", "700", false, ",work"),
                     rule("d", "Subject:", "cnt", "offer", "300", true, "\\Deals"),
                     rule("never", "Subject:", "cnt", "offer", "100")});
  const auto m = checked(header("Great offer"));
  EXPECT_EQ(m.attachmentsFolder, "/tmp/att/");
  EXPECT_EQ(m.runThisFile, "/usr/bin/tool");
  EXPECT_EQ(m.tags(), "work");
  EXPECT_EQ(m.destFolder, "\\Deals");
  EXPECT_EQ(m.filterReason, "d");
  EXPECT_FALSE(m.deleted);  // the stop kept the delete rule from running
}

TEST_F(MessageCheckTest, SuspiciousRulesPrefixTheSubjectOnce) {
  filters.setRules({rule("s1", "Subject:", "cnt", "offer", "200"), rule("s2", "Subject:", "cnt", "offer", "1")});
  auto m = header("Great offer");
  m.replaceRawMessage("Subject: Great offer\r\n\r\nbody");
  m = checked(m);
  EXPECT_EQ(m.subject, "SPAM: Great offer");
  EXPECT_EQ(m.filterReason, "s2");
  // The stored text is tagged by each rule, as the header block isn't updated in between.
  EXPECT_NE(m.rawMessage().find("Subject: SPAM: SPAM: Great offer"), std::string::npos);
}

TEST_F(MessageCheckTest, ScoreThresholdsCompareAsSingleFloats) {
  home.context.spamThreshold = 0.99f;
  home.context.saveToSpamThreshold = 0.7f;
  scorer.value = 0.99f;
  auto m = checked(header());
  EXPECT_EQ(statusWord(m), "FAIL");
  EXPECT_EQ(m.filterReason, "Bayes: 0.99");
  EXPECT_EQ(m.colour, colour::kOrange);

  auto whole = header();
  whole.headerOnly = false;
  whole = checked(whole);
  EXPECT_FALSE(whole.deleted);
  EXPECT_EQ(whole.destFolder, "\\SpamBayes\\");

  scorer.value = std::nextafter(0.99f, 0.0f);
  m = checked(header());
  EXPECT_EQ(statusWord(m), "SPAM?");
  EXPECT_EQ(m.destFolder, "\\SpamBayes\\");
  scorer.value = 0.7f;
  EXPECT_EQ(statusWord(checked(header())), "SPAM?");
  scorer.value = std::nextafter(0.7f, 0.0f);
  m = checked(header());
  EXPECT_EQ(statusWord(m), "PASS");
  EXPECT_EQ(m.destFolder, "");

  // A rule's reason is kept; a move rule turns the score off altogether.
  filters.setRules({rule("allow", "Subject:", "cnt", "hello", "400")});
  scorer.value = 0.99f;
  m = checked(header());
  EXPECT_EQ(m.filterReason, "allow");
  EXPECT_EQ(statusWord(m), "FAIL");
  filters.setRules({rule("move", "Subject:", "cnt", "hello", "300", false, "\\Keep")});
  m = checked(header());
  EXPECT_EQ(m.bayes, 0.0f);
  EXPECT_EQ(m.destFolder, "\\Keep");
  EXPECT_EQ(statusWord(m), "PASS");
}

TEST_F(MessageCheckTest, SizeLimitAppliesOnlyToUnmatchedMailThatPassedTheScore) {
  home.context.settings.set("MaxMailSize", Value(100));
  auto m = header();
  m.size = 100;
  EXPECT_EQ(statusWord(checked(m)), "PASS");
  m.size = 100.5f;
  auto big = checked(m);
  EXPECT_EQ(statusWord(big), "IGNORE");
  EXPECT_EQ(big.filterReason, "Over 100Kb");
  EXPECT_EQ(big.colour, colour::kGrey);

  scorer.value = 0.99f;
  EXPECT_EQ(statusWord(checked(m)), "FAIL");  // spam isn't size-tested
  scorer.value = 0.3f;

  filters.setRules({rule("del", "Subject:", "cnt", "hello", "100")});
  EXPECT_EQ(statusWord(checked(m)), "FAIL");  // the matched delete rule skips the size test
  filters.setRules({rule("del", "Subject:", "cnt", "hello", "100"), rule("miss", "Subject:", "cnt", "nothing", "100")});
  big = checked(m);
  EXPECT_TRUE(big.deleted && big.ignored);  // a later rule that didn't fire lets it run
  EXPECT_EQ(big.filterReason, "Over 100Kb");
}

TEST_F(MessageCheckTest, AFailingRuleEndsTheCheckKeepingWhatWasWritten) {
  filters.setRules({rule("tag", "Subject:", "cnt", "hello", "700", false, "seen"),
                     rule("broken", "Subject:", "cnt", "hello", "")});
  const auto m = checked(header());
  EXPECT_EQ(m.tags(), "seen");
  EXPECT_EQ(scorer.calls, 0);
  EXPECT_NE(home.logText().find("CheckMessage"), std::string::npos);
}

TEST_F(MessageCheckTest, RuleFilesComeFromTheDataFolderAndTheirOwnerIsTracked) {
  const auto folder = home.context.folders.dataFolderPath;
  files::writeTextFile(folder / "LocalRules.txt",
                       "Filtername, run\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, report\r\n"
                       "FilterAction, 600\r\nFilterDest, /opt/tools/file-report\r\nFilterStop, 0\r\n");
  RuleEngine local(home.context);
  local.reloadFilters(true);
  EXPECT_EQ(local.currentRuleFile(), folder / "LocalRules.txt");
  ASSERT_EQ(local.rules().size(), 1u);
  auto m = header("Weekly report");
  local.checkMessage(m, false);
  EXPECT_EQ(m.runThisFile, "/opt/tools/file-report");
  EXPECT_NE(home.logText().find("names \"/opt/tools/file-report\" to run; its rule file was changed outside Vonel"),
            std::string::npos);

  ASSERT_TRUE(local.saveFilters());
  RuleEngine again(home.context);
  again.reloadFilters(true);
  const auto before = home.logText().size();
  m = header("Weekly report");
  again.checkMessage(m, false);
  EXPECT_EQ(home.logText().size(), before);  // saved by the program: nothing to say

  const auto imported = home.dir.path() / "import.txt";
  files::writeTextFile(imported, "Filtername, RUN\r\nFiltername, fresh\r\nFilterAction, 100\r\n");
  again.importFilters(imported);
  RuleEngine reread(home.context);
  reread.reloadFilters(true);
  ASSERT_EQ(reread.rules().size(), 2u);
  EXPECT_EQ(reread.rules()[1].filterName, "fresh");
}

TEST_F(MessageCheckTest, TheRuleFileKeepsItsOtherLinesAndAnUnreadableOneIsSetAside) {
  const auto folder = home.context.folders.dataFolderPath;
  const std::string text = "; edited by hand\r\nFiltername, a\r\nFilterAction, 100\r\nFilterDest, \r\n"
                           "FilterStop, 0\r\nFilter_Category,  0 \r\n";
  files::writeTextFile(folder / "Rules.txt", text);
  RuleEngine server(home.context);
  server.reloadFilters(false);
  ASSERT_TRUE(server.saveFilters());
  EXPECT_EQ(files::loadTextFile(folder / "Rules.txt"), text);
  ASSERT_TRUE(server.exportFilters(home.dir.path() / "export.txt", false));
  EXPECT_EQ(files::loadTextFile(home.dir.path() / "export.txt"), text.substr(text.find("Filtername")));

  std::filesystem::remove(folder / "LocalRules.txt");
  std::filesystem::create_directory(folder / "LocalRules.txt");
  RuleEngine local(home.context);
  local.reloadFilters(true);
  EXPECT_NE(home.prompt.lastError.find("LocalRules.txt could not be read"), std::string::npos);
  local.setRules({rule("new", "Subject:", "cnt", "x", "300")});
  ASSERT_TRUE(local.saveFilters());
  EXPECT_TRUE(std::filesystem::is_directory(folder / "LocalRules.txt.bad-20261123-093015"));
  EXPECT_NE(files::loadTextFile(folder / "LocalRules.txt").find("Filtername, new"), std::string::npos);
}

}  // namespace
}  // namespace vonel::rules
