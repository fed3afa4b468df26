#include "core/store/store_lister.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/log_places.h"
#include "core/message/message_file.h"
#include "core/store/folder_cache.h"
#include "core/store/folder_listing.h"
#include "core/store/folder_lists.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kStoreListerModule;

long dayNumber(const text::DateTime& moment) { return static_cast<long>(std::floor(moment.serial())); }

}  // namespace

StoreLister::StoreLister(AppContext& context, StoreListerListener& events) : context_(context), events_(events) {}

void StoreLister::populateFolders(bool regenerate) {
  guardedStep(context_.log, log_places::kPopulateQuick, kModule, [&] {
    const DataFolders& folders = context_.folders;
    events_.onClearFolders();
    if (regenerate) {
      files::eraseFile(folders.folderNamesFile);
      files::eraseFile(folders.folderListFile);
    }
    if (!files::fileExists(folders.folderNamesFile)) writeFolderLists(context_.log, folders);
    events_.onAddFolder("Folders", "", folders.messageFolderPath.string());
    const auto lines = text::split(files::loadTextFile(folders.folderNamesFile), "\r\n");
    for (std::size_t i = 0; i < lines.size(); i += 2) {
      if (text::trim(lines[i]).empty()) continue;
      events_.onAddFolder(lines[i], i + 1 < lines.size() ? lines[i + 1] : std::string(), "");
    }
    events_.onFinishedAddingFolders();
  });
}

void StoreLister::addToSeenTags(std::string_view tags) {
  for (std::string& tag : text::split(tags, ",")) {
    if (!tag.empty() && !tagsSeen.contains(tag)) {
      std::string key = tag;
      tagsSeen.add(std::move(key), std::move(tag));
    }
  }
}

AgeLimits AgeLimits::read(const SettingsStore& settings) {
  static constexpr const char* kKeys[] = {"Age0", "Age1", "Age2"};
  AgeLimits limits;
  for (int i = 0; i < 3; ++i) limits.days[i] = settings.get(kKeys[i], Value(limits.days[i])).numberOr(limits.days[i]);
  return limits;
}

std::int32_t folderNodeColour(const AgeLimits& limits, const text::DateTime& now, long lastMessageDay) {
  // The node compares with the present moment, time of day and all, where a
  // message compares whole days. Only the oldest band needs more than its limit.
  const double age = now.serial() - static_cast<double>(lastMessageDay);
  if (age > limits.days[0]) return kAgeColours[0];
  for (int i = 1; i < 3; ++i) {
    if (age >= limits.days[i]) return kAgeColours[i];
  }
  return kAgeColours[3];
}

std::int32_t parentNodeColour(std::int32_t parentColour, std::int32_t childColour) {
  const auto rank = [](std::int32_t colour) {
    const auto* found = std::find(std::begin(kAgeColours), std::end(kAgeColours), colour);
    return found == std::end(kAgeColours) ? -1 : static_cast<int>(3 - (found - std::begin(kAgeColours)));
  };
  const int parentRank = rank(parentColour);
  const int childRank = rank(childColour);
  if (childRank < 0) return parentColour;
  return parentRank < 0 || childRank < parentRank ? childColour : parentColour;
}

void StoreLister::setAgeDates() {
  const AgeLimits limits = AgeLimits::read(context_.settings);
  const long today = dayNumber(context_.clock.now());
  for (int i = 0; i < 3; ++i) ageDays_[i] = today - static_cast<long>(limits.days[i]);
}

std::int32_t StoreLister::ageColour(long day) const {
  if (day < ageDays_[0]) return kAgeColours[0];
  if (day <= ageDays_[1]) return kAgeColours[1];
  if (day <= ageDays_[2]) return kAgeColours[2];
  return kAgeColours[3];
}

void StoreLister::addMessage(message::Message& message, long counter, long total, const ListFilter& filter,
                           Tally& tally) {
  if (filter.unreadOnly || filter.highOnly) {
    const bool passes = (filter.unreadOnly && !message.read) || (filter.highOnly && message.highPriority);
    if (!passes) return;
  }
  if (!message.read) {
    ++tally.unreadCount;
    if (message.receiveDate.empty()) {
      const std::string path = message.filename();
      const auto fileTime = path.empty() ? std::nullopt : files::fileDate(path);
      message.receiveDate = text::formatStoreDate(fileTime.value_or(context_.clock.now()));
    }
  }
  if (const auto received = text::parseStoreDate(message.receiveDate)) {
    const long day = dayNumber(*received);
    if (!message.read && day > tally.lastDate) tally.lastDate = day;
    message.colour = ageColour(day);
  }
  if (!message.tagsPresent(filter.tagFilter)) return;
  if (filter.searchText.empty() || text::findNoCase(message.headers, filter.searchText) != 0) {
    events_.addMessage(message, counter, total);
  }
  if (!message.read && !tally.someUnreadRaised) {
    events_.onSomeUnreadMessages();
    tally.someUnreadRaised = true;
  }
}

template <typename Fetch, typename Keep>
void StoreLister::populate(long count, const ListFilter& filter, const Fetch& fetch, const Keep& keep) {
  events_.setBusy(true);
  stop_ = false;
  running_ = true;
  events_.onClearMessages();
  events_.onFolderMessageCount(count);
  tagsSeen.clear();
  setAgeDates();
  Tally tally;
  for (long i = 1; i <= count; ++i) {
    if (stop_) break;
    guardedStep(context_.log, log_places::kAddMessage, kModule, [&] {
      message::Message message = fetch(i);
      addToSeenTags(message.tags());
      addMessage(message, i, count, filter, tally);
      keep(i, message);
    });
    if (stop_) break;
    if (i % 50 == 0) events_.letEventsRun();
  }
  // A stop, even one asked for while the count was told, ends without the closing events.
  if (!stop_) {
    if (tally.unreadCount == 0) events_.onNoUnreadMessages();
    events_.onFinishedAddingMessages(tally.unreadCount, tally.lastDate);
  }
  running_ = false;
  events_.letEventsRun();
  events_.setBusy(false);
}

void StoreLister::populateFromCache(FolderCache& cache, const ListFilter& filter) {
  // The cache keeps only some headers, so a search reads the files.
  if (!filter.searchText.empty()) return populateMessageList(cache.path(), filter);
  const auto fetch = [&](long i) { return cache.item(static_cast<std::size_t>(i)); };
  // A receive date filled in for the list is the cache's too.
  const auto keep = [&](long i, const message::Message& message) {
    if (static_cast<std::size_t>(i) > cache.count()) return;
    CachedMessage& kept = cache.messages.at(static_cast<std::size_t>(i) - 1).value;
    if (kept.receiveDate.empty()) kept.receiveDate = message.receiveDate;
  };
  populate(static_cast<long>(cache.count()), filter, fetch, keep);
}

void StoreLister::populateMessageList(const fs::path& path, const ListFilter& filter) {
  stop_ = false;
  const auto listing = listMessageFiles(path, [this] {
    events_.letEventsRun();
    return !stop_;
  });
  // A stop during the walk ends the population before it has told anything.
  if (stop_) return;
  const auto fetch = [&](long i) {
    ++headersRead_;
    return message::readMessageHeader(path / listing[static_cast<std::size_t>(i) - 1].name, context_.log);
  };
  populate(static_cast<long>(listing.size()), filter, fetch, [](long, const message::Message&) {});
}

}  // namespace vonel::store
