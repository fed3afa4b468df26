#pragma once
// What a file or folder is (there, how big, when written, writable, on which
// volume) and the small changes to one: a folder made, a file erased, a file
// made writable. None of these throws.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "core/text/dates.h"

namespace vonel::files {

namespace fs = std::filesystem;

bool fileExists(const fs::path& file);
bool folderExists(const fs::path& folder);

// Creates the folder and any missing parents; false when it can't.
bool ensureFolder(const fs::path& folder);

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

// The volume a path lies on, for messages about disk space: the drive on
// systems with drive letters, the mount point elsewhere.
std::string volumeOf(const fs::path& file);

}  // namespace vonel::files
