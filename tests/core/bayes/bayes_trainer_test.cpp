#include "core/bayes/bayes_trainer.h"

#include <gtest/gtest.h>

#include "core/bayes/tokeniser.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "../store/store_home.h"

namespace vonel::bayes {
namespace {

class TrainingTest : public ::testing::Test {
 protected:
  TrainingTest() { home.context.folders.readMessageFolder(); }

  // The word table as written, read back.
  WordTable writtenWords() {
    WordTable words;
    words.loadTable(filter.wordTableFile(), home.context.log);
    return words;
  }
  static WordTable counts(std::initializer_list<std::pair<const char*, float>> tokens, std::int32_t messages) {
    WordTable table;
    for (const auto& [key, count] : tokens) table.insertRecord(key, count);
    table.messageCount = messages;
    return table;
  }
  std::filesystem::path spamFolder() {
    const auto folder = home.root() / "SpamBayes";
    files::ensureFolder(folder);
    return folder;
  }
  // The tokens training takes from a stored message.
  static std::vector<std::string> tokensOf(const std::string& text) {
    message::Message m;
    m.createFromText(text, false);
    WordTable table;
    table.initSmall();
    hashMessage(table, m, false);
    std::vector<std::string> keys;
    for (std::int32_t i = 1; i <= table.lastRecord; ++i) keys.push_back(table.keyAt(i));
    return keys;
  }

  testing::StoreHome home;
  BayesFilter filter{home.context};
  SilentProgress quiet;
  BayesTrainer training{home.context, filter, quiet};
};

TEST_F(TrainingTest, WordProbabilitiesAreTheShareOfTheSpamRate) {
  WordTable good = counts({{"EVEN", 5}, {"GOODONLY", 3}, {"RAREGOOD", 1}, {"MOSTLYGOOD", 9}}, 10);
  WordTable bad = counts({{"EVEN", 5}, {"SPAMONLY", 2}, {"RAREGOOD", 9}, {"MOSTLYGOOD", 1}, {"ONCE", 1}}, 10);
  training.generateWordHash(good, bad, 2);
  WordTable words = writtenWords();
  EXPECT_FLOAT_EQ(words.findRecord("EVEN").value().value, 0.5f);
  EXPECT_FLOAT_EQ(words.findRecord("GOODONLY").value().value, 0.01f);
  EXPECT_FLOAT_EQ(words.findRecord("SPAMONLY").value().value, 0.99f);
  EXPECT_FLOAT_EQ(words.findRecord("MOSTLYGOOD").value().value, 0.1f);  // 0.1 / (0.9 + 0.1)
  EXPECT_FALSE(words.findRecord("RAREGOOD"));  // under the minimum as good, known as good as spam
  EXPECT_FALSE(words.findRecord("ONCE"));

  // With no good mail at all every spam token at the minimum is spam only.
  WordTable none;
  training.generateWordHash(none, bad, 2);
  EXPECT_FLOAT_EQ(writtenWords().findRecord("EVEN").value().value, 0.99f);
}

TEST_F(TrainingTest, FullTrainingCountsEveryFileAndWritesThreeTables) {
  const std::string spamText = "From: Pills <pills@spam.example>\r\nSubject: Cheap pills\r\n\r\nhttp://pills.example/buy\r\n";
  for (int i = 0; i < 3; ++i) {
    home.writeMessage(home.context.folders.inboxFolderPath, "good" + std::to_string(i) + ".eml", "Subject: Lunch plans");
    files::writeTextFile(spamFolder() / ("SPAM" + std::to_string(i) + ".EML"), spamText);
  }
  files::writeTextFile(spamFolder() / "broken.eml", "");  // unreadable mail still counts as a message
  const TrainingChoices choices;  // good from "\Inbox\", spam from its folder
  ASSERT_TRUE(training.generateFilters(choices));
  EXPECT_EQ(training.goodTable().messageCount, 3);
  EXPECT_EQ(training.badTable().messageCount, 4);
  EXPECT_TRUE(files::fileExists(training.goodTableFile()));
  EXPECT_TRUE(files::fileExists(training.badTableFile()));
  const WordTable words = writtenWords();
  for (const std::string& token : tokensOf(spamText)) {
    EXPECT_FLOAT_EQ(words.findRecord(token).value().value, 0.99f) << token;
  }

  // The next score reads the new table.
  message::Message spam;
  spam.createFromText(spamText, true);
  float score = 0;
  filter.spamminess(spam, true, score);
  EXPECT_FLOAT_EQ(score, 0.99f);
}

TEST_F(TrainingTest, MarkingCountsEachTokenOnceAMessageAndNeverSubtracts) {
  message::Message m;
  m.createFromText("From: x@y.example\r\nSubject: win win win\r\n\r\n", true);
  training.countMessage(m, Verdict::Junk);
  training.countMessage(m, Verdict::Junk);
  training.countMessage(m, Verdict::Good);
  EXPECT_EQ(training.badTable().messageCount, 2);
  EXPECT_EQ(training.goodTable().messageCount, 1);
  const std::string token = training.badTable().keyAt(1);
  EXPECT_FLOAT_EQ(training.badTable().findRecord(token).value().value, 2.0f);
  EXPECT_FLOAT_EQ(training.goodTable().findRecord(token).value().value, 1.0f);

  home.context.spamWordMinimum = 1;
  training.recreateWordHash();
  EXPECT_FLOAT_EQ(writtenWords().findRecord(token).value().value, 0.5f);  // in every message of both sides
  WordTable reread;
  reread.loadTable(training.badTableFile(), home.context.log);
  EXPECT_EQ(reread.messageCount, 2);
}

TEST_F(TrainingTest, AMissingArchiveEndsTrainingAfterTheGoodSide) {
  home.writeMessage(home.context.folders.inboxFolderPath, "good.eml", "Subject: Hello");
  files::writeTextFile(filter.wordTableFile(), "stale");
  home.context.settings.set("SpamFolder", Value((home.dir.path() / "gone").string()));
  TrainingChoices choices;
  choices.bad = TrainingChoices::Source::Archive;
  EXPECT_FALSE(training.generateFilters(choices));
  EXPECT_TRUE(files::fileExists(training.goodTableFile()));
  EXPECT_FALSE(files::fileExists(training.badTableFile()));
  EXPECT_EQ(home.prompt.questions, 1);
  EXPECT_NE(home.prompt.lastQuestion.find("not found. Exiting."), std::string::npos);
}

TEST_F(TrainingTest, ChoicesKeepTheirValuesInTheSettings) {
  TrainingChoices choices;
  choices.good = TrainingChoices::Source::File;
  choices.goodFolder = "\\Inbox\\Work\\";
  choices.bad = TrainingChoices::Source::Archive;
  choices.badSubfolders = true;
  choices.store(home.context.settings);
  const TrainingChoices read = TrainingChoices::read(home.context.settings);
  EXPECT_EQ(read.good, TrainingChoices::Source::File);
  EXPECT_EQ(read.goodFolder, "\\Inbox\\Work\\");
  EXPECT_EQ(read.bad, TrainingChoices::Source::Archive);
  EXPECT_TRUE(read.badSubfolders);
  EXPECT_FALSE(read.goodSubfolders);
}

}  // namespace
}  // namespace vonel::bayes
