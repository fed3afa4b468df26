#include "core/bayes/bayes_filter.h"

#include <gtest/gtest.h>

#include <set>

#include "../test_home.h"
#include "core/bayes/score_steps.h"
#include "core/bayes/tokeniser.h"
#include "core/files/atomic_file.h"

namespace vonel::bayes {
namespace {

class FakeContacts : public ContactLookup {
 public:
  bool contactExists(std::string_view name, std::string_view email) const override {
    return known.count(std::string(name) + "|" + std::string(email)) > 0;
  }
  std::set<std::string> known;
};

class SpamScore : public ::testing::Test {
 protected:
  SpamScore() { context.folders.dataFolderPath = home.dir.path(); }

  // A word table giving every token of the message `probability`.
  void writeWordTableFor(const message::Message& message, float probability) {
    WordTable tokens;
    tokens.initSmall();
    hashMessage(tokens, message, true);
    WordTable words;
    for (std::int32_t i = 1; i <= tokens.lastRecord; ++i) words.insertRecord(tokens.keyAt(i), probability);
    ASSERT_TRUE(words.writeHashTable(home.dir.path() / "HashTable.dat", home.log));
  }
  void writeFile(const std::string& name, const std::string& bytes) {
    files::writeTextFile(home.dir.path() / name, bytes);
  }
  float scoreOf(message::Message& message) {
    float score = -7;
    filter.spamminess(message, true, score);
    return score;
  }

  vonel::testing::TestHome home;
  AppContext context{home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()}};
  BayesFilter filter{context};
};

message::Message withSubject(const std::string& subject, const std::string& from = "") {
  message::Message message;
  message.subject = subject;
  message.from = from;
  return message;
}

TEST_F(SpamScore, WithoutAWordTableEverythingIsLowButTheBlacklist) {
  auto plain = withSubject("hello");
  EXPECT_EQ(scoreOf(plain), 0.01f) << "and no sender correction";
  writeFile("BlacklistedWords.txt", "free\r\n");
  filter.loadBlackList();
  auto spam = withSubject("f1r2e3e offer");
  EXPECT_EQ(scoreOf(spam), 0.99f);
  EXPECT_EQ(spam.filterReason, "Subject contains free");
}

TEST_F(SpamScore, FewTokensGiveThePlainMeanWithoutBreakdown) {
  auto message = withSubject("aaa bbb ccc");  // five tokens, fewer than twelve
  message.spamSplit = "before";
  writeFile("HashTable.dat", "Count, String\r\n 0 \r\n .9 , SUB*aaa\r\n .1 , SUB*bbb\r\n");
  // (.9 + .1 + 3 * .4) / 5 = .44, and an empty sender name does not fit: + .25
  EXPECT_FLOAT_EQ(scoreOf(message), 0.69f);
  EXPECT_EQ(message.spamSplit, "before");
}

TEST_F(SpamScore, AllUnknownTokensScoreFourTenthsPlusTheNameMismatch) {
  auto message = withSubject("aaa bbb ccc", "Zed <bob@example.org>");
  writeFile("HashTable.dat", "Count, String\r\n 0 \r\n .5 , unrelated\r\n");
  EXPECT_FLOAT_EQ(scoreOf(message), 0.65f);
  message.from = "Bob Smith <bob@example.org>";
  EXPECT_FLOAT_EQ(scoreOf(message), 0.4f) << "a name that fits adds nothing";
}

TEST_F(SpamScore, ExtremeTokensAndTheContactCorrection) {
  auto message = withSubject("aaa bbb ccc ddd eee fff ggg hhh iii jjj kkk", "Bob <bob@example.org>");
  writeWordTableFor(message, 0.99f);
  FakeContacts contacts;
  contacts.known.insert("Bob|bob@example.org");
  EXPECT_EQ(scoreOf(message), 0.99f);
  EXPECT_NE(message.spamSplit.find("(0.99) \tSUB*aaa\r\n"), std::string::npos);
  filter.setContacts(&contacts);
  EXPECT_FLOAT_EQ(scoreOf(message), 0.49f);
}

TEST_F(SpamScore, KnownSendersAndTheClamps) {
  auto message = withSubject("aaa bbb ccc ddd eee fff ggg hhh iii jjj kkk", "Zed <bob@example.org>");
  writeWordTableFor(message, 0.95f);
  EXPECT_EQ(scoreOf(message), 0.99f) << ".95 + .25 is held at .99";

  filter.forceRefresh();
  writeWordTableFor(message, 0.01f);
  filter.goodTable().addCount("SND*bob@example.org");
  message.from = "Bob <bob@example.org>";
  EXPECT_EQ(scoreOf(message), 0.01f) << ".01 - .15 falls below 0";

  message.sender = "x@y.org";
  filter.forceRefresh();
  writeWordTableFor(message, 0.5f);
  EXPECT_FLOAT_EQ(scoreOf(message), 0.35f) << "the From address is tried when the Sender is unknown";
}

TEST_F(SpamScore, SettingsDecideHowManyTokensCount) {
  auto message = withSubject("aaa bbb ccc", "Bob <bob@example.org>");
  writeWordTableFor(message, 0.3f);
  context.headerWordCount = 0;
  EXPECT_EQ(scoreOf(message), 0.01f);
}

TEST(SpamBlacklist, SearchCarriesItsPositionFromWordToWord) {
  vonel::testing::TestHome home;
  const auto file = home.dir.path() / "BlacklistedWords.txt";
  BlackList list;
  const auto search = [&](const std::string& words, std::string_view subject) {
    files::writeTextFile(file, words);
    list.loadBlackList(file, home.log);
    return list.searchSubject(subject).value_or("(none)");
  };
  EXPECT_EQ(search("free\r\n", "Free offer"), "(none)") << "case counts";
  EXPECT_EQ(search("xyz\r\nab\r\n", "ab"), "ab");
  EXPECT_EQ(search("ab\r\nb\r\n", "ab"), "ab") << "the second word is sought after the first";
  EXPECT_EQ(search("b\r\nzz\r\na\r\n", "ab"), "b") << "after a failure, nothing before the lowest hit";
  EXPECT_EQ(search("a\r\nb\r\n", "ab"), "b") << "the last match wins";
  EXPECT_EQ(search("", "anything"), "(none)");
  EXPECT_EQ(list.count(), 0u);
  list.loadBlackList(home.dir.path() / "missing.txt", home.log);
  EXPECT_TRUE(list.loaded());
  EXPECT_EQ(list.searchSubject("x"), std::nullopt);
}

TEST(SpamScoreSteps, SortIsStableAndTheBreakdownFollowsIt) {
  std::vector<TokenProbability> tokens{{"c", 0.9f}, {"a", 0.2f}, {"b", 0.9f}, {"d", 0.01f}, {"e", 0.2f}};
  sortByValue(tokens);
  EXPECT_EQ(spamSplitText(tokens),
            "(0.01) \td\r\n(0.2) \ta\r\n(0.2) \te\r\n(0.9) \tc\r\n(0.9) \tb\r\n");
}

TEST(SpamScoreSteps, ExtremesComeFromBothEndsAndTiesGoToSpam) {
  EXPECT_FLOAT_EQ(meanOfExtremes({{"lo", 0.25f}, {"hi", 0.75f}}, 1), 0.75f);
  EXPECT_FLOAT_EQ(meanOfExtremes({{"lo", 0.1f}, {"hi", 0.9f}}, 1), 0.1f) << "as single floats .1 lies farther out";
  EXPECT_FLOAT_EQ(meanOfExtremes({{"lo", 0.1f}, {"hi", 0.8f}}, 1), 0.1f);
  EXPECT_FLOAT_EQ(meanOfExtremes({{"a", 0.05f}, {"b", 0.4f}, {"c", 0.5f}, {"d", 0.7f}}, 2), 0.375f);
  EXPECT_EQ(meanOfExtremes({{"a", 0}, {"b", 0}}, 2), 0.01f);
}

TEST(SpamScoreSteps, NameFitsWhenAPieceIsInTheAddress) {
  EXPECT_TRUE(nameFitsAddress("Bob Smith", "BOB@example.org"));
  EXPECT_TRUE(nameFitsAddress("bob@example.org", "bob@example.org"));
  EXPECT_FALSE(nameFitsAddress("", "bob@example.org"));
  EXPECT_FALSE(nameFitsAddress("Sales  Team", "bob@example.org"));
}

}  // namespace
}  // namespace vonel::bayes
