#include "core/store/tag_files.h"

#include <cmath>
#include <limits>

#ifndef _WIN32
#include <dirent.h>
#endif

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"
#include "core/log/log_places.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kModule = log_places::kStoreModule;
constexpr std::string_view kUnreadTag = "Unread.Tag";
constexpr std::string_view kLastMessageTag = "LastMsg.Tag";
constexpr std::string_view kShowUnreadOnly = "ShowUnreadOnly.tag";
constexpr std::string_view kShowUnreadHighOnly = "ShowUnreadHighOnly.tag";

// Hands `look` each name in the folder until it answers true. A folder may
// hold 50,000 messages and each showing of it looks for tags, so no name is
// copied on the way.
template <typename Look>
void walkNames(const fs::path& folder, const Look& look) {
#ifdef _WIN32
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (look(it->path().filename().string())) return;
  }
#else
  DIR* directory = ::opendir(folder.c_str());
  if (directory == nullptr) return;
  while (const dirent* entry = ::readdir(directory)) {
    if (look(std::string_view(entry->d_name))) break;
  }
  ::closedir(directory);
#endif
}

// The tag files are written under one spelling of their names and read under
// another, and folders on disk hold either; on a case-sensitive disk both
// must reach the one file there is. The spelling given wins.
fs::path tagFile(const fs::path& folder, std::string_view name) {
  fs::path exact = folder / fs::path(std::string(name));
  std::error_code ec;
  if (fs::exists(exact, ec)) return exact;
  walkNames(folder, [&](std::string_view entry) {
    if (!text::equalsNoCase(entry, name)) return false;
    exact = folder / fs::path(std::string(entry));
    return true;
  });
  return exact;
}

std::string loadTag(const fs::path& folder, std::string_view name) {
  const fs::path file = tagFile(folder, name);
  if (!files::fileExists(file)) return {};
  try {
    return files::loadTextFile(file);
  } catch (const AppError&) {
    return {};  // an unreadable aid counts as an empty one
  }
}

void changeUnreadCount(Log& log, const fs::path& folder, long change, std::string_view procedure) {
  guardedStep(log, procedure, kModule, [&] {
    const long total = unreadTagCount(folder) + change;
    if (total < std::numeric_limits<std::int16_t>::min() || total > std::numeric_limits<std::int16_t>::max()) {
      throw AppError(error_number::kOverflow, "Overflow");
    }
    files::writeTextFile(tagFile(folder, kUnreadTag), std::to_string(total), files::Durability::Unsynced);
  });
}

long dayNumber(const text::DateTime& moment) { return static_cast<long>(std::floor(moment.serial())); }

}  // namespace

// The tag holds a day count; a date text found in its place is read too.
long dayFromTagText(std::string_view tag) {
  const std::string text = text::replaceAll(tag, "\r\n", "");
  if (text.find('\\') != std::string::npos) return 0;
  if (const auto number = text::toNumber(text)) return text::toWhole<long>(std::floor(*number));
  if (const auto moment = text::parseStoreDate(text::trim(text))) return dayNumber(*moment);
  return 0;
}

std::int16_t unreadCountFromText(std::string_view text) { return text::toWhole<std::int16_t>(std::trunc(text::val(text))); }

std::int16_t unreadTagCount(const fs::path& folder) { return unreadCountFromText(loadTag(folder, kUnreadTag)); }

long lastMessageTagDay(const fs::path& folder) { return dayFromTagText(loadTag(folder, kLastMessageTag)); }

void addToUnreadTag(Log& log, const fs::path& folder, int count) {
  changeUnreadCount(log, folder, count == 0 ? 1 : count, log_places::kAddToUnreadTag);
}

void removeFromUnreadTag(Log& log, const fs::path& folder, int count) {
  changeUnreadCount(log, folder, count == 0 ? -1 : -static_cast<long>(count), log_places::kRemoveFromUnreadTag);
}

void createUnreadTag(Log& log, const fs::path& folder, int count) {
  guardedStep(log, log_places::kCreateUnreadTag, kModule, [&] {
    files::writeTextFile(tagFile(folder, kUnreadTag), std::to_string(count == 0 ? 1 : count), files::Durability::Unsynced);
  });
}

void removeUnreadTag(Log& log, const fs::path& folder) {
  guardedStep(log, log_places::kRemoveUnreadTag, kModule, [&] {
    if (!files::eraseFile(tagFile(folder, kUnreadTag))) throw AppError(error_number::kPermissionDenied, "Permission denied");
  });
}

void addToLastMessageTag(Log& log, const Clock& clock, const fs::path& folder,
                         const message::Message& message) {
  if (message.read) return;
  guardedStep(log, log_places::kAddToLastMessageTag, kModule, [&] {
    const long oldDay = lastMessageTagDay(folder);
    long newDay = dayNumber(clock.now());
    if (!message.receiveDate.empty()) {
      const auto received = text::parseStoreDate(message.receiveDate);
      if (!received) throw AppError(error_number::kTypeMismatch, "Type mismatch");
      newDay = dayNumber(*received);
      if (newDay <= oldDay) return;
    }
    files::writeTextFile(tagFile(folder, kLastMessageTag), std::to_string(newDay), files::Durability::Unsynced);
  });
}

ShowFilter folderShowFilter(const fs::path& folder) {
  const auto spelledHere = [&](std::string_view name) { return files::fileExists(folder / fs::path(std::string(name))); };
  if (spelledHere(kShowUnreadOnly)) return ShowFilter::UnreadOnly;
  bool high = spelledHere(kShowUnreadHighOnly);
  // The other spellings of both names are looked for in one walk.
  bool unread = false;
  walkNames(folder, [&](std::string_view name) {
    const bool unreadTag = text::equalsNoCase(name, kShowUnreadOnly);
    if (!unreadTag && !text::equalsNoCase(name, kShowUnreadHighOnly)) return false;
    std::error_code ec;
    if (!fs::is_regular_file(folder / fs::path(std::string(name)), ec)) return false;
    (unreadTag ? unread : high) = true;
    return unread;
  });
  return unread ? ShowFilter::UnreadOnly : high ? ShowFilter::UnreadHighOnly : ShowFilter::All;
}

void setFolderShowFilter(Log& log, const fs::path& folder, ShowFilter filter) {
  guardedStep(log, log_places::kSetFolderShowFilter, kModule, [&] {
    // Only the file's presence counts; its text tells a reader of the folder what it is for.
    const auto set = [&](std::string_view name, std::string_view purpose, bool on) {
      const fs::path file = tagFile(folder, name);
      if (on) {
        if (!files::fileExists(file)) files::writeTextFile(file, purpose);
      } else if (!files::eraseFile(file)) {
        throw AppError(error_number::kPermissionDenied, "Permission denied");
      }
    };
    set(kShowUnreadOnly, "Only show unread messages", filter == ShowFilter::UnreadOnly);
    set(kShowUnreadHighOnly, "Only show high priority unread messages", filter == ShowFilter::UnreadHighOnly);
  });
}

std::string removeCount(std::string_view text) {
  std::string result(text);
  for (auto open = result.find(" ("); open != std::string::npos; open = result.find(" (")) {
    // The ")" is looked for after the " (", so that a stray ")" before it can't make the cut run backwards.
    const auto close = result.find(')', open);
    result.erase(open, close == std::string::npos ? std::string::npos : close - open + 1);
  }
  return result;
}

}  // namespace vonel::store
