// Times what recording a downloaded message's unique id costs: the note of
// the id and its file before the message is written, and the synced rewrite
// of the account's id file after it, for a download of N messages; beside it
// the synced write of a 5 KB message as the download does it anyway.
// Usage: bench_fetched_ids [folder] [count]   (the temporary folder, 1000)
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/files/atomic_file.h"
#include "core/store/fetched_ids.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = (argc > 1 ? fs::path(argv[1]) : fs::temp_directory_path()) / "vonel-bench-fetched";
  const int count = argc > 2 ? std::atoi(argv[2]) : 1000;
  fs::remove_all(folder);
  fs::create_directories(folder);
  const std::string message = std::string(5000, 'x') + "\r\n";
  vonel::files::WriteBatch writes;  // closed: each id file waits for the disk, as a lone save does
  double recording = 0;
  double storing = 0;
  double lastRecording = 0;
  for (int i = 0; i < count; ++i) {
    // Ids as Dovecot gives them by default: UID and UIDVALIDITY in hex.
    char id[32];
    std::snprintf(id, sizeof id, "%08X%08X", i + 1, 1700000000);
    const fs::path file = folder / ("MESSAGE " + std::to_string(i) + ".EML");
    const auto start = Clock::now();
    vonel::store::FetchedIds ids(folder, 0, writes);
    ids.beginStoring(id, file);
    const double noted = secondsSince(start);
    const auto written = Clock::now();
    vonel::files::writeTextFile(file, message);
    storing += secondsSince(written);
    const auto finished = Clock::now();
    ids.finishStoring();
    const double step = noted + secondsSince(finished);
    recording += step;
    if (i == count - 1) lastRecording = step;
  }
  std::printf("%d messages: recording the ids %.3f s = %.2f ms a message (the last, with %d ids, %.2f ms); "
              "writing the messages themselves %.3f s = %.2f ms a message; id file %ju bytes\n",
              count, recording, 1000 * recording / count, count, 1000 * lastRecording, storing,
              1000 * storing / count, static_cast<std::uintmax_t>(fs::file_size(folder / "Fetched0.txt")));
  fs::remove_all(folder);
  return 0;
}
