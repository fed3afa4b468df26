#pragma once
// Every write of user data goes to a temporary file in the same folder, is
// flushed to the disk and renamed over the old file, so that a crash or a
// full disk never leaves half a file behind. Failures throw AppError with the
// program's file error numbers.
#include <filesystem>
#include <fstream>
#include <string_view>

#include "core/files/write_batch.h"

namespace vonel::files {

namespace fs = std::filesystem;

// Whether a replacement waits for the disk before the rename. Only small
// files that can be made again (counts, markers) skip the wait: a new
// message costs several of them, and each wait is milliseconds.
enum class Durability { Synced, Unsynced };

// A replacement of a file written in pieces, for contents too large to hold
// in memory: the bytes go to a temporary file, and only commit() renames it
// over the file. A writer dropped without commit() leaves the file as it was.
class AtomicFileWriter {
 public:
  explicit AtomicFileWriter(fs::path file, Durability durability = Durability::Synced);
  // Waits for the disk at commit() only when the batch is closed; an open
  // batch takes the file for its barrier.
  AtomicFileWriter(fs::path file, WriteBatch& batch);
  ~AtomicFileWriter();
  AtomicFileWriter(const AtomicFileWriter&) = delete;
  AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

  void write(std::string_view bytes);
  void commit();

 private:
  fs::path file_;
  fs::path temporary_;
#ifdef _WIN32
  std::ofstream out_;
#else
  int fd_ = -1;
#endif
  bool committed_ = false;
  Durability durability_;
  WriteBatch* batch_ = nullptr;
};

// Replaces the file with the bytes, through a temporary file and a rename.
void writeTextFile(const fs::path& file, std::string_view bytes, Durability durability = Durability::Synced);
void writeTextFile(const fs::path& file, std::string_view bytes, WriteBatch& batch);

}  // namespace vonel::files
