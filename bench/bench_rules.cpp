// Times the message check with a large rule set and full address lists:
// the load of the rule file and the five list files, then checks per second
// over generated headers (the rules mostly don't fire, so every rule is
// looked at), without and with the Bayes score of an empty word table.
// Usage: bench_rules [rules lists headers] (500 5000 5000).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "core/bayes/bayes_filter.h"
#include "core/rules/rule_engine.h"
#include "core/files/atomic_file.h"
#include "core/interaction/prompt.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

std::string word(std::mt19937& random) {
  static constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz";
  std::uniform_int_distribution<std::size_t> length(4, 10);
  std::uniform_int_distribution<std::size_t> letter(0, kLetters.size() - 1);
  std::string out;
  for (std::size_t i = length(random); i > 0; --i) out += kLetters[letter(random)];
  return out;
}

std::string ruleFile(std::mt19937& random, int count) {
  static constexpr const char* kFields[] = {"Subject:", "From:", "To:", "All Headers", "CC:", "Return-Path:"};
  static constexpr const char* kActions[] = {"100", "200", "400", "100", "300"};
  std::string text;
  for (int i = 0; i < count; ++i) {
    const int conditions = 1 + i % 2;
    text += "Filtername, rule " + std::to_string(i) + "\r\n";
    for (int c = 0; c < conditions; ++c) {
      text += std::string("FilterField, ") + kFields[(i + c) % 6] + "\r\nFilterComparison, " +
              (c == 1 ? "!cnt" : "cnt") + "\r\nFilterString, " + word(random) + "\r\n";
    }
    text += std::string("FilterAction, ") + kActions[i % 5] + "\r\nFilterDest, \\Folder\r\nFilterStop, 0\r\n" +
            "Filter_Category,  0 \r\n";
  }
  return text;
}

std::string listFile(std::mt19937& random, int count, bool domains) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += domains ? word(random) + ".example\r\n" : word(random) + "@" + word(random) + ".example\r\n";
  }
  return text;
}

// About 2 KB of headers, as mail that went through a few relays has.
std::string header(std::mt19937& random, int number) {
  std::string text = "Return-Path: <" + word(random) + "@" + word(random) + ".example>\r\n";
  for (int i = 0; i < 8; ++i) {
    text += "Received: from " + word(random) + ".example (" + word(random) + " [10.0.0." + std::to_string(i) +
            "])\r\n\tby mx.example.org with ESMTP id " + word(random) + "; Mon, 23 Nov 2026 09:0" +
            std::to_string(i) + ":00 +0000\r\n";
  }
  text += "From: " + word(random) + " <" + word(random) + "@" + word(random) + ".example>\r\n";
  text += "To: user" + std::to_string(number % 7) + "@example.org\r\nCC: " + word(random) + "@example.net\r\n";
  text += "Subject: " + word(random) + " " + word(random) + " " + word(random) + " " + std::to_string(number) + "\r\n";
  text += "Message-ID: <" + std::to_string(number) + "." + word(random) + "@example.org>\r\n";
  text += "Date: Mon, 23 Nov 2026 09:00:00 +0000\r\nMIME-Version: 1.0\r\nContent-Type: text/plain\r\n\r\n";
  return text;
}

double checksPerSecond(vonel::rules::RuleEngine& filters, const std::vector<vonel::message::Message>& headers) {
  const auto start = Clock::now();
  for (auto m : headers) filters.checkMessage(m, true);
  return static_cast<double>(headers.size()) / secondsSince(start);
}

}  // namespace

int main(int argc, char** argv) {
  const int ruleCount = argc > 1 ? std::atoi(argv[1]) : 500;
  const int listCount = argc > 2 ? std::atoi(argv[2]) : 5000;
  const int headerCount = argc > 3 ? std::atoi(argv[3]) : 5000;
  std::mt19937 random(7);

  const fs::path home = fs::temp_directory_path() / "vonel-bench-rules";
  fs::remove_all(home);
  fs::create_directories(home);
  vonel::SystemClock clock;
  vonel::ScriptedPrompt prompt;
  vonel::AppContext context(clock, prompt, vonel::AppInfo{"Vonel", "bench", "", home, home});
  context.log.loggingOff = true;
  context.folders.readDataFolder();
  vonel::files::writeTextFile(home / "Rules.txt", ruleFile(random, ruleCount));
  for (const char* name : {"Blocked.txt", "BlockedRecip.txt", "Ignore.txt"}) {
    vonel::files::writeTextFile(home / name, listFile(random, listCount, false));
  }
  for (const char* name : {"BlockedDomains.txt", "BlockedRecipDomains.txt"}) {
    vonel::files::writeTextFile(home / name, listFile(random, listCount, true));
  }

  vonel::rules::RuleEngine filters(context);
  auto start = Clock::now();
  filters.reloadFilters(false);
  std::printf("load: %d rules and 5 lists of %d entries in %.1f ms\n", ruleCount, listCount,
              secondsSince(start) * 1000);

  std::vector<vonel::message::Message> headers;
  headers.reserve(static_cast<std::size_t>(headerCount));
  for (int i = 0; i < headerCount; ++i) {
    headers.emplace_back().createFromText(header(random, i), true);
  }
  checksPerSecond(filters, headers);  // warm-up
  std::printf("check, rules and lists only: %.0f checks/s over %d headers\n", checksPerSecond(filters, headers),
              headerCount);
  vonel::bayes::BayesFilter bayes(context);
  filters.setScorer(&bayes);
  std::printf("check with the Bayes score:  %.0f checks/s\n", checksPerSecond(filters, headers));
  fs::remove_all(home);
  return 0;
}
