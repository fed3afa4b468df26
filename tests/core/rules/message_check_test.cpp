#include <gtest/gtest.h>

#include <cmath>

#include "core/rules/frm_filters.h"
#include "core/rules/status_word.h"
#include "../store/store_home.h"

namespace vonel::rules {
namespace {

class FixedScore final : public SpamScorer {
 public:
  void Spamminess(message::clsMessage&, bool, float& score) override {
    ++calls;
    score = value;
  }
  float value = 0.3f;
  int calls = 0;
};

clsFilterNew rule(std::string name, std::string fieldName, std::string comparison, std::string wanted,
                  std::string action, bool stop = false, std::string dest = "") {
  clsFilterNew r;
  r.FilterName = std::move(name);
  r.RuleCount = 1;
  r.setFields(1, std::move(fieldName));
  r.setComparisons(1, std::move(comparison));
  r.setStrings(1, std::move(wanted));
  r.Action = std::move(action);
  r.StopProcessing = stop;
  r.DestFolder = std::move(dest);
  return r;
}

class MessageCheckTest : public ::testing::Test {
 protected:
  MessageCheckTest() {
    filters.setScorer(&scorer);
    filters.ReloadFilters(false);
  }
  message::clsMessage header(std::string subject = "Hello", std::string from = "Ann <ann@example.com>") {
    message::clsMessage m;
    m.HeaderOnly = true;
    m.Subject = std::move(subject);
    m.From = std::move(from);
    m.setTo_Email("bob@example.org");
    m.Headers = "From: " + m.From + "\r\nSubject: " + m.Subject + "\r\nX-Mailer: Bulk 1.0\r\n";
    m.Size = 4;
    return m;
  }
  message::clsMessage checked(message::clsMessage m, bool useBayes = true) {
    filters.CheckMessage(m, useBayes);
    return m;
  }

  testing::StoreHome home;
  FixedScore scorer;
  frmFilters filters{home.context};
};

TEST_F(MessageCheckTest, ListsDecideBeforeRulesInTheirOrder) {
  filters.setRules({rule("never reached", "Subject:", "cnt", "", "400")});
  filters.BlockSender("ann@example.com");
  filters.BlockSenderDomain("x@spam.example");
  filters.BlockRecipDomain("someone@example.org");
  filters.BlockRecip("bob@example.org");

  auto m = checked(header());
  EXPECT_EQ(StatusWord(m), "BLOCK");
  EXPECT_EQ(m.FilterReason, "Sender Blocked");
  EXPECT_EQ(m.Colour, colour::kRed);
  EXPECT_TRUE(m.BlockedSender);
  EXPECT_EQ(scorer.calls, 0);

  m = checked(header("Hi", "Eve <eve@SPAM.example>"));
  EXPECT_EQ(m.FilterReason, "Domain Blocked");
  m = checked(header("Hi", "Carl <carl@elsewhere.example>"));
  EXPECT_EQ(m.FilterReason, "Recip Domain Blocked");
  EXPECT_TRUE(m.BlockedRecip);
  EXPECT_FALSE(m.BlockedSender);
  filters.UnBlockRecipDomain("bob@example.org");
  m = checked(header("Hi", "Carl <carl@elsewhere.example>"));
  EXPECT_EQ(m.FilterReason, "bob@example.org Blocked");

  // An ignored recipient wins over a blocked sender and gets no score.
  filters.IgnoreRecipient("BOB@example.org");
  m = checked(header());
  EXPECT_EQ(StatusWord(m), "IGNORE");
  EXPECT_EQ(m.Colour, colour::kGrey);
  EXPECT_FALSE(m.Deleted);
  EXPECT_EQ(m.Bayes, 0.0f);

  // A TAB before the sender's name blocks ahead of everything, without the resets.
  m = header("Hi", "\tAnn <ann@example.com>");
  m.Ignored = true;
  m = checked(m);
  EXPECT_EQ(m.FilterReason, "TAB in sender name");
  EXPECT_TRUE(m.Deleted && m.BlockedSender && m.Ignored);
}

TEST_F(MessageCheckTest, ListLookUpsUseTheSendersAddressWhenFromIsEmpty) {
  filters.BlockSender("sender@example.com");
  auto m = header("Hi", "");
  m.Sender = "The Sender <Sender@Example.com>";
  EXPECT_EQ(checked(m).FilterReason, "Sender Blocked");
  filters.UnBlockSender("sender@example.com");
  filters.setRules({rule("by sender", "From:", "cnt", "the sender", "100")});
  EXPECT_EQ(checked(m).FilterReason, "by sender");
}

struct ConditionCase {
  const char* field;
  const char* comparison;
  const char* wanted;
  bool fires;
};

TEST_F(MessageCheckTest, ConditionsReadTheirFieldsAndCompareIgnoringCase) {
  auto m = header("Cheap V1AGRA now");
  m.CC = "carol@example.com";
  m.BCC = "";
  m.ReturnPath = "<bounce@lists.example>";
  m.XEnvelopeTo = "env@example.org";
  m.SpamTestsFailed = "RCVD_IN_DUL";
  m.StrippedBody = "Click here to UNSUBSCRIBE";
  m.AddAttachment("invoice.zip");
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
      {"Subject:", "mtch", "Cheap", false},       // an old comparison never makes a rule hold
  };
  for (const auto& c : cases) {
    filters.setRules({rule("r", c.field, c.comparison, c.wanted, "100")});
    EXPECT_EQ(checked(m).Deleted, c.fires) << c.field << " " << c.comparison << " '" << c.wanted << "'";
  }
  // An old comparison after one that held keeps it holding.
  clsFilterNew two = rule("two", "Subject:", "cnt", "cheap", "100");
  two.RuleCount = 2;
  two.setFields(2, "Subject:");
  two.setComparisons(2, "mtch");
  filters.setRules({two});
  EXPECT_TRUE(checked(m).Deleted);
  two.setComparisons(2, "!cnt");
  filters.setRules({two});
  EXPECT_FALSE(checked(m).Deleted);  // every condition must hold
}

TEST_F(MessageCheckTest, SpamSubjectsAreReadThroughTheirDisguises) {
  filters.setRules({rule("pills", "Subject:", "cnt", "viagra", "100")});
  EXPECT_TRUE(checked(header("v.i.a.g.r.a")).Deleted);
  EXPECT_TRUE(checked(header("V1AGRA")).Deleted);
  EXPECT_FALSE(checked(header("vi agra")).Deleted);
  EXPECT_FALSE(checked(header("")).Deleted);
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
    EXPECT_EQ(StatusWord(m), c.status) << what;
    EXPECT_EQ(m.Colour, c.colour) << what;
    EXPECT_EQ(m.Bayes, c.bayes) << what;
  }
  filters.setRules({rule("a", "Subject:", "cnt", "offer", "500", false, "/tmp/att/"),
                     rule("b", "Subject:", "cnt", "offer", "600", false, "/usr/bin/tool"),
                     rule("c", "Subject:", "cnt", "offer", "700", false, ",work"),
                     rule("d", "Subject:", "cnt", "offer", "300", true, "\\Deals"),
                     rule("never", "Subject:", "cnt", "offer", "100")});
  const auto m = checked(header("Great offer"));
  EXPECT_EQ(m.AttachmentsFolder, "/tmp/att/");
  EXPECT_EQ(m.RunThisFile, "/usr/bin/tool");
  EXPECT_EQ(m.Tags(), "work");
  EXPECT_EQ(m.DestFolder, "\\Deals");
  EXPECT_EQ(m.FilterReason, "d");
  EXPECT_FALSE(m.Deleted);  // the stop kept the delete rule from running
}

TEST_F(MessageCheckTest, SuspiciousRulesPrefixTheSubjectOnce) {
  filters.setRules({rule("s1", "Subject:", "cnt", "offer", "200"), rule("s2", "Subject:", "cnt", "offer", "1")});
  auto m = header("Great offer");
  m.ReplaceRawMessage("Subject: Great offer\r\n\r\nbody");
  m = checked(m);
  EXPECT_EQ(m.Subject, "SPAM: Great offer");
  EXPECT_EQ(m.FilterReason, "s2");
  // The stored text is tagged by each rule, as the header block isn't updated in between.
  EXPECT_NE(m.RawMessage().find("Subject: SPAM: SPAM: Great offer"), std::string::npos);
}

TEST_F(MessageCheckTest, ScoreThresholdsCompareAsSingleFloats) {
  home.context.SpamThreshold = 0.99f;
  home.context.SaveToSpamThreshold = 0.7f;
  scorer.value = 0.99f;
  auto m = checked(header());
  EXPECT_EQ(StatusWord(m), "FAIL");
  EXPECT_EQ(m.FilterReason, "Bayes: 0.99");
  EXPECT_EQ(m.Colour, colour::kOrange);

  auto whole = header();
  whole.HeaderOnly = false;
  whole = checked(whole);
  EXPECT_FALSE(whole.Deleted);
  EXPECT_EQ(whole.DestFolder, "\\SpamBayes\\");

  scorer.value = std::nextafter(0.99f, 0.0f);
  m = checked(header());
  EXPECT_EQ(StatusWord(m), "SPAM?");
  EXPECT_EQ(m.DestFolder, "\\SpamBayes\\");
  scorer.value = 0.7f;
  EXPECT_EQ(StatusWord(checked(header())), "SPAM?");
  scorer.value = std::nextafter(0.7f, 0.0f);
  m = checked(header());
  EXPECT_EQ(StatusWord(m), "PASS");
  EXPECT_EQ(m.DestFolder, "");

  // A rule's reason is kept; a move rule turns the score off altogether.
  filters.setRules({rule("allow", "Subject:", "cnt", "hello", "400")});
  scorer.value = 0.99f;
  m = checked(header());
  EXPECT_EQ(m.FilterReason, "allow");
  EXPECT_EQ(StatusWord(m), "FAIL");
  filters.setRules({rule("move", "Subject:", "cnt", "hello", "300", false, "\\Keep")});
  m = checked(header());
  EXPECT_EQ(m.Bayes, 0.0f);
  EXPECT_EQ(m.DestFolder, "\\Keep");
  EXPECT_EQ(StatusWord(m), "PASS");
}

TEST_F(MessageCheckTest, SizeLimitAppliesOnlyToUnmatchedMailThatPassedTheScore) {
  home.context.Settings.StoreSetting("MaxMailSize", Value(100));
  auto m = header();
  m.Size = 100;
  EXPECT_EQ(StatusWord(checked(m)), "PASS");
  m.Size = 100.5f;
  auto big = checked(m);
  EXPECT_EQ(StatusWord(big), "IGNORE");
  EXPECT_EQ(big.FilterReason, "Over 100Kb");
  EXPECT_EQ(big.Colour, colour::kGrey);

  scorer.value = 0.99f;
  EXPECT_EQ(StatusWord(checked(m)), "FAIL");  // spam isn't size-tested
  scorer.value = 0.3f;

  filters.setRules({rule("del", "Subject:", "cnt", "hello", "100")});
  EXPECT_EQ(StatusWord(checked(m)), "FAIL");  // the matched delete rule skips the size test
  filters.setRules({rule("del", "Subject:", "cnt", "hello", "100"), rule("miss", "Subject:", "cnt", "nothing", "100")});
  big = checked(m);
  EXPECT_TRUE(big.Deleted && big.Ignored);  // a later rule that didn't fire lets it run
  EXPECT_EQ(big.FilterReason, "Over 100Kb");
}

TEST_F(MessageCheckTest, AFailingRuleEndsTheCheckKeepingWhatWasWritten) {
  filters.setRules({rule("tag", "Subject:", "cnt", "hello", "700", false, "seen"),
                     rule("broken", "Subject:", "cnt", "hello", "")});
  const auto m = checked(header());
  EXPECT_EQ(m.Tags(), "seen");
  EXPECT_EQ(scorer.calls, 0);
  EXPECT_NE(home.logText().find("CheckMessage"), std::string::npos);
}

TEST_F(MessageCheckTest, RuleFilesComeFromTheDataFolderAndTheirOwnerIsTracked) {
  const auto folder = home.context.folders.DataFolderPath;
  files::WriteTextFile(folder / "LocalRules.txt",
                       "Filtername, run\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, report\r\n"
                       "FilterAction, 600\r\nFilterDest, /opt/tools/file-report\r\nFilterStop, 0\r\n");
  frmFilters local(home.context);
  local.ReloadFilters(true);
  EXPECT_EQ(local.CurrentRuleFile(), folder / "LocalRules.txt");
  ASSERT_EQ(local.Rules().size(), 1u);
  auto m = header("Weekly report");
  local.CheckMessage(m, false);
  EXPECT_EQ(m.RunThisFile, "/opt/tools/file-report");
  EXPECT_NE(home.logText().find("names \"/opt/tools/file-report\" to run; its rule file was changed outside Vonel"),
            std::string::npos);

  ASSERT_TRUE(local.SaveFilters());
  frmFilters again(home.context);
  again.ReloadFilters(true);
  const auto before = home.logText().size();
  m = header("Weekly report");
  again.CheckMessage(m, false);
  EXPECT_EQ(home.logText().size(), before);  // saved by the program: nothing to say

  const auto imported = home.dir.path() / "import.txt";
  files::WriteTextFile(imported, "Filtername, RUN\r\nFiltername, fresh\r\nFilterAction, 100\r\n");
  again.ImportFilters(imported);
  frmFilters reread(home.context);
  reread.ReloadFilters(true);
  ASSERT_EQ(reread.Rules().size(), 2u);
  EXPECT_EQ(reread.Rules()[1].FilterName, "fresh");
}

}  // namespace
}  // namespace vonel::rules
