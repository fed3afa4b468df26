#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/bayes/bayes_trainer.h"
#include "core/bayes/message_file_score.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../store/store_home.h"

// Training on a generated store and scoring a few hundred generated messages
// gives, to the last bit, the scores in the golden list: any change to the
// tokens, the tables or the arithmetic shows here. VONEL_WRITE_GOLDEN=1
// writes the list anew instead, for a change that means to move the scores.
namespace vonel::bayes {
namespace {

// A small generator of its own, so the messages don't depend on the library's distributions.
class Words {
 public:
  std::uint32_t next() {
    state_ = state_ * 1664525u + 1013904223u;
    return state_ >> 8;
  }
  std::string word(const std::vector<std::string>& vocabulary) { return vocabulary[next() % vocabulary.size()]; }
  std::string made(int minLength, int maxLength) {
    std::string w;
    for (int n = minLength + static_cast<int>(next() % static_cast<std::uint32_t>(maxLength - minLength + 1)); n > 0; --n) {
      w += static_cast<char>('a' + next() % 26);
    }
    return w;
  }

 private:
  std::uint32_t state_ = 20261125u;
};

const std::vector<std::string> kHam = {"meeting", "report", "lunch", "figures", "project", "minutes", "agenda",
                                       "review", "draft", "thanks", "budget", "Tuesday", "colleagues", "schedule"};
const std::vector<std::string> kSpam = {"FREE", "offer", "pills", "winner", "cheap", "viagra", "click", "casino",
                                        "prize", "$$$", "unsubscribe", "guaranteed", "refinance", "!!!"};

std::string message(Words& words, bool spam, int index) {
  const auto& own = spam ? kSpam : kHam;
  const auto& other = spam ? kHam : kSpam;
  const std::string host = words.made(4, 9) + (spam ? ".biz" : ".example.org");
  std::string m = "Received: from " + words.made(3, 7) + "." + host + " [192.0.2." + std::to_string(index % 250) +
                  "]\r\n\tby mx.vonel.test; Mon, 2 Mar 2026 10:00:00 +0000\r\n";
  m += "From: \"" + words.made(3, 8) + "\" <" + words.made(3, 8) + "@" + host + ">\r\nTo: jo@vonel.test\r\n";
  m += "Subject: " + words.word(own) + " " + words.word(own) + " " + words.word(other) + " " + words.made(2, 6) + "\r\n";
  m += "Content-Type: text/" + std::string(index % 5 == 0 ? "html" : "plain") + "; charset=windows-1252\r\n\r\n";
  for (int line = 0; line < 3 + static_cast<int>(words.next() % 12); ++line) {
    for (int w = 0; w < 8; ++w) m += (words.next() % 4 == 0 ? words.word(other) : words.word(own)) + " ";
    if (line % 4 == 1) m += "http://www." + host + "/" + words.made(3, 10) + " ";
    if (index % 5 == 0) m += "<b>" + words.made(3, 6) + "</b> ";
    m += "\r\n";
  }
  return m;
}

std::string hexFloat(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%a", static_cast<double>(value));
  return text;
}

TEST(ScoreGolden, TrainingAndScoringGiveTheGoldenScoresBitForBit) {
  testing::StoreHome home;
  home.context.folders.readMessageFolder();
  const auto spamFolder = home.root() / "SpamBayes";
  files::ensureFolder(spamFolder);
  files::ensureFolder(home.context.folders.inboxFolderPath);
  Words words;
  for (int i = 0; i < 150; ++i) {
    files::writeTextFile(home.context.folders.inboxFolderPath / ("good" + std::to_string(i) + ".eml"),
                         message(words, false, i));
    files::writeTextFile(spamFolder / ("SPAM" + std::to_string(i) + ".EML"), message(words, true, i));
  }
  BayesFilter filter(home.context);
  SilentProgress quiet;
  BayesTrainer training(home.context, filter, quiet);
  ASSERT_TRUE(training.generateFilters(TrainingChoices{}));

  std::string scores;
  for (int i = 0; i < 300; ++i) {
    const auto file = home.root() / ("score" + std::to_string(i) + ".eml");
    files::writeTextFile(file, message(words, i % 3 == 0, i));
    const FileScore scored = scoreMessageFile(filter, file);
    scores += std::to_string(i) + " " + hexFloat(scored.score) + " " + scored.filterReason + "\n";
  }
  const std::filesystem::path golden = VONEL_TEST_DATA "/bayes/golden_scores.txt";
  if (std::getenv("VONEL_WRITE_GOLDEN") != nullptr) files::writeTextFile(golden, scores);
  EXPECT_EQ(scores, files::loadTextFile(golden));
}

}  // namespace
}  // namespace vonel::bayes
