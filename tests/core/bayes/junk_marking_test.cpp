#include "core/bayes/junk_marking.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "../store/store_home.h"

namespace vonel::bayes {
namespace {

TEST(MarkQuestionTest, TheCountAndItsPluralAreFilledIn) {
  const MarkQuestion one = markQuestion(Verdict::Junk, 1);
  EXPECT_EQ(one.heading, "Mark as Junk?");
  EXPECT_EQ(one.text.substr(0, 43), "You are about to mark 1 message as Junk mai");
  EXPECT_NE(one.text.find("mark the selected message as Junk?"), std::string::npos);
  const MarkQuestion two = markQuestion(Verdict::Junk, 2);
  EXPECT_EQ(two.text.substr(0, 45), "You are about to mark 2 messages as Junk mail");
  EXPECT_NE(two.text.find("spam.  Are you certain you want to mark the selected messages as Junk?"), std::string::npos);
  EXPECT_EQ(markQuestion(Verdict::Good, 1).text, "Do you want to mark the selected message as 'Good' mail?");
  EXPECT_EQ(markQuestion(Verdict::Good, 3).text, "Do you want to mark the 3 selected messages as 'Good' mail?");
  EXPECT_EQ(markQuestion(Verdict::Good, 3).heading, "Mark as Good?");
}

class JunkMarkingTest : public ::testing::Test {
 protected:
  JunkMarkingTest() {
    home.context.folders.readMessageFolder();
    message.createFromText("From: x@y.example\r\nSubject: cheap pills now\r\n\r\nbuy\r\n", false);
  }
  bool mark(Verdict verdict, bool answer) {
    return markMessages(training, filter, {&message}, verdict, [&](const MarkQuestion& question) {
      asked.push_back(question.heading);
      return answer;
    });
  }

  testing::StoreHome home;
  BayesFilter filter{home.context};
  SilentProgress quiet;
  BayesTrainer training{home.context, filter, quiet};
  message::Message message;
  std::vector<std::string> asked;
};

TEST_F(JunkMarkingTest, NoLeavesEveryTableAsItWas) {
  EXPECT_FALSE(mark(Verdict::Junk, false));
  EXPECT_EQ(asked, std::vector<std::string>{"Mark as Junk?"});
  EXPECT_FALSE(files::fileExists(training.badTableFile()));
  EXPECT_FALSE(files::fileExists(filter.wordTableFile()));
  EXPECT_FALSE(markMessages(training, filter, {}, Verdict::Junk, [](const MarkQuestion&) { return true; }));
}

TEST_F(JunkMarkingTest, YesCountsTheMessageWritesTheTablesAndTheFilterUsesThemAtOnce) {
  home.context.spamWordMinimum = 1;
  EXPECT_TRUE(mark(Verdict::Junk, true));
  EXPECT_TRUE(files::fileExists(training.badTableFile()));
  EXPECT_TRUE(files::fileExists(filter.wordTableFile()));
  EXPECT_TRUE(mark(Verdict::Good, true));
  EXPECT_TRUE(mark(Verdict::Good, true));
  EXPECT_EQ(training.goodTable().messageCount, 2);  // marking good twice counts twice
  EXPECT_EQ(training.badTable().messageCount, 1);
}

TEST(ReinforceColourTest, OnlyTheSpamAndSuspectColoursCountAsJunk) {
  for (std::int32_t colour : {255, 33023, 8388736}) EXPECT_TRUE(colourMeansJunk(colour));
  for (std::int32_t colour : {0, 0x808080, 0x008000, 0xA7A7A7}) EXPECT_FALSE(colourMeansJunk(colour));
}

}  // namespace
}  // namespace vonel::bayes
