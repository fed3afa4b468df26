#include "core/files/write_batch.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/log/app_error.h"

namespace vonel::files {
namespace {

#ifndef _WIN32
// An open descriptor of the path; -1 when it is gone since it was written.
int openExisting(const fs::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0 && errno != ENOENT) throw AppError::fromErrno(errno, path.string());
  return fd;
}

void closeAfter(int fd, int result, const fs::path& path) {
  const int saved = errno;
  ::close(fd);
  // Some file systems refuse a folder's fsync rather than fail it.
  if (result != 0 && saved != EINVAL) throw AppError::fromErrno(saved, path.string());
}
#endif

#ifdef __linux__
// One syncfs for each file system: it writes back and flushes the whole file
// system at once, where an fsync per file would wait for the disk each time.
void syncFileSystems(const std::vector<fs::path>& folders) {
  std::set<dev_t> done;
  for (const fs::path& folder : folders) {
    const int fd = openExisting(folder);
    if (fd < 0) continue;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && !done.insert(info.st_dev).second) {
      ::close(fd);
      continue;
    }
    closeAfter(fd, ::syncfs(fd), folder);
  }
}
#endif

}  // namespace

void syncToDisk(const std::vector<fs::path>& files, const std::vector<fs::path>& folders) {
#if defined(__linux__)
  (void)files;
  syncFileSystems(folders);
#elif defined(_WIN32)
  // The writers hand files to the system without a flush here too.
  (void)files;
  (void)folders;
#else
  for (const auto* paths : {&files, &folders}) {
    for (const fs::path& path : *paths) {
      const int fd = openExisting(path);
      if (fd >= 0) closeAfter(fd, ::fsync(fd), path);
    }
  }
#endif
}

WriteBatch::WriteBatch() : barrier_(syncToDisk) {}

WriteBatch::WriteBatch(Barrier barrier) : barrier_(std::move(barrier)) {}

void WriteBatch::add(const fs::path& path, bool folder) {
  Pending& entry = pending_[path.string()];
  entry.path = path;
  entry.folder = folder;
  entry.order = nextOrder_++;
}

void WriteBatch::addFile(const fs::path& file) {
  add(file, false);
  addFolder(file.parent_path());
}

void WriteBatch::addFolder(const fs::path& folder) {
  if (!open_) return;
  const fs::path named = folder.empty() ? fs::path(".") : folder;
  if (!pending_.contains(named.string())) add(named, true);
}

void WriteBatch::commit() {
  std::vector<Pending> entries;
  entries.reserve(pending_.size());
  for (auto& [key, entry] : pending_) entries.push_back(std::move(entry));
  pending_.clear();
  open_ = false;
  if (entries.empty()) return;
  std::sort(entries.begin(), entries.end(), [](const Pending& a, const Pending& b) { return a.order < b.order; });
  std::vector<fs::path> files;
  std::vector<fs::path> folders;
  for (Pending& entry : entries) (entry.folder ? folders : files).push_back(std::move(entry.path));
  barrier_(files, folders);
}

}  // namespace vonel::files
