// Timings of the Bayes filter: writing and loading a word table of 350,000
// records, and look-ups in it. Prints figures; asserts nothing.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "core/bayes/hash_table.h"
#include "core/services/clock.h"

namespace {

using namespace vonel;
using Seconds = std::chrono::duration<double>;

constexpr int kRecords = 350000;
constexpr const char* kPrefixes[] = {"SUB*", "SB-LN*", "FRM*", "TO*", "HDR*", "URL*", "RCT*", "CT*", "XMLR*"};

template <typename Work>
double timed(Work&& work) {
  const auto started = std::chrono::steady_clock::now();
  work();
  return Seconds(std::chrono::steady_clock::now() - started).count();
}

std::vector<std::string> tokenKeys(int count) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> length(3, 24);
  std::uniform_int_distribution<int> letter('a', 'z');
  std::vector<std::string> keys;
  keys.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    std::string key = kPrefixes[static_cast<std::size_t>(i) % std::size(kPrefixes)];
    for (int n = length(random); n > 0; --n) key += static_cast<char>(letter(random));
    key += std::to_string(i);
    keys.push_back(std::move(key));
  }
  return keys;
}

}  // namespace

int main() {
  const auto folder = std::filesystem::temp_directory_path() / ("vonel-bench-bayes-" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  SystemClock clock;
  cSharedLogging log(clock, AppInfo{});
  log.NOLOGGING = true;
  const auto file = folder / "HashTable.dat";

  const auto keys = tokenKeys(kRecords);
  bayes::clsHashTable built;
  built.InitHuge();
  for (std::size_t i = 0; i < keys.size(); ++i) built.InsertRecord(keys[i], static_cast<float>(i % 99 + 1) / 100);

  const double writeSeconds = timed([&] { built.WriteHashTable(file, log); });
  std::printf("write %d records (%.1f MB): %.3f s\n", kRecords,
              static_cast<double>(std::filesystem::file_size(file)) / 1e6, writeSeconds);

  bayes::clsHashTable loaded;
  const double loadSeconds = timed([&] { loaded.LoadTable(file, log); });
  std::printf("load %d records: %.3f s (%.0f records/s)\n", loaded.LastRecord, loadSeconds,
              loaded.LastRecord / loadSeconds);

  constexpr int kLookups = 200000;
  std::size_t found = 0;
  const double lookupSeconds = timed([&] {
    for (int i = 0; i < kLookups; ++i) {
      const auto& key = keys[static_cast<std::size_t>(i) * 7919 % keys.size()];
      found += loaded.RecIndex(i % 2 ? key : key + "x") > 0;
    }
  });
  std::printf("look-ups: %.0f per second (%zu found)\n", kLookups / lookupSeconds, found);

  std::filesystem::remove_all(folder);
  return 0;
}
