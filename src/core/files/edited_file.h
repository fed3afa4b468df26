#pragma once
// A file that people edit by hand (settings, rules, lists). Reading one
// tells a missing file, which is no fault, from one that is there but can't
// be read (no permission, an I/O error, a folder in its place). Such a file
// is never replaced before it has been set aside beside itself as
// NAME.bad-YYYYMMDD-HHMMSS; when that fails it is left alone. The user is
// told through the prompt either way, never only the log.
#include <filesystem>
#include <optional>
#include <string>

#include "core/interaction/prompt.h"
#include "core/log/log.h"

namespace vonel::files {

class EditedFile {
 public:
  EditedFile(Log& log, Prompt& prompt) : log_(log), prompt_(prompt) {}

  // The file's bytes; nothing when it is missing or can't be read.
  std::optional<std::string> read(const std::filesystem::path& file);
  // Asked before the file is replaced or erased. Sets aside a file that
  // couldn't be read; false when that failed and the file must stay as it is.
  bool mayReplace(const std::filesystem::path& file);

 private:
  struct Unread {
    std::filesystem::path file;
    std::filesystem::path badCopy;
    bool told = false;         // the user knows it couldn't be read
    bool refusalTold = false;  // and that it was left alone
  };

  // Why the file can't be read; nothing when it can, or isn't there.
  static std::optional<std::string> unreadable(const std::filesystem::path& file);
  std::filesystem::path badCopyName(const std::filesystem::path& file) const;

  Log& log_;
  Prompt& prompt_;
  std::optional<Unread> unread_;  // the file last read, when it couldn't be
};

}  // namespace vonel::files
