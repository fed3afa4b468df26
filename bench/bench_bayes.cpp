// Timings of the Bayes filter: writing and loading a word table of 350,000
// records, look-ups in it, and the spam score of 5,000 generated messages
// against it. With a corpus folder as argument (tools: get-corpus.sh), the
// real mails in it are parsed and scored as well. Prints figures; asserts nothing.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "core/bayes/bayes_filter.h"
#include "core/bayes/tokeniser.h"
#include "core/context/app_context.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"

namespace {

using namespace vonel;
using Seconds = std::chrono::duration<double>;

constexpr int kRecords = 350000;
constexpr int kMessages = 5000;
constexpr const char* kPrefixes[] = {"SUB*", "SB-LN*", "FRM*", "TO*", "HDR*", "URL*", "RCT*", "CT*", "XMLR*"};

struct Timing {
  double wall;
  double cpu;
};

template <typename Work>
Timing timed(Work&& work) {
  const auto started = std::chrono::steady_clock::now();
  const std::clock_t cpuStarted = std::clock();
  work();
  return {Seconds(std::chrono::steady_clock::now() - started).count(),
          static_cast<double>(std::clock() - cpuStarted) / CLOCKS_PER_SEC};
}

class Words {
 public:
  std::string word(int minLength, int maxLength) {
    std::uniform_int_distribution<int> length(minLength, maxLength);
    std::string w;
    for (int n = length(random_); n > 0; --n) w += static_cast<char>(letter_(random_));
    return w;
  }
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

 private:
  std::mt19937 random_{7};
  std::uniform_int_distribution<int> letter_{'a', 'z'};
};

std::string generatedMessage(Words& words, int index) {
  const std::string host = words.word(4, 10) + ".example." + (index % 3 ? "com" : "org");
  std::string m;
  for (int hop = 0; hop < 3; ++hop) {
    m += "Received: from " + words.word(3, 8) + "." + host + " (HELO mx" + std::to_string(hop) + "." + host +
         ") [192.0.2." + std::to_string(words.number(255)) + "]\r\n\tby mx.vonel.test with ESMTP id " +
         words.word(10, 14) + "; Mon, 2 Mar 2026 10:0" + std::to_string(hop) + ":00 +0000\r\n";
  }
  m += "From: \"" + words.word(3, 8) + " " + words.word(4, 9) + "\" <" + words.word(3, 8) + "@" + host + ">\r\n";
  m += "To: " + words.word(3, 8) + "@vonel.test\r\n";
  m += "Subject: " + words.word(3, 9) + " " + words.word(2, 7) + " " + std::to_string(words.number(1000)) + " " +
       words.word(4, 10) + "\r\n";
  m += "Date: Mon, 2 Mar 2026 10:00:00 +0000\r\nMessage-ID: <" + words.word(12, 20) + "@" + host + ">\r\n";
  m += "X-Mailer: " + words.word(4, 10) + " " + std::to_string(words.number(20)) + ".0\r\n";
  m += "Content-Type: text/plain; charset=windows-1252\r\n\r\n";
  for (int line = 0; line < 30 + words.number(40); ++line) {
    for (int w = 0; w < 10; ++w) m += words.word(2, 9) + " ";
    if (line % 9 == 4) m += "http://www." + host + "/" + words.word(3, 12) + " ";
    m += "\r\n";
  }
  return m;
}

// The word table: every token of the messages with a probability, then
// filler keys up to the full size.
bayes::WordTable wordTableFor(const std::vector<message::Message>& messages, Words& words) {
  bayes::WordTable table;
  table.initHuge();
  for (std::size_t i = 0; i < messages.size() && table.lastRecord < kRecords; i += 2) {
    bayes::hashMessage(table, messages[i], false);
  }
  for (std::int32_t i = 1; i <= table.lastRecord; ++i) table.setValueAt(i, static_cast<float>(words.number(99) + 1) / 100);
  for (int i = table.lastRecord; i < kRecords; ++i) {
    table.insertRecord(std::string(kPrefixes[i % std::size(kPrefixes)]) + words.word(3, 24) + std::to_string(i),
                       static_cast<float>(i % 99 + 1) / 100);
  }
  return table;
}

void report(const char* what, int count, const char* unit, Timing t) {
  std::printf("%-44s %8.3f s wall %8.3f s cpu  %10.0f %s/s (cpu)\n", what, t.wall, t.cpu, count / t.cpu, unit);
}

std::vector<std::string> corpusMessages(const std::filesystem::path& folder) {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::string text = files::loadTextFile(entry.path());
    if (text.rfind("From ", 0) == 0) text.erase(0, text.find('\n') + 1);  // the mbox separator line
    texts.push_back(text::replaceAll(text::replaceAll(text, "\r\n", "\n"), "\n", "\r\n"));
  }
  return texts;
}

}  // namespace

int main(int argc, char** argv) {
  const auto home = std::filesystem::temp_directory_path() / ("vonel-bench-bayes-" + std::to_string(::getpid()));
  std::filesystem::create_directories(home);
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, AppInfo{"Vonel", "", "", {}, home});
  context.log.loggingOff = true;
  context.folders.dataFolderPath = home;

  Words words;
  std::vector<std::string> texts;
  for (int i = 0; i < kMessages; ++i) texts.push_back(generatedMessage(words, i));
  std::vector<message::Message> messages(texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) messages[i].createFromText(texts[i], false);

  const bayes::WordTable built = wordTableFor(messages, words);
  const auto file = home / "HashTable.dat";
  report("write HashTable.dat (350,000 records)", built.lastRecord, "records",
         timed([&] { built.writeHashTable(file, context.log); }));
  std::printf("  file size %.1f MB\n", static_cast<double>(std::filesystem::file_size(file)) / 1e6);

  bayes::WordTable loaded;
  const Timing loading = timed([&] { loaded.loadTable(file, context.log); });
  report("load HashTable.dat", loaded.lastRecord, "records", loading);

  constexpr int kLookups = 1000000;
  std::size_t found = 0;
  report("look-ups, half of them absent", kLookups, "look-ups", timed([&] {
           for (int i = 0; i < kLookups; ++i) {
             const auto& key = built.keyAt(1 + static_cast<std::int32_t>(static_cast<std::int64_t>(i) * 7919 % kRecords));
             found += loaded.indexOf(i % 2 ? key : key + "x").has_value();
           }
         }));
  found = 0;

  report("tokenise 5,000 parsed messages", kMessages, "messages", timed([&] {
           for (const auto& message : messages) {
             bayes::WordTable table;
             table.initSmall();
             bayes::hashMessage(table, message, false);
             found += static_cast<std::size_t>(table.lastRecord);
           }
         }));
  std::printf("  %.1f tokens a message\n", static_cast<double>(found) / kMessages);

  bayes::BayesFilter filter(context);
  float score = 0;
  filter.spamminess(messages.front(), false, score);  // reads the table
  double total = 0;
  report("score 5,000 parsed messages (Spamminess)", kMessages, "messages", timed([&] {
           for (auto& message : messages) {
             filter.spamminess(message, false, score);
             total += score;
           }
         }));
  report("parse and score 5,000 messages", kMessages, "messages", timed([&] {
           for (const auto& text : texts) {
             message::Message message;
             message.createFromText(text, false);
             filter.spamminess(message, false, score);
             total += score;
           }
         }));
  std::printf("  mean score %.3f\n", total / (2 * kMessages));

  if (argc > 1) {
    const auto corpus = corpusMessages(argv[1]);
    report("parse and score the corpus", static_cast<int>(corpus.size()), "messages", timed([&] {
             for (const auto& text : corpus) {
               message::Message message;
               message.createFromText(text, false);
               filter.spamminess(message, false, score);
             }
           }));
  }
  std::filesystem::remove_all(home);
  return 0;
}
