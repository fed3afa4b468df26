#pragma once
// The text of a folder's "cache.xml": the reader, linear in the size of the
// file, and the writer in the one layout the cache files on disk have.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/interaction/progress.h"
#include "core/store/cached_message.h"

namespace vonel::store {

// The version the writer writes; an older file is thrown away.
inline constexpr int kCacheVersion = 3;

// The numeric value of the version element.
double cacheFileVersion(std::string_view text);

// Where a listed message file lies now: the path rebased onto the store root
// (through the root itself or the "messages" folder), with its name folded to
// lower case. `exists` decides whether it is kept.
using FileExistsTest = std::function<bool(const std::filesystem::path&)>;

// Hands each message a cache file lists to `add`, in its order, asking
// `keepGoing` every so many messages. Nothing is handed when the file's
// version is too old; pieces that can't be read are skipped.
enum class CacheTextRead { Whole, TooOld, Stopped };
using CachedMessageSink = std::function<void(CachedMessage&&)>;
CacheTextRead readCacheText(std::string_view text, const std::filesystem::path& storeRoot,
                            const FileExistsTest& exists, const CachedMessageSink& add,
                            const KeepGoing& keepGoing = {});

// The path of a listed file on this store: the store root joined with what
// follows the old root or the "messages" folder in it.
std::filesystem::path rebaseCachedPath(std::string_view listed, const std::filesystem::path& storeRoot);

// One message's element, as the writer lays it out. `fileDate` is the time
// of the file on disk; none leaves the element out.
void appendCacheElement(std::string& out, const CachedMessage& message, const std::optional<text::DateTime>& fileDate);
std::string_view cacheFileHead();
std::string_view cacheFileTail();

}  // namespace vonel::store
