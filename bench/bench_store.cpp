// Times the folder cache on generated folders: a cold fill (no cache file,
// every header read, the file written), a warm open (nothing changed), and a
// fill after one file was touched, one removed and one added; and the memory
// the cache holds per message. The listing alone is timed as the floor of a
// warm open, which must look at each file's time once. Usage: bench_store [count...] (10000 50000).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "core/context/app_context.h"
#include "core/interaction/prompt.h"
#include "core/interaction/progress.h"
#include "core/store/folder_cache.h"
#include "core/store/folder_listing.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

long residentBytes() {
  std::ifstream statm("/proc/self/statm");
  long size = 0;
  long resident = 0;
  statm >> size >> resident;
  return resident * 4096;
}

// A message of 2-6 KB of headers, as mail that went through a few relays has.
std::string message(std::mt19937& random, int number) {
  std::uniform_int_distribution<int> relays(6, 24);
  std::string text = "Return-Path: <sender" + std::to_string(number) + "@example.com>\r\n";
  for (int i = relays(random); i > 0; --i) {
    text += "Received: from relay" + std::to_string(i) + ".example.net (relay" + std::to_string(i) +
            ".example.net [192.0.2." + std::to_string(i) + "])\r\n\tby mx.example.org with ESMTPS id " +
            std::to_string(random()) + "\r\n\tfor <me@example.org>; Mon, 23 Nov 2026 09:30:15 +0100\r\n";
  }
  text += "From: Sender " + std::to_string(number) + " <sender" + std::to_string(number) + "@example.com>\r\n";
  text += "To: me@example.org\r\nSubject: Report number " + std::to_string(number) + " for the week\r\n";
  text += "Date: Mon, 23 Nov 2026 09:30:15 +0100\r\nMessage-ID: <" + std::to_string(random()) + "@example.com>\r\n";
  text += "X-Receive-Date: 2026-11-23 09:30:15\r\nX-Message-Tags: \r\n\r\nThe body of the message.\r\n";
  return text;
}

void generate(const fs::path& folder, int count) {
  fs::create_directories(folder);
  std::mt19937 random(7);
  for (int i = 0; i < count; ++i) {
    char name[64];
    std::snprintf(name, sizeof name, "REPORT NUMBER %06d (093015-231126).EML", i);
    std::ofstream(folder / name, std::ios::binary) << message(random, i);
  }
}

void run(int count) {
  const fs::path home = fs::temp_directory_path() / ("vonel-bench-store-" + std::to_string(count));
  fs::remove_all(home);
  vonel::SystemClock clock;
  vonel::ScriptedPrompt prompt;
  vonel::AppContext context(clock, prompt, vonel::AppInfo{"Vonel", "bench", "bench", home, home});
  context.log.loggingOff = true;
  context.folders.readMessageFolder();
  const fs::path inbox = context.folders.inboxFolderPath;
  generate(inbox, count);
  vonel::SilentProgress quiet;

  auto start = Clock::now();
  {
    vonel::store::FolderCache cache(context, quiet);
    cache.fillCache(quiet, inbox, "Inbox");
    const double fill = secondsSince(start);
    const auto writeStart = Clock::now();
    cache.clear(false);
    std::printf("%6d messages  cold fill %.3f s (%zu files opened, %.0f msg/s), cache written in %.3f s (%.1f MB)\n",
                count, fill, cache.headersRead(), count / fill, secondsSince(writeStart),
                static_cast<double>(fs::file_size(inbox / "cache.xml")) / 1e6);
  }

  start = Clock::now();
  const auto listed = vonel::store::listMessageFiles(inbox);
  std::printf("%6d messages  the listing with one time look-up per file alone: %.3f s\n", count, secondsSince(start));

  const long before = residentBytes();
  start = Clock::now();
  vonel::store::FolderCache warm(context, quiet);
  warm.fillCache(quiet, inbox, "Inbox");
  const double open = secondsSince(start);
  const long held = residentBytes() - before;
  std::printf("%6d messages  warm open %.3f s (%zu files opened, %.0f msg/s), %.0f bytes held per message\n", count,
              open, warm.headersRead(), count / open, static_cast<double>(held) / count);
  warm.clear(false);

  fs::last_write_time(inbox / "REPORT NUMBER 000010 (093015-231126).EML",
                      fs::last_write_time(inbox / "REPORT NUMBER 000010 (093015-231126).EML") + std::chrono::seconds(5));
  fs::remove(inbox / "REPORT NUMBER 000020 (093015-231126).EML");
  std::mt19937 random(9);
  std::ofstream(inbox / "NEW ONE (093015-231126).EML", std::ios::binary) << message(random, count);
  start = Clock::now();
  vonel::store::FolderCache changed(context, quiet);
  changed.fillCache(quiet, inbox, "Inbox");
  std::printf("%6d messages  one touched, one removed, one added: %.3f s, %zu files opened, %zu listed\n", count,
              secondsSince(start), changed.headersRead(), changed.count());
  changed.clear(false);
  if (!std::getenv("VONEL_BENCH_KEEP")) fs::remove_all(home);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> counts;
  for (int i = 1; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
  if (counts.empty()) counts = {10000, 50000};
  for (const int count : counts) run(count);
}
