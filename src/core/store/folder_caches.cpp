#include "core/store/folder_caches.h"

#include "core/files/path_text.h"
#include "core/log/log_places.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kMailerModule;

}  // namespace

std::string folderKey(const fs::path& folder) {
  fs::path plain = folder.lexically_normal();
  if (!plain.has_filename()) plain = plain.parent_path();
  return files::textFromPath(plain);
}

FolderCaches::FolderCaches(AppContext& context, Progress& progress) : context_(context), progress_(progress) {}

FolderCache* FolderCaches::find(const fs::path& folder) {
  std::unique_ptr<FolderCache>* found = caches_.find(folderKey(folder));
  return found == nullptr ? nullptr : found->get();
}

FolderCache& FolderCaches::obtain(const fs::path& folder) {
  if (FolderCache* known = find(folder)) return *known;
  auto [added, inserted] = caches_.emplace(folderKey(folder), std::make_unique<FolderCache>(context_, progress_));
  return **added;
}

FolderCache* FolderCaches::cacheFor(const fs::path& folder, std::string_view wrapper) {
  FolderCache* cache = find(folder);
  if (cache == nullptr) {
    context_.log.addAction("Unknown cache '" + files::textFromPath(folder) + "' in " + std::string(wrapper), wrapper,
                           kModule);
  }
  return cache;
}

template <typename Operation>
bool FolderCaches::withCache(const fs::path& folder, std::string_view wrapper, Operation&& operation) {
  FolderCache* cache = cacheFor(folder, wrapper);
  if (cache == nullptr) return false;
  // A message the cache doesn't know fails the operation, not the caller.
  guardedStep(context_.log, wrapper, kModule, [&] { operation(*cache); });
  return true;
}

bool FolderCaches::addMessage(const fs::path& folder, const message::Message& message) {
  return withCache(folder, log_places::kAddMsgToCache, [&](FolderCache& cache) { cache.addMessage(message); });
}

bool FolderCaches::removeMessage(const fs::path& folder, const message::Message& message) {
  return withCache(folder, log_places::kRemoveMsgFromCache, [&](FolderCache& cache) { cache.removeMessage(message); });
}

bool FolderCaches::rescan(const fs::path& folder) {
  return withCache(folder, log_places::kRescanCache, [&](FolderCache& cache) {
    if (cache.path().empty()) {
      context_.log.addAction("Trying to cache folder " + files::textFromPath(folder) + " but cache path is blank",
                             log_places::kRescanCache, kModule);
      return;
    }
    const fs::path path = cache.path();
    cache.fillCache(progress_, path, cache.mailFolderName());
  });
}

bool FolderCaches::markRead(const fs::path& folder, std::string_view file, bool read) {
  return withCache(folder, log_places::kMarkMessageInCacheReadUnread,
                   [&](FolderCache& cache) { cache.markRead(file, read); });
}

bool FolderCaches::markPriority(const fs::path& folder, std::string_view file, bool high) {
  return withCache(folder, log_places::kMarkMessageInCachePriority,
                   [&](FolderCache& cache) { cache.markHighPriority(file, high); });
}

bool FolderCaches::markReplied(std::string_view file, bool replied) {
  const fs::path folder = files::pathFromText(file).parent_path();
  return withCache(folder, log_places::kMarkMessageInCacheRepliedOrNot,
                   [&](FolderCache& cache) { cache.markReplied(file, replied); });
}

bool FolderCaches::changeTags(const fs::path& folder, std::string_view file, std::string_view tags) {
  return withCache(folder, log_places::kChangeMessageInCacheTags,
                   [&](FolderCache& cache) { cache.changeTags(file, tags); });
}

void FolderCaches::rescanAll() {
  if (context_.noCacheMode) return;
  rescanStopped_ = false;
  // By position: a fill lets events run, and they may add a cache behind this one.
  for (std::size_t at = 0; at < caches_.size(); ++at) {
    FolderCache& cache = *caches_.at(at).value;
    if (cache.path().empty()) {
      context_.log.addAction("Cache.path blank in RescanAllCaches", log_places::kRescanAllCaches, kModule);
      continue;
    }
    const fs::path path = cache.path();
    const std::string name = cache.mailFolderName();
    // The file goes too: a rescan must not trust what a stale cache file says.
    cache.clear(true);
    cache.fillCache(progress_, path, name);
    // The caches not reached yet keep what they hold; the stopped one fills when next shown.
    if (rescanStopped_) return;
  }
}

void FolderCaches::stopFilling() {
  rescanStopped_ = true;
  for (auto& entry : caches_) entry.value->stopFilling();
}

void FolderCaches::writeAll() {
  for (auto& entry : caches_) entry.value->writeCache(false);
}

}  // namespace vonel::store
