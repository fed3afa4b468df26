#pragma once
// Files and folders. Every write of user data goes to a temporary file in the
// same folder, is flushed to the disk and renamed over the old file, so that
// a crash or a full disk never leaves half a file behind.
// Failures throw AppError with the program's file error numbers.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "core/text/dates.h"

namespace vonel::files {

namespace fs = std::filesystem;

bool fileExists(const fs::path& file);
bool folderExists(const fs::path& folder);

// Creates the folder and any missing parents; false when it can't.
bool mkMissingDir(const fs::path& folder);

// The whole file as bytes. Throws when it can't be read.
std::string loadTextFile(const fs::path& file);
// The first `limit` bytes of the file. Throws when it can't be read.
std::string readFileStart(const fs::path& file, std::size_t limit);

// A whole file to read through, mapped into memory where the system can, so
// that a large file costs no copy. Throws when the file can't be read.
class FileView {
 public:
  explicit FileView(const fs::path& file);
  ~FileView();
  FileView(const FileView&) = delete;
  FileView& operator=(const FileView&) = delete;

  std::string_view text() const { return text_; }

 private:
  std::string copy_;  // where mapping isn't possible
  void* mapped_ = nullptr;
  std::size_t mappedSize_ = 0;
  std::string_view text_;
};

// Replaces the file with the bytes, through a temporary file and a rename.
void writeTextFile(const fs::path& file, std::string_view bytes);

// Whether a replacement waits for the disk before the rename. Only small
// files that can be made again (counts, markers) skip the wait: a new
// message costs several of them, and each wait is milliseconds.
enum class Durability { Synced, Unsynced };
void writeTextFile(const fs::path& file, std::string_view bytes, Durability durability);

// A replacement of a file written in pieces, for contents too large to hold
// in memory: the bytes go to a temporary file, and only commit() renames it
// over the file. A writer dropped without commit() leaves the file as it was.
class AtomicFileWriter {
 public:
  explicit AtomicFileWriter(fs::path file, Durability durability = Durability::Synced);
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
};

// Appends the bytes, creating the file if needed (for logs, not user data).
void appendToFile(const fs::path& file, std::string_view bytes);

// Deletes the file if it is there; false when it was there and couldn't be deleted.
bool eraseFile(const fs::path& file);

bool isReadOnly(const fs::path& file);
// Gives the owner write permission; false when it can't.
bool makeReadWrite(const fs::path& file);

std::optional<std::uintmax_t> fileSize(const fs::path& file);
// Size and time of a file from one look at it; nothing when it isn't a file.
struct FileFacts {
  std::uintmax_t size = 0;
  text::DateTime modified;
};
std::optional<FileFacts> fileFactsOf(const fs::path& file);
std::optional<text::DateTime> fileDate(const fs::path& file);
// A file time as local time in whole seconds.
text::DateTime localFileTime(fs::file_time_type written);

// The existing file in the folder whose name equals `name` ignoring case;
// the exact spelling wins. Only the name is folded, never the folder.
std::optional<fs::path> findAnyCase(const fs::path& folder, std::string_view name);
// `folder / name` if some spelling of it exists there, that spelling; else as given.
fs::path resolveAnyCase(const fs::path& folder, std::string_view name);

// The volume a path lies on, for messages about disk space: the drive on
// systems with drive letters, the mount point elsewhere.
std::string volumeOf(const fs::path& file);

}  // namespace vonel::files

namespace vonel::files {

// Paths kept in settings are Windows-1252 text; the file system takes UTF-8.
fs::path pathFromText(std::string_view text);
std::string textFromPath(const fs::path& path);

}  // namespace vonel::files
