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
#include "core/services/app_context.h"
#include "core/services/progress.h"
#include "core/store/cached_message.h"
#include "core/text/keyed_collection.h"

namespace vonel::store {

class clsCache {
 public:
  // `events` is let run at fixed counts during long work.
  clsCache(AppContext& context, Progress& events);

  // Fills from the cache file and the folder, re-reading only what is new or changed.
  void FillCache(Progress& form, const std::filesystem::path& path, std::string mailFolderName);
  // Writes the file when dirty (or erases it) and forgets the folder.
  void Clear(bool deleteDiskCache);
  void ReadCache();
  void WriteCache(bool force);

  std::size_t Count() const { return Messages.size(); }
  // 1-based; an empty message beyond the end.
  message::clsMessage Item(std::size_t index) const;

  void AddNewMsg(const message::clsMessage& message, bool flag = false);
  void RemoveMsg(const message::clsMessage& message);
  void RemoveByFilename(std::string_view path);
  // These throw AppError for a message the cache doesn't hold.
  void MarkMsgReadUnread(std::string_view path, bool read);
  void MarkMsgPriority(std::string_view path, bool high);
  void MarkMsgRepliedOrNot(std::string_view path, bool replied);
  void ChangeTags(std::string_view path, std::string_view tags);

  const std::filesystem::path& Path() const { return path_; }
  const std::string& MailFolderName() const { return mailFolderName_; }
  bool CacheFilling() const { return filling_; }
  bool CacheFilled() const { return filled_; }
  bool Dirty() const { return dirty_; }
  // How many message files the fills so far have opened.
  std::size_t HeadersRead() const { return headersRead_; }

  // Keyed by the name part of each message's path, ignoring case.
  text::KeyedCollection<CachedMessage> Messages;

 private:
  class Listing;

  std::filesystem::path cacheFile() const { return path_ / "cache.xml"; }
  CachedMessage& item(std::string_view path);
  void readCache(const Listing* listing);
  void writeCache();
  void addHeadersOf(Progress& form, const std::filesystem::path& file, std::size_t done, std::size_t total);

  AppContext& context_;
  Progress& events_;
  std::filesystem::path path_;
  std::string mailFolderName_;
  bool dirty_ = false;
  bool filling_ = false;
  bool filled_ = false;
  std::size_t headersRead_ = 0;
};

}  // namespace vonel::store
