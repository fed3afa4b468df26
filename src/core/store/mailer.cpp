#include "core/store/mailer.h"

#include <cmath>

#include "core/message/message_file.h"
#include "core/services/file_subs.h"
#include "core/store/cache.h"
#include "core/store/folder_listing.h"
#include "core/store/folder_lists.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = "clsMailer";

long dayNumber(const text::DateTime& moment) { return static_cast<long>(std::floor(moment.serial())); }

}  // namespace

clsMailer::clsMailer(AppContext& context, MailerEvents& events) : context_(context), events_(events) {}

void clsMailer::PopulateFolders(bool regenerate) {
  guardedStep(context_.log, "PopulateQuick", kModule, [&] {
    const DataFolders& folders = context_.folders;
    events_.ClearFolders();
    if (regenerate) {
      files::EraseFile(folders.FolderNamesIni);
      files::EraseFile(folders.FolderListIni);
    }
    if (!files::FileExists(folders.FolderNamesIni)) GenerateFolderIni(context_.log, folders);
    events_.AddFolder("Folders", "", folders.MessageFolderPath.string());
    const auto lines = text::split(files::LoadTextFile(folders.FolderNamesIni), "\r\n");
    for (std::size_t i = 0; i < lines.size(); i += 2) {
      if (text::trim(lines[i]).empty()) continue;
      events_.AddFolder(lines[i], i + 1 < lines.size() ? lines[i + 1] : std::string(), "");
    }
    events_.FinishedAddingFolders();
  });
}

void clsMailer::AddToSeenTags(std::string_view tags) {
  for (std::string& tag : text::split(tags, ",")) {
    if (!tag.empty() && !TagsSeen.contains(tag)) {
      std::string key = tag;
      TagsSeen.add(std::move(key), std::move(tag));
    }
  }
}

AgeLimits AgeLimits::read(const cSHAREDSettings& settings) {
  static constexpr const char* kKeys[] = {"Age0", "Age1", "Age2"};
  AgeLimits limits;
  for (int i = 0; i < 3; ++i) limits.days[i] = settings.sGet(kKeys[i], Value(limits.days[i])).numberOr(limits.days[i]);
  return limits;
}

std::int32_t FolderNodeColour(const AgeLimits& limits, const text::DateTime& now, long lastMessageDay) {
  // The node compares with the present moment, time of day and all, where a message compares whole days.
  for (int i = 0; i < 3; ++i) {
    if (now.serial() - limits.days[i] > static_cast<double>(lastMessageDay)) return kAgeColours[i];
  }
  return kAgeColours[3];
}

void clsMailer::SetAgeDates() {
  const AgeLimits limits = AgeLimits::read(context_.Settings);
  const long today = dayNumber(context_.clock.now());
  for (int i = 0; i < 3; ++i) ageDays_[i] = today - static_cast<long>(limits.days[i]);
}

std::int32_t clsMailer::AgeColour(long day) const {
  if (day < ageDays_[0]) return kAgeColours[0];
  if (day <= ageDays_[1]) return kAgeColours[1];
  if (day <= ageDays_[2]) return kAgeColours[2];
  return kAgeColours[3];
}

void clsMailer::AddMessage(message::clsMessage& message, long counter, long total, const ListFilter& filter,
                           Tally& tally) {
  if (filter.unreadOnly || filter.highOnly) {
    const bool passes = (filter.unreadOnly && !message.Read) || (filter.highOnly && message.HighPriority);
    if (!passes) return;
  }
  if (!message.Read) {
    ++tally.unreadCount;
    if (message.ReceiveDate.empty()) {
      const std::string path = message.Filename();
      const auto fileTime = path.empty() ? std::nullopt : files::FileDate(path);
      message.ReceiveDate = text::formatStoreDate(fileTime.value_or(context_.clock.now()));
    }
  }
  if (const auto received = text::parseStoreDate(message.ReceiveDate)) {
    const long day = dayNumber(*received);
    if (!message.Read && day > tally.lastDate) tally.lastDate = day;
    message.Colour = AgeColour(day);
  }
  if (!message.TagsPresent(filter.tagFilter)) return;
  if (filter.searchText.empty() || text::findNoCase(message.Headers, filter.searchText) != 0) {
    events_.AddMessage(message, counter, total);
  }
  if (!message.Read && !tally.someUnreadRaised) {
    events_.SomeUnreadMessages();
    tally.someUnreadRaised = true;
  }
}

template <typename Fetch, typename Keep>
void clsMailer::populate(long count, const ListFilter& filter, const Fetch& fetch, const Keep& keep) {
  events_.setBusy(true);
  stop_ = false;
  running_ = true;
  events_.ClearMessages();
  events_.FolderMessageCount(count);
  TagsSeen.clear();
  SetAgeDates();
  Tally tally;
  for (long i = 1; i <= count; ++i) {
    if (stop_) break;
    guardedStep(context_.log, "AddMessage", kModule, [&] {
      message::clsMessage message = fetch(i);
      AddToSeenTags(message.Tags());
      AddMessage(message, i, count, filter, tally);
      keep(i, message);
    });
    if (stop_) break;
    if (i % 50 == 0) events_.letEventsRun();
  }
  // A stop, even one asked for while the count was told, ends without the closing events.
  if (!stop_) {
    if (tally.unreadCount == 0) events_.NoUnreadMessages();
    events_.FinishedAddingMessages(tally.unreadCount, tally.lastDate);
  }
  running_ = false;
  events_.letEventsRun();
  events_.setBusy(false);
}

void clsMailer::PopulateFromCache(clsCache& cache, const ListFilter& filter) {
  // The cache keeps only some headers, so a search reads the files.
  if (!filter.searchText.empty()) return PopulateMessageList(cache.Path(), filter);
  const auto fetch = [&](long i) { return cache.Item(static_cast<std::size_t>(i)); };
  // A receive date filled in for the list is the cache's too.
  const auto keep = [&](long i, const message::clsMessage& message) {
    if (static_cast<std::size_t>(i) > cache.Count()) return;
    CachedMessage& kept = cache.Messages.at(static_cast<std::size_t>(i) - 1).value;
    if (kept.ReceiveDate.empty()) kept.ReceiveDate = message.ReceiveDate;
  };
  populate(static_cast<long>(cache.Count()), filter, fetch, keep);
}

void clsMailer::PopulateMessageList(const fs::path& path, const ListFilter& filter) {
  const auto listing = ListMessageFiles(path);
  const auto fetch = [&](long i) {
    ++headersRead_;
    return message::ReadMessageHeader(path / listing[static_cast<std::size_t>(i) - 1].name, context_.log);
  };
  populate(static_cast<long>(listing.size()), filter, fetch, [](long, const message::clsMessage&) {});
}

}  // namespace vonel::store
