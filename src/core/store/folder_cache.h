#pragma once
// One folder's cache: a header-only record of every message, kept in
// "cache.xml" beside the messages so that opening the folder again costs one
// directory listing and one read of that file. The message files stay the
// truth: a damaged or stale cache only costs re-reading headers.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/message/message.h"
#include "core/context/app_context.h"
#include "core/interaction/progress.h"
#include "core/store/cached_message.h"
#include "core/text/keyed_collection.h"

namespace vonel::store {

class FolderCache {
 public:
  // `events` is let run at fixed counts during long work.
  FolderCache(AppContext& context, Progress& events);

  // Fills from the cache file and the folder, re-reading only what is new or
  // changed. A stop asked for meanwhile leaves the cache empty and not
  // filled, and gives false.
  bool fillCache(Progress& progress, const std::filesystem::path& path, std::string mailFolderName);
  // Ends a fill under way at its next letting run of events; nothing otherwise.
  void stopFilling() { stopAsked_ = filling_; }
  // Writes the file when dirty (or erases it) and forgets the folder.
  void clear(bool deleteDiskCache);
  void readCache();
  void writeCache(bool force);

  std::size_t count() const { return messages.size(); }
  // 1-based; an empty message beyond the end.
  message::Message item(std::size_t index) const;

  void addMessage(const message::Message& message);
  void removeMessage(const message::Message& message);
  void removeByFilename(std::string_view path);
  // These throw AppError for a message the cache doesn't hold.
  void markRead(std::string_view path, bool read);
  void markHighPriority(std::string_view path, bool high);
  void markReplied(std::string_view path, bool replied);
  void changeTags(std::string_view path, std::string_view tags);

  const std::filesystem::path& path() const { return path_; }
  const std::string& mailFolderName() const { return mailFolderName_; }
  bool cacheFilling() const { return filling_; }
  bool cacheFilled() const { return filled_; }
  bool dirty() const { return dirty_; }
  // How many message files the fills so far have opened.
  std::size_t headersRead() const { return headersRead_; }

  // Keyed by the name part of each message's path, ignoring case.
  text::KeyedCollection<CachedMessage> messages;

 private:
  class Listing;

  std::filesystem::path cacheFile() const { return path_ / "cache.xml"; }
  CachedMessage& item(std::string_view path);
  // False when the cache file was read only in part, a stop having been asked for.
  bool readCache(const Listing* listing, const KeepGoing& keepGoing);
  void writeCache();
  void addHeadersOf(Progress& progress, const std::filesystem::path& file, std::size_t done, std::size_t total);

  AppContext& context_;
  Progress& events_;
  std::filesystem::path path_;
  std::string mailFolderName_;
  bool dirty_ = false;
  bool filling_ = false;
  bool filled_ = false;
  bool stopAsked_ = false;
  std::size_t headersRead_ = 0;
};

}  // namespace vonel::store
