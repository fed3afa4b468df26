#pragma once
// The enumerator of the store: it lists the folder tree and the messages of a
// folder, with the filters of the message list, and reports every item
// through events, so that the window never touches the disk itself.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/message/message.h"
#include "core/context/app_context.h"
#include "core/text/keyed_collection.h"

namespace vonel::store {

class FolderCache;

// What a population reports, in the order a window meets it.
class StoreListerListener {
 public:
  virtual ~StoreListerListener() = default;
  virtual void onClearFolders() {}
  virtual void onAddFolder(std::string_view /*NodeText*/, std::string_view /*NodeParentText*/,
                         std::string_view /*DiskPathNotWorking*/) {}
  virtual void onFinishedAddingFolders() {}
  virtual void onClearMessages() {}
  virtual void addMessage(message::Message& /*msg*/, long /*CurrentCount*/, long /*TotalCount*/) {}
  virtual void onSomeUnreadMessages() {}
  virtual void onNoUnreadMessages() {}
  virtual void onFinishedAddingMessages(long /*UnreadCount*/, long /*MostRecentUnread*/) {}
  virtual void onFolderMessageCount(long /*messageCount*/) {}
  // The window's events run here, so that one of them may stop the population.
  virtual void letEventsRun() {}
  virtual void setBusy(bool /*busy*/) {}
};

// The filters of a message list.
struct ListFilter {
  bool unreadOnly = false;
  bool highOnly = false;
  std::string tagFilter;
  std::string searchText;
};

// The four colours of a message's age, blue-green-red as the display takes them.
inline constexpr std::int32_t kAgeColours[] = {0xA7A7A7, 0x808080, 0x595959, 0x008000};

// The three ages in days ("Age0", "Age1", "Age2"; 30, 14 and 1 by default).
struct AgeLimits {
  double days[3] = {30, 14, 1};
  static AgeLimits read(const SettingsStore& settings);
};

// A folder node's colour in the tree from the day in its "LastMsg.Tag".
std::int32_t folderNodeColour(const AgeLimits& limits, const text::DateTime& now, long lastMessageDay);
// The colour a parent node shows once a child with unread mail passes its
// colour up: the parent keeps whichever of the two is fresher, and any colour
// that is not an age colour gives way.
std::int32_t parentNodeColour(std::int32_t parentColour, std::int32_t childColour);

class StoreLister {
 public:
  StoreLister(AppContext& context, StoreListerListener& events);

  void populateFolders(bool regenerate);
  void populateFromCache(FolderCache& cache, const ListFilter& filter);
  void populateMessageList(const std::filesystem::path& path, const ListFilter& filter);
  void stopPopulating() { stop_ = true; }
  void addToSeenTags(std::string_view tags);

  bool populating() const { return running_; }
  // The colour of a day's age by the limits of the last population.
  std::int32_t ageColour(long day) const;
  // How many message files the populations so far have opened.
  std::size_t headersRead() const { return headersRead_; }

  text::KeyedCollection<std::string> tagsSeen;

 private:
  struct Tally {
    long lastDate = 0;
    long unreadCount = 0;
    bool someUnreadRaised = false;
  };

  void setAgeDates();
  void addMessage(message::Message& message, long counter, long total, const ListFilter& filter, Tally& tally);
  // Runs a population over `count` messages, each fetched by `fetch(i)` and,
  // once listed, handed to `keep(i, message)`.
  template <typename Fetch, typename Keep>
  void populate(long count, const ListFilter& filter, const Fetch& fetch, const Keep& keep);

  AppContext& context_;
  StoreListerListener& events_;
  bool running_ = false;
  bool stop_ = false;
  long ageDays_[3] = {0, 0, 0};
  std::size_t headersRead_ = 0;
};

}  // namespace vonel::store
