#include "core/store/store_lister.h"

#include <gtest/gtest.h>

#include "core/store/folder_cache.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

// Notes every event as a line, and can stop the population at a given message.
class EventLog : public StoreListerListener {
 public:
  std::vector<std::string> lines;
  StoreLister* mailer = nullptr;
  long stopAt = 0;

  void onClearFolders() override { lines.push_back("ClearFolders"); }
  void onAddFolder(std::string_view node, std::string_view parent, std::string_view disk) override {
    lines.push_back("AddFolder " + std::string(node) + "|" + std::string(parent) + "|" + std::string(disk));
  }
  void onFinishedAddingFolders() override { lines.push_back("FinishedAddingFolders"); }
  void onClearMessages() override { lines.push_back("ClearMessages"); }
  void addMessage(message::Message& m, long current, long total) override {
    lines.push_back("AddMessage " + m.subject + " " + std::to_string(current) + "/" + std::to_string(total) + " " +
                    std::to_string(m.colour));
    if (current == stopAt) mailer->stopPopulating();
  }
  void onSomeUnreadMessages() override { lines.push_back("SomeUnreadMessages"); }
  void onNoUnreadMessages() override { lines.push_back("NoUnreadMessages"); }
  void onFinishedAddingMessages(long unread, long last) override {
    lines.push_back("FinishedAddingMessages " + std::to_string(unread) + " " + std::to_string(last));
  }
  void onFolderMessageCount(long count) override { lines.push_back("FolderMessageCount " + std::to_string(count)); }
};

class MailerTest : public ::testing::Test {
 protected:
  testing::StoreHome home;  // today is 2026-11-23
  EventLog events;
  StoreLister mailer{home.context, events};
  SilentProgress quiet;
  FolderCache cache{home.context, quiet};
  const long nov22 = static_cast<long>(text::DateTime{2026, 11, 22}.serial());

  void SetUp() override { events.mailer = &mailer; }
  fs::path inbox() { return home.context.folders.inboxFolderPath; }
  void add(const std::string& name, const std::string& headers) { home.writeMessage(inbox(), name, headers); }
  void fill() { cache.fillCache(quiet, inbox(), "Inbox"); }
};

TEST_F(MailerTest, FoldersComeFromTheNamesListWithTheRootFirst) {
  fs::create_directories(home.root() / "Inbox" / "Work");
  mailer.populateFolders(true);
  ASSERT_GE(events.lines.size(), 4u);
  EXPECT_EQ(events.lines[0], "ClearFolders");
  EXPECT_EQ(events.lines[1], "AddFolder Folders||" + home.root().string());
  EXPECT_EQ(events.lines[2], "AddFolder Archive|Folders|");
  EXPECT_NE(std::find(events.lines.begin(), events.lines.end(), "AddFolder Work|Inbox|"), events.lines.end());
  EXPECT_EQ(events.lines.back(), "FinishedAddingFolders");
}

TEST_F(MailerTest, AListColoursByAgeAndEndsWithTheUnreadCountAndNewestDay) {
  add("OLD.EML", "Subject: Old\r\nX-Receive-Date: 2026-10-01 08:00:00");
  add("mid.eml", "Subject: Mid\r\nX-Message-Read: 1\r\nX-Receive-Date: 2026-11-09 08:00:00");
  add("RECENT.EML", "Subject: Recent\r\nX-Receive-Date: 2026-11-22 08:00:00");
  add("NEW.EML", "Subject: New\r\nX-Receive-Date: 2026-11-23 08:00:00");
  fill();
  mailer.populateFromCache(cache, {});
  EXPECT_EQ(events.lines, (std::vector<std::string>{
                              "ClearMessages", "FolderMessageCount 4",
                              "AddMessage Mid 1/4 " + std::to_string(0x808080), "AddMessage New 2/4 32768",
                              "SomeUnreadMessages", "AddMessage Old 3/4 " + std::to_string(0xA7A7A7),
                              "AddMessage Recent 4/4 " + std::to_string(0x595959),
                              "FinishedAddingMessages 3 " + std::to_string(nov22 + 1)}));
}

TEST_F(MailerTest, FiltersSkipMessagesAndAnAllReadListSaysSo) {
  add("plain.eml", "Subject: Plain\r\nX-Message-Read: 1");
  add("high.eml", "Subject: High\r\nX-Message-Read: 1\r\nX-Message-HighPriority: 1\r\nX-Message-Tags: work,home");
  fill();
  ListFilter highOnly;
  highOnly.highOnly = true;
  mailer.populateFromCache(cache, highOnly);
  EXPECT_EQ(events.lines.size(), 5u);
  EXPECT_EQ(events.lines[2].substr(0, 16), "AddMessage High ");
  EXPECT_EQ(events.lines[3], "NoUnreadMessages");
  EXPECT_EQ(events.lines[4], "FinishedAddingMessages 0 0");
  EXPECT_EQ(mailer.tagsSeen.size(), 2u);  // tags are seen before the filter

  events.lines.clear();
  ListFilter tagged;
  tagged.tagFilter = "work";
  mailer.populateFromCache(cache, tagged);
  EXPECT_EQ(std::count_if(events.lines.begin(), events.lines.end(),
                          [](const std::string& l) { return l.rfind("AddMessage", 0) == 0; }),
            1);
}

TEST_F(MailerTest, ASearchReadsTheHeadersOfTheFiles) {
  add("A.EML", "Subject: Alpha\r\nX-Mailer: FindMe 2.0");
  add("B.EML", "Subject: Beta");
  fill();
  ListFilter search;
  search.searchText = "findme";
  mailer.populateFromCache(cache, search);
  EXPECT_EQ(mailer.headersRead(), 2u);
  EXPECT_EQ(std::count_if(events.lines.begin(), events.lines.end(),
                          [](const std::string& l) { return l.rfind("AddMessage", 0) == 0; }),
            1);
}

TEST_F(MailerTest, AStopEndsThePopulationWithoutTheClosingEvents) {
  for (const char* name : {"A.EML", "B.EML", "C.EML"}) add(name, std::string("Subject: ") + name);
  fill();
  events.stopAt = 2;
  mailer.populateFromCache(cache, {});
  EXPECT_EQ(events.lines.back().substr(0, 12), "AddMessage B");
  EXPECT_FALSE(mailer.populating());
}

TEST(FolderNodeColourTest, ANodeComparesWithThePresentMomentNotTheDay) {
  const AgeLimits limits;
  const text::DateTime now{2026, 11, 23, 9, 30, 0};
  const long today = static_cast<long>(now.serial());
  EXPECT_EQ(folderNodeColour(limits, now, today), kAgeColours[3]);
  EXPECT_EQ(folderNodeColour(limits, now, today - 1), kAgeColours[2]);  // a message day would still be the third
  EXPECT_EQ(folderNodeColour(limits, now, today - 14), kAgeColours[1]);
  EXPECT_EQ(folderNodeColour(limits, now, 0), kAgeColours[0]);
}

TEST(FolderNodeColourTest, EachBandStartsAtItsLimitButTheOldestStartsAboveIt) {
  const AgeLimits limits;  // 30, 14 and 1 days
  const text::DateTime midnight{2026, 11, 23, 0, 0, 0};
  const long today = static_cast<long>(midnight.serial());
  EXPECT_EQ(folderNodeColour(limits, midnight, today - 1), kAgeColours[2]);   // exactly a day old
  EXPECT_EQ(folderNodeColour(limits, midnight, today - 14), kAgeColours[1]);  // exactly 14 days
  EXPECT_EQ(folderNodeColour(limits, midnight, today - 30), kAgeColours[1]);  // 30 days is not above 30
  EXPECT_EQ(folderNodeColour(limits, midnight, today - 31), kAgeColours[0]);
}

TEST(ParentNodeColourTest, AParentShowsTheFresherOfItsColourAndAChilds) {
  const auto [oldest, older, old, fresh] = kAgeColours;
  constexpr std::int32_t windowText = -1;
  EXPECT_EQ(parentNodeColour(older, old), old);
  EXPECT_EQ(parentNodeColour(older, oldest), older);
  EXPECT_EQ(parentNodeColour(old, fresh), fresh);
  EXPECT_EQ(parentNodeColour(old, older), old);
  EXPECT_EQ(parentNodeColour(oldest, older), older);
  EXPECT_EQ(parentNodeColour(fresh, fresh), fresh);
  EXPECT_EQ(parentNodeColour(fresh, oldest), fresh);
  EXPECT_EQ(parentNodeColour(windowText, oldest), oldest);
  EXPECT_EQ(parentNodeColour(older, windowText), older);
}

}  // namespace
}  // namespace vonel::store
