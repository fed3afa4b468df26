#include "core/files/file_info.h"

#include <chrono>
#include <system_error>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "core/time/clock.h"

namespace vonel::files {

bool fileExists(const fs::path& file) {
  std::error_code ec;
  return fs::is_regular_file(file, ec);
}

bool folderExists(const fs::path& folder) {
  std::error_code ec;
  return fs::is_directory(folder, ec);
}

bool ensureFolder(const fs::path& folder) {
  std::error_code ec;
  if (fs::is_directory(folder, ec)) return true;
  fs::create_directories(folder, ec);
  return fs::is_directory(folder, ec);
}

bool eraseFile(const fs::path& file) {
  std::error_code ec;
  fs::remove(file, ec);
  return !ec;
}

bool isReadOnly(const fs::path& file) {
  std::error_code ec;
  const auto status = fs::status(file, ec);
  if (ec || !fs::exists(status)) return false;
  return (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

bool makeReadWrite(const fs::path& file) {
  std::error_code ec;
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, ec);
  return !ec && !isReadOnly(file);
}

std::optional<std::uintmax_t> fileSize(const fs::path& file) {
  std::error_code ec;
  const auto size = fs::file_size(file, ec);
  if (ec) return std::nullopt;
  return size;
}

std::optional<text::DateTime> fileDate(const fs::path& file) {
  std::error_code ec;
  const auto written = fs::last_write_time(file, ec);
  if (ec) return std::nullopt;
  return localFileTime(written);
}

std::optional<FileFacts> fileFactsOf(const fs::path& file) {
#ifdef _WIN32
  std::error_code ec;
  const auto size = fs::file_size(file, ec);
  if (ec) return std::nullopt;
  const auto written = fs::last_write_time(file, ec);
  if (ec) return std::nullopt;
  return FileFacts{size, localFileTime(written)};
#else
  struct stat facts {};
  if (::stat(file.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return std::nullopt;
  return FileFacts{static_cast<std::uintmax_t>(facts.st_size), localDateTime(facts.st_mtime)};
#endif
}

text::DateTime localFileTime(fs::file_time_type written) {
  // An exact conversion: times of one file must compare equal from one look to the next.
  const auto system = std::chrono::floor<std::chrono::seconds>(fs::file_time_type::clock::to_sys(written));
  return localDateTime(std::chrono::system_clock::to_time_t(system));
}

std::string volumeOf(const fs::path& file) {
  const fs::path absolute = fs::absolute(file);
  if (absolute.has_root_name()) {
    std::string drive = absolute.root_name().string();
    if (!drive.empty() && drive.back() == ':') drive.pop_back();
    return drive;
  }
#ifndef _WIN32
  // The mount point: climb while the parent lies on the same device.
  fs::path current = absolute.parent_path();
  struct stat here {};
  while (!current.empty() && ::stat(current.c_str(), &here) != 0) current = current.parent_path();
  for (;;) {
    const fs::path parent = current.parent_path();
    struct stat above {};
    if (parent == current || ::stat(parent.c_str(), &above) != 0 || above.st_dev != here.st_dev) break;
    current = parent;
  }
  return current.string();
#else
  return absolute.root_path().string();
#endif
}

}  // namespace vonel::files
