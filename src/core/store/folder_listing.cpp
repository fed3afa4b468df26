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

// A look at an entry costs a few microseconds: this many stay well inside a
// window's frame between two askings.
constexpr std::size_t kEntriesBetweenAsks = 256;

bool stopsHere(std::size_t entriesSeen, const KeepGoing& keepGoing) {
  return keepGoing && entriesSeen % kEntriesBetweenAsks == 0 && !keepGoing();
}

}  // namespace

#ifdef _WIN32
std::vector<ListedFile> listMessageFiles(const fs::path& folder, const KeepGoing& keepGoing) {
  // The directory entries of this system carry the times, so no file is looked at.
  std::vector<ListedFile> files;
  std::error_code ec;
  std::size_t seen = 0;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (stopsHere(++seen, keepGoing)) return {};
    std::string name = it->path().filename().string();
    std::error_code statError;
    if (!isMessageName(name) || !it->is_regular_file(statError)) continue;
    const auto written = it->last_write_time(statError);
    if (statError) continue;  // gone between the listing and the look
    std::string key = text::upper(name);
    files.push_back({std::move(name), std::move(key), files::localFileTime(written)});
  }
#else
std::vector<ListedFile> listMessageFiles(const fs::path& folder, const KeepGoing& keepGoing) {
  std::vector<ListedFile> files;
  DIR* directory = ::opendir(folder.c_str());
  if (directory == nullptr) return files;
  const int directoryFd = ::dirfd(directory);
  std::size_t seen = 0;
  while (const dirent* entry = ::readdir(directory)) {
    if (stopsHere(++seen, keepGoing)) {
      ::closedir(directory);
      return {};
    }
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
