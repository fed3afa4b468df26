#include "core/files/edited_file.h"

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>

#include "core/files/file_text.h"

namespace vonel::files {

namespace fs = std::filesystem;

namespace {

bool isThere(const fs::path& file) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(file, ec));
}

// The first of NAME, NAME-2, NAME-3, ... that isn't taken.
fs::path freeName(const fs::path& wanted) {
  constexpr int kMostTries = 100;
  fs::path name = wanted;
  for (int n = 2; isThere(name) && n <= kMostTries; ++n) name = wanted.string() + "-" + std::to_string(n);
  return name;
}

}  // namespace

std::optional<std::string> EditedFile::unreadable(const fs::path& file) {
  std::error_code ec;
  const fs::file_status status = fs::status(file, ec);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  if (ec) return ec.message();
  if (status.type() == fs::file_type::directory) return "a folder stands in its place";
  // Opening a pipe or a device could wait for ever.
  if (status.type() != fs::file_type::regular) return "it is not a file";
  errno = 0;
  const std::ifstream probe(file, std::ios::binary);
  if (!probe) return errno != 0 ? std::generic_category().message(errno) : "it can't be opened";
  return std::nullopt;
}

fs::path EditedFile::badCopyName(const fs::path& file) const {
  const text::DateTime now = log_.clock().now();
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "%04d%02d%02d-%02d%02d%02d", now.year, now.month, now.day, now.hour, now.minute,
                now.second);
  return file.parent_path() / (file.filename().string() + ".bad-" + stamp);
}

std::optional<std::string> EditedFile::read(const fs::path& file) {
  unread_.reset();
  std::optional<std::string> reason = unreadable(file);
  if (!reason) {
    if (!isThere(file)) return std::nullopt;
    try {
      return loadTextFile(file);
    } catch (const AppError& e) {
      reason = e.description();
    }
  }
  unread_ = Unread{file, badCopyName(file), true, false};
  const std::string text = file.string() + " could not be read (" + *reason +
                           "). Vonel goes on without it and keeps it as " + unread_->badCopy.filename().string() +
                           " before it writes a new one.";
  log_.addAction(text);
  prompt_.showError(text, "");
  return std::nullopt;
}

bool EditedFile::mayReplace(const fs::path& file) {
  if (!unread_ || unread_->file != file) {
    const std::optional<std::string> reason = unreadable(file);
    if (!reason) return true;
    unread_ = Unread{file, badCopyName(file), false, false};
    log_.addAction(file.string() + " could not be read (" + *reason + ")");
  }
  const fs::path badCopy = freeName(unread_->badCopy);
  std::error_code ec;
  fs::rename(file, badCopy, ec);
  if (!ec || !isThere(file)) {
    const std::string text = file.string() + " could not be read; it was kept as " + badCopy.filename().string() +
                             " before a new one was written.";
    log_.addAction(text);
    if (!unread_->told) prompt_.showError(text, "");
    unread_.reset();
    return true;
  }
  const std::string text = file.string() + " could not be read, and keeping it as " + badCopy.filename().string() +
                           " failed (" + ec.message() +
                           "): it was left as it is, and the changes to it were not saved.";
  log_.addAction(text);
  if (!unread_->refusalTold) prompt_.showError(text, "");
  unread_->refusalTold = true;
  return false;
}

}  // namespace vonel::files
