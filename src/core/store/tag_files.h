#pragma once
// The small files beside the messages of a folder that let the folder tree be
// drawn without opening any message: the unread count, the day of the newest
// unread arrival and the two show filters. They are aids kept by counting and
// may drift until a rescan; whatever they hold, reading them never fails.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/log/log.h"
#include "core/message/message.h"
#include "core/time/clock.h"

namespace vonel::store {

// What the two tag files' texts hold: a count (0 without a number, held
// within 16 bits) and a day number (0 when empty or unreadable).
std::int16_t unreadCountFromText(std::string_view text);
long dayFromTagText(std::string_view text);

// The number in "Unread.Tag"; 0 when it is missing or holds no number.
std::int16_t unreadTagCount(const std::filesystem::path& folder);
// The day number in "LastMsg.Tag"; 0 when it is missing or empty.
long lastMessageTagDay(const std::filesystem::path& folder);

// Adds `count` (1 when 0) to the folder's unread count.
void addToUnreadTag(Log& log, const std::filesystem::path& folder, int count = 0);
// Takes `count` (1 when 0) from it; a count of 0 becomes -1.
void removeFromUnreadTag(Log& log, const std::filesystem::path& folder, int count = 0);
// Writes the count a folder scan found (1 when 0).
void createUnreadTag(Log& log, const std::filesystem::path& folder, int count);
void removeUnreadTag(Log& log, const std::filesystem::path& folder);
// Moves the folder's newest-unread day forward to the message's receive day.
void addToLastMessageTag(Log& log, const Clock& clock, const std::filesystem::path& folder,
                         const message::Message& message);

enum class ShowFilter { All, UnreadOnly, UnreadHighOnly };
// At most one of the two filter files exists in a folder.
ShowFilter folderShowFilter(const std::filesystem::path& folder);
void setFolderShowFilter(Log& log, const std::filesystem::path& folder, ShowFilter filter);

// A tree node's text without the unread counts it shows: "Inbox (3)" gives "Inbox".
std::string removeCount(std::string_view text);

}  // namespace vonel::store
