#include "core/store/folder_cache.h"

#include <unordered_map>

#include "core/files/any_case.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_view.h"
#include "core/log/app_error.h"
#include "core/log/log_places.h"
#include "core/message/message_file.h"
#include "core/store/cache_file.h"
#include "core/store/folder_listing.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kFolderCacheModule;
constexpr std::size_t kWriteBuffer = 1 << 16;

}  // namespace

// The folder's message files by name, ignoring case, each marked once the
// cache is found to know it unchanged.
class FolderCache::Listing {
 public:
  Listing(const fs::path& folder, const KeepGoing& keepGoing)
      : files_(listMessageFiles(folder, keepGoing)), known_(files_.size(), false) {
    index_.reserve(files_.size());
    for (std::size_t at = 0; at < files_.size(); ++at) index_.emplace(files_[at].key, at);
  }

  std::size_t size() const { return files_.size(); }
  const ListedFile* find(std::string_view name) const {
    const auto it = index_.find(name);
    return it == index_.end() ? nullptr : &files_[it->second];
  }
  void markKnown(const ListedFile& file) { known_[static_cast<std::size_t>(&file - files_.data())] = true; }
  std::vector<const ListedFile*> unknown() const {
    std::vector<const ListedFile*> result;
    for (std::size_t at = 0; at < files_.size(); ++at) {
      if (!known_[at]) result.push_back(&files_[at]);
    }
    return result;
  }

 private:
  std::vector<ListedFile> files_;
  std::vector<bool> known_;
  // Looked up once or twice for every message of a warm open, so a name is
  // matched ignoring case without an upper-case copy of it.
  struct NoCaseHash {
    std::size_t operator()(std::string_view name) const {
      std::size_t hash = 14695981039346656037ULL;
      for (const char c : name) hash = (hash ^ static_cast<unsigned char>(text::upperByte(c))) * 1099511628211ULL;
      return hash;
    }
  };
  struct NoCaseEqual {
    bool operator()(std::string_view a, std::string_view b) const { return text::equalsNoCase(a, b); }
  };
  std::unordered_map<std::string_view, std::size_t, NoCaseHash, NoCaseEqual> index_;  // views of the keys in files_
};

FolderCache::FolderCache(AppContext& context, Progress& events) : context_(context), events_(events) {}

bool FolderCache::fillCache(Progress& progress, const fs::path& path, std::string mailFolderName) {
  guardedStep(context_.log, log_places::kFillCache, kModule, [&] {
    filling_ = true;
    stopAsked_ = false;
    const KeepGoing keepGoing = [&] {
      progress.letEventsRun();
      return !stopAsked_;
    };
    path_ = path.has_filename() ? path : path.parent_path();
    mailFolderName_ = std::move(mailFolderName);
    progress.status("Reading mail files");
    dirty_ = false;
    Listing listing(path_, keepGoing);
    if (stopAsked_) return;
    if (listing.size() > 100) progress.status("Found " + std::to_string(listing.size()) + " messages");
    if (messages.empty() && files::fileExists(cacheFile()) && !readCache(&listing, keepGoing)) return;

    if (!messages.empty()) {
      // A cached message stays only if its file is listed with the time the cache knew.
      const std::size_t total = messages.size();
      std::size_t scanned = 0;
      std::size_t stale = 0;
      messages.removeIf([&](const CachedMessage& cached) {
        if (stopAsked_) return false;  // all goes below
        const ListedFile* file = listing.find(messageName(cached.filename));
        const bool unchanged = file != nullptr && file->modified == cached.fileDate;
        if (unchanged) listing.markKnown(*file);
        if (++scanned % 10 == 0) {
          progress.status("Scanned " + std::to_string(scanned) + "/" + std::to_string(total) + " messages");
          progress.letEventsRun();
        }
        stale += unchanged ? 0 : 1;
        return !unchanged;
      });
      if (stopAsked_) return;
      if (stale > 0) dirty_ = true;
    }

    const auto unknown = listing.unknown();
    if (!unknown.empty()) {
      dirty_ = true;
      // A fill from nothing counts every file as it goes; a top-up names the number first.
      if (!messages.empty()) progress.status("Adding " + std::to_string(unknown.size()) + " new messages");
    }
    for (std::size_t i = 0; i < unknown.size() && !stopAsked_; ++i) addHeadersOf(progress, path_ / unknown[i]->name, i + 1, unknown.size());

    if (stopAsked_) return;
    progress.status("Tidying up");
    filling_ = false;
    filled_ = true;
  });
  filling_ = false;
  if (stopAsked_) {
    // Half a folder must neither be listed as the whole nor written over the file.
    messages.clear();
    dirty_ = false;
    filled_ = false;
    stopAsked_ = false;
    return false;
  }
  return true;
}

void FolderCache::addHeadersOf(Progress& progress, const fs::path& file, std::size_t done, std::size_t total) {
  ++headersRead_;
  const message::Message header = message::readMessageHeader(file, context_.log);
  // An empty or vanished file yields a message without a path; it is no message.
  if (!header.filename().empty()) addMessage(header);
  if (done % 50 == 0) {
    progress.status("Adding " + std::to_string(done) + "/" + std::to_string(total) + " new messages");
    progress.letEventsRun();
  }
}

void FolderCache::readCache() {
  guardedStep(context_.log, log_places::kReadCache, kModule, [&] { readCache(nullptr, {}); });
}

bool FolderCache::readCache(const Listing* listing, const KeepGoing& keepGoing) {
  messages.clear();
  const auto exists = [&](const fs::path& file) {
    // A file of this folder is looked up in its listing; only others cost a look at the disk.
    const std::string_view whole = file.native();
    const std::string_view folder = path_.native();
    const bool here = whole.size() > folder.size() + 1 && whole.substr(0, folder.size()) == folder &&
                      fs::path::preferred_separator == whole[folder.size()] &&
                      whole.find(fs::path::preferred_separator, folder.size() + 1) == std::string_view::npos;
    if (listing != nullptr && here) return listing->find(whole.substr(folder.size() + 1)) != nullptr;
    return files::findAnyCase(file.parent_path(), file.filename().string()).has_value();
  };
  if (listing != nullptr) messages.reserve(listing->size());
  CacheTextRead read = CacheTextRead::Whole;
  {
    const files::FileView cache(cacheFile());
    const auto add = [&](CachedMessage&& message) {
      std::string key = messageKey(message.filename);  // before the message is moved away
      messages.add(std::move(key), std::move(message));
    };
    read = readCacheText(cache.text(), context_.folders.messageFolderPath, exists, add, keepGoing);
  }
  if (read == CacheTextRead::TooOld) files::eraseFile(cacheFile());
  return read != CacheTextRead::Stopped;
}

void FolderCache::writeCache(bool force) {
  if (!dirty_ && !force) return;
  if (path_.empty() || context_.noCacheMode) return;
  guardedStep(context_.log, log_places::kWriteCache, kModule, [&] { writeCache(); });
}

void FolderCache::writeCache() {
  dirty_ = false;
  files::eraseFile(path_ / "cache.csv");
  files::AtomicFileWriter out(cacheFile());
  std::string buffer(cacheFileHead());
  std::size_t sinceEvents = 0;
  for (const auto& entry : messages) {
    const CachedMessage& message = entry.value;
    // The time on disk now, not the one read: a rewrite of the file by the
    // program itself (a change of read state) must not make it look stale.
    const fs::path file(message.pathInReadCase());
    auto date = files::fileDate(file);
    if (!date) date = files::fileDate(files::resolveAnyCase(file.parent_path(), file.filename().string()));
    appendCacheElement(buffer, message, date);
    if (buffer.size() >= kWriteBuffer) {
      out.write(buffer);
      buffer.clear();
    }
    if (++sinceEvents == 300) {
      events_.letEventsRun();
      sinceEvents = 0;
    }
  }
  buffer.append(cacheFileTail());
  out.write(buffer);
  out.commit();
}

void FolderCache::clear(bool deleteDiskCache) {
  if (deleteDiskCache) {
    if (!path_.empty()) files::eraseFile(cacheFile());
  } else {
    writeCache(false);
  }
  messages.clear();
  path_.clear();
  mailFolderName_.clear();
  filled_ = false;
  dirty_ = false;
}

message::Message FolderCache::item(std::size_t index) const {
  if (index == 0 || index > messages.size()) return message::Message();
  return messages.at(index - 1).value.toMessage();
}

void FolderCache::addMessage(const message::Message& message) {
  CachedMessage cached = CachedMessage::of(message);
  std::string key = messageKey(cached.filename);
  // A message saved again under its name replaces the one the cache knew.
  if (CachedMessage* known = messages.find(key)) {
    *known = std::move(cached);
  } else {
    messages.add(std::move(key), std::move(cached));
  }
  dirty_ = true;
}

void FolderCache::removeMessage(const message::Message& message) { removeByFilename(message.filename()); }

void FolderCache::removeByFilename(std::string_view path) {
  messages.remove(messageKey(path));
  dirty_ = true;
}

CachedMessage& FolderCache::item(std::string_view path) {
  CachedMessage* found = messages.find(messageKey(path));
  if (found == nullptr) throw AppError(error_number::kInvalidCall, "Invalid procedure call or argument");
  dirty_ = true;
  return *found;
}

void FolderCache::markRead(std::string_view path, bool read) { item(path).read = read; }
void FolderCache::markHighPriority(std::string_view path, bool high) { item(path).highPriority = high; }
void FolderCache::markReplied(std::string_view path, bool replied) { item(path).replied = replied; }
void FolderCache::changeTags(std::string_view path, std::string_view tags) { item(path).tags = std::string(tags); }

}  // namespace vonel::store
