#include "core/store/folder_listing.h"

#include <algorithm>

#ifndef _WIN32
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#endif

#include "core/time/clock.h"
#include "core/files/file_info.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

bool isMessageName(std::string_view name) {
  constexpr std::string_view kExtension = ".eml";
  return name.size() > kExtension.size() && text::equalsNoCase(name.substr(name.size() - kExtension.size()), kExtension);
}

}  // namespace

#ifdef _WIN32
std::vector<ListedFile> listMessageFiles(const fs::path& folder) {
  // The directory entries of this system carry the times, so no file is looked at.
  std::vector<ListedFile> files;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    std::string name = it->path().filename().string();
    std::error_code statError;
    if (!isMessageName(name) || !it->is_regular_file(statError)) continue;
    const auto written = it->last_write_time(statError);
    if (statError) continue;  // gone between the listing and the look
    std::string key = text::upper(name);
    files.push_back({std::move(name), std::move(key), files::localFileTime(written)});
  }
#else
std::vector<ListedFile> listMessageFiles(const fs::path& folder) {
  std::vector<ListedFile> files;
  DIR* directory = ::opendir(folder.c_str());
  if (directory == nullptr) return files;
  const int directoryFd = ::dirfd(directory);
  while (const dirent* entry = ::readdir(directory)) {
    const std::string_view name(entry->d_name);
    if (!isMessageName(name)) continue;
    // A look relative to the open folder walks one name, not the whole path.
    struct stat facts {};
    if (::fstatat(directoryFd, entry->d_name, &facts, 0) != 0 || !S_ISREG(facts.st_mode)) continue;
    files.push_back({std::string(name), text::upper(name), localDateTime(facts.st_mtime)});
  }
  ::closedir(directory);
#endif
  std::sort(files.begin(), files.end(), [](const ListedFile& a, const ListedFile& b) {
    return std::string_view(a.key) < std::string_view(b.key);
  });
  return files;
}

}  // namespace vonel::store
