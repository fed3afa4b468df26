#include "core/bayes/training.h"

#include <gtest/gtest.h>

#include "core/bayes/tokeniser.h"
#include "core/services/file_subs.h"
#include "../store/store_home.h"

namespace vonel::bayes {
namespace {

class TrainingTest : public ::testing::Test {
 protected:
  TrainingTest() { home.context.folders.ReadMessageFolder(); }

  // The word table as written, read back.
  clsHashTable writtenWords() {
    clsHashTable words;
    words.LoadTable(filter.WordTableFile(), home.context.log);
    return words;
  }
  static clsHashTable counts(std::initializer_list<std::pair<const char*, float>> tokens, std::int32_t messages) {
    clsHashTable table;
    for (const auto& [key, count] : tokens) table.InsertRecord(key, count);
    table.MessageCount = messages;
    return table;
  }
  std::filesystem::path spamFolder() {
    const auto folder = home.root() / "SpamBayes";
    files::MkMissingDir(folder);
    return folder;
  }
  // The tokens training takes from a stored message.
  static std::vector<std::string> tokensOf(const std::string& text) {
    message::clsMessage m;
    m.CreateFromText(text, false);
    clsHashTable table;
    table.InitSmall();
    HashMessage(table, m, false);
    std::vector<std::string> keys;
    for (std::int32_t i = 1; i <= table.LastRecord; ++i) keys.push_back(table.RecString(i));
    return keys;
  }

  testing::StoreHome home;
  frmBayesFilter filter{home.context};
  SilentProgress quiet;
  clsTraining training{home.context, filter, quiet};
};

TEST_F(TrainingTest, WordProbabilitiesAreTheShareOfTheSpamRate) {
  clsHashTable good = counts({{"EVEN", 5}, {"GOODONLY", 3}, {"RAREGOOD", 1}, {"MOSTLYGOOD", 9}}, 10);
  clsHashTable bad = counts({{"EVEN", 5}, {"SPAMONLY", 2}, {"RAREGOOD", 9}, {"MOSTLYGOOD", 1}, {"ONCE", 1}}, 10);
  training.GenerateWordHash(good, bad, 2);
  clsHashTable words = writtenWords();
  EXPECT_FLOAT_EQ(words.FindRec("EVEN").Value, 0.5f);
  EXPECT_FLOAT_EQ(words.FindRec("GOODONLY").Value, 0.01f);
  EXPECT_FLOAT_EQ(words.FindRec("SPAMONLY").Value, 0.99f);
  EXPECT_FLOAT_EQ(words.FindRec("MOSTLYGOOD").Value, 0.1f);  // 0.1 / (0.9 + 0.1)
  EXPECT_EQ(words.FindRec("RAREGOOD").Index, 0);  // under the minimum as good, known as good as spam
  EXPECT_EQ(words.FindRec("ONCE").Index, 0);

  // With no good mail at all every spam token at the minimum is spam only.
  clsHashTable none;
  training.GenerateWordHash(none, bad, 2);
  EXPECT_FLOAT_EQ(writtenWords().FindRec("EVEN").Value, 0.99f);
}

TEST_F(TrainingTest, FullTrainingCountsEveryFileAndWritesThreeTables) {
  const std::string spamText = "From: Pills <pills@spam.example>\r\nSubject: Cheap pills\r\n\r\nhttp://pills.example/buy\r\n";
  for (int i = 0; i < 3; ++i) {
    home.writeMessage(home.context.folders.InboxFolderPath, "good" + std::to_string(i) + ".eml", "Subject: Lunch plans");
    files::WriteTextFile(spamFolder() / ("SPAM" + std::to_string(i) + ".EML"), spamText);
  }
  files::WriteTextFile(spamFolder() / "broken.eml", "");  // unreadable mail still counts as a message
  const TrainingChoices choices;  // good from "\Inbox\", spam from its folder
  ASSERT_TRUE(training.GenerateFilters(choices));
  EXPECT_EQ(training.GoodTable().MessageCount, 3);
  EXPECT_EQ(training.BadTable().MessageCount, 4);
  EXPECT_TRUE(files::FileExists(training.GoodTableFile()));
  EXPECT_TRUE(files::FileExists(training.BadTableFile()));
  const clsHashTable words = writtenWords();
  for (const std::string& token : tokensOf(spamText)) {
    EXPECT_FLOAT_EQ(words.FindRec(token).Value, 0.99f) << token;
  }

  // The next score reads the new table.
  message::clsMessage spam;
  spam.CreateFromText(spamText, true);
  float score = 0;
  filter.Spamminess(spam, true, score);
  EXPECT_FLOAT_EQ(score, 0.99f);
}

TEST_F(TrainingTest, MarkingCountsEachTokenOnceAMessageAndNeverSubtracts) {
  message::clsMessage m;
  m.CreateFromText("From: x@y.example\r\nSubject: win win win\r\n\r\n", true);
  training.AddToJunk(m);
  training.AddToJunk(m);
  training.RemoveFromJunk(m);
  EXPECT_EQ(training.BadTable().MessageCount, 2);
  EXPECT_EQ(training.GoodTable().MessageCount, 1);
  const std::string token = training.BadTable().RecString(1);
  EXPECT_FLOAT_EQ(training.BadTable().FindRec(token).Value, 2.0f);
  EXPECT_FLOAT_EQ(training.GoodTable().FindRec(token).Value, 1.0f);

  home.context.SpamWordMinimum = 1;
  training.RecreateWordHash();
  EXPECT_FLOAT_EQ(writtenWords().FindRec(token).Value, 0.5f);  // in every message of both sides
  clsHashTable reread;
  reread.LoadTable(training.BadTableFile(), home.context.log);
  EXPECT_EQ(reread.MessageCount, 2);
}

TEST_F(TrainingTest, AMissingArchiveEndsTrainingAfterTheGoodSide) {
  home.writeMessage(home.context.folders.InboxFolderPath, "good.eml", "Subject: Hello");
  files::WriteTextFile(filter.WordTableFile(), "stale");
  home.context.Settings.StoreSetting("SpamFolder", Value((home.dir.path() / "gone").string()));
  TrainingChoices choices;
  choices.bad = TrainingChoices::Source::Archive;
  EXPECT_FALSE(training.GenerateFilters(choices));
  EXPECT_TRUE(files::FileExists(training.GoodTableFile()));
  EXPECT_FALSE(files::FileExists(training.BadTableFile()));
  EXPECT_EQ(home.prompt.questions, 1);
  EXPECT_NE(home.prompt.lastQuestion.find("not found. Exiting."), std::string::npos);
}

TEST_F(TrainingTest, ChoicesKeepTheirValuesInTheSettings) {
  TrainingChoices choices;
  choices.good = TrainingChoices::Source::File;
  choices.goodFolder = "\\Inbox\\Work\\";
  choices.bad = TrainingChoices::Source::Archive;
  choices.badSubfolders = true;
  choices.Store(home.context.Settings);
  const TrainingChoices read = TrainingChoices::Read(home.context.Settings);
  EXPECT_EQ(read.good, TrainingChoices::Source::File);
  EXPECT_EQ(read.goodFolder, "\\Inbox\\Work\\");
  EXPECT_EQ(read.bad, TrainingChoices::Source::Archive);
  EXPECT_TRUE(read.badSubfolders);
  EXPECT_FALSE(read.goodSubfolders);
}

}  // namespace
}  // namespace vonel::bayes
