#pragma once
// The caches of the folders the mail window has shown, one per folder path.
// Everything that changes a message on disk keeps its folder's cache in step
// through the wrappers here; a wrapper that finds no cache for the folder
// logs the miss and does nothing, as the folder is then read afresh when it
// is next shown.
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/context/app_context.h"
#include "core/interaction/progress.h"
#include "core/message/message.h"
#include "core/store/folder_cache.h"
#include "core/text/keyed_collection.h"

namespace vonel::store {

// A folder's path as the collection knows it: written with or without its
// trailing separator, or with "." steps, it is one folder.
std::string folderKey(const std::filesystem::path& folder);

class FolderCaches {
 public:
  // `progress` hears the fills and is let run during long work.
  FolderCaches(AppContext& context, Progress& progress);

  // Null when the collection holds no cache for the folder.
  FolderCache* find(const std::filesystem::path& folder);
  // The folder's cache; an empty one is made and kept when there is none.
  FolderCache& obtain(const std::filesystem::path& folder);
  std::size_t size() const { return caches_.size(); }

  // The wrappers; each returns false when its folder has no cache.
  bool addMessage(const std::filesystem::path& folder, const message::Message& message);
  bool removeMessage(const std::filesystem::path& folder, const message::Message& message);
  bool rescan(const std::filesystem::path& folder);
  bool markRead(const std::filesystem::path& folder, std::string_view file, bool read);
  bool markPriority(const std::filesystem::path& folder, std::string_view file, bool high);
  // Takes the message's full file name; the folder is the one it lies in.
  bool markReplied(std::string_view file, bool replied);
  bool changeTags(const std::filesystem::path& folder, std::string_view file, std::string_view tags);

  // Empties every cache that knows its folder and fills it again from the
  // files; nothing at all while the cache is switched off.
  void rescanAll();
  // Stops the fill under way, and with it a rescan of them all.
  void stopFilling();
  // Writes the caches that differ from their files.
  void writeAll();

 private:
  // The cache, or null after logging the miss under the wrapper's name.
  FolderCache* cacheFor(const std::filesystem::path& folder, std::string_view wrapper);
  // Runs a cache operation under the wrapper's error tail.
  template <typename Operation>
  bool withCache(const std::filesystem::path& folder, std::string_view wrapper, Operation&& operation);

  AppContext& context_;
  Progress& progress_;
  text::KeyedCollection<std::unique_ptr<FolderCache>> caches_;
  bool rescanStopped_ = false;
};

}  // namespace vonel::store
