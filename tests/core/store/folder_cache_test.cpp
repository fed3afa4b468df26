#include "core/store/folder_cache.h"

#include <gtest/gtest.h>

#include <chrono>

#include "core/files/file_info.h"
#include "core/store/cache_file.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class CacheTest : public ::testing::Test {
 protected:
  testing::StoreHome home;
  SilentProgress quiet;
  fs::path inbox() { return home.context.folders.inboxFolderPath; }
  const fs::file_time_type monday = fs::file_time_type::clock::now() - 48h;

  void SetUp() override {
    home.writeMessage(inbox(), "FIRST (091500-231126).EML", "Subject: First\r\nX-Receive-Date: 2026-11-23 09:15:00", monday);
    home.writeMessage(inbox(), "second (091600-231126).eml", "Subject: Second\r\nX-Message-Read: 1", monday);
    home.writeMessage(inbox(), "Third (091700-231126).Eml", "Subject: Third\r\nX-Message-Tags: work", monday);
    files::writeTextFile(inbox() / "notes.txt", "not mail");
  }

  std::vector<std::string> subjects(const FolderCache& cache) {
    std::vector<std::string> result;
    for (const auto& entry : cache.messages) result.push_back(entry.value.subject);
    return result;
  }

  // A fill, then the file written as a window leaving the folder would.
  std::size_t fillAndLeave(std::vector<std::string>* seen = nullptr) {
    FolderCache cache(home.context, quiet);
    cache.fillCache(quiet, inbox(), "Inbox");
    if (seen) *seen = subjects(cache);
    const std::size_t opened = cache.headersRead();
    cache.clear(false);
    return opened;
  }
};

TEST_F(CacheTest, AColdFillReadsEveryHeaderAndAWarmOneNone) {
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 3u);
  EXPECT_EQ(seen, (std::vector<std::string>{"First", "Second", "Third"}));
  ASSERT_TRUE(files::fileExists(inbox() / "cache.xml"));
  EXPECT_EQ(fillAndLeave(&seen), 0u);
  EXPECT_EQ(seen, (std::vector<std::string>{"First", "Second", "Third"}));
}

TEST_F(CacheTest, OnlyTouchedAndNewFilesAreReadAgainAndRemovedOnesDropped) {
  fillAndLeave();
  home.writeMessage(inbox(), "FIRST (091500-231126).EML", "Subject: First again", monday + 5s);
  fs::remove(inbox() / "second (091600-231126).eml");
  home.writeMessage(inbox(), "FOURTH (091800-231126).EML", "Subject: Fourth", monday);
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 2u);
  EXPECT_EQ(seen, (std::vector<std::string>{"Third", "First again", "Fourth"}));
  EXPECT_EQ(fillAndLeave(), 0u);
}

TEST_F(CacheTest, TheReadStateComesFromTheCacheNotTheCaseOfTheName) {
  FolderCache cache(home.context, quiet);
  cache.fillCache(quiet, inbox(), "Inbox");
  EXPECT_FALSE(cache.item(1).read);
  EXPECT_TRUE(cache.item(2).read);
  EXPECT_EQ(cache.item(3).tags(), "work");
  EXPECT_EQ(cache.item(4).subject, "");  // beyond the end: an empty message
  cache.markRead((inbox() / "first (091500-231126).eml").string(), true);
  EXPECT_TRUE(cache.dirty());
  EXPECT_THROW(cache.markHighPriority("/nowhere/GONE.EML", true), AppError);
  cache.clear(false);
  FolderCache again(home.context, quiet);
  again.fillCache(quiet, inbox(), "Inbox");
  EXPECT_TRUE(again.item(1).read);
  EXPECT_EQ(again.headersRead(), 0u);
}

TEST_F(CacheTest, ADamagedOrForeignCacheCostsAReadNeverAMessage) {
  for (const std::string& damage : {std::string(""), std::string("\x01\x02 garbage <MESSAGES><MESSAGE>"),
                                   std::string("<CACHEVER>2<CACHEVER><MESSAGES></MESSAGES>")}) {
    files::writeTextFile(inbox() / "cache.xml", damage);
    std::vector<std::string> seen;
    EXPECT_EQ(fillAndLeave(&seen), 3u);
    EXPECT_EQ(seen.size(), 3u);
  }
  // A cut-off file keeps what it lists whole; the rest is read from the files.
  fillAndLeave();
  const std::string whole = files::loadTextFile(inbox() / "cache.xml");
  files::writeTextFile(inbox() / "cache.xml", whole.substr(0, whole.find("Second")));
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 2u);
  EXPECT_EQ(seen.size(), 3u);
}

TEST_F(CacheTest, ACacheListingFilesThatAreGoneListsOnlyWhatIsThere) {
  fillAndLeave();
  std::string text = files::loadTextFile(inbox() / "cache.xml");
  fs::remove(inbox() / "Third (091700-231126).Eml");
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 0u);
  EXPECT_EQ(seen, (std::vector<std::string>{"First", "Second"}));
}

TEST_F(CacheTest, NoCacheModeWritesNothingAndAWriteErasesTheOldCsv) {
  home.context.noCacheMode = true;
  fillAndLeave();
  EXPECT_FALSE(files::fileExists(inbox() / "cache.xml"));
  home.context.noCacheMode = false;
  files::writeTextFile(inbox() / "cache.csv", "old");
  fillAndLeave();
  EXPECT_FALSE(files::fileExists(inbox() / "cache.csv"));
  FolderCache cache(home.context, quiet);
  cache.fillCache(quiet, inbox(), "Inbox");
  cache.clear(true);
  EXPECT_FALSE(files::fileExists(inbox() / "cache.xml"));
}


// A window's events that ask the fill under way to stop at their n-th run.
class StoppingEvents final : public Progress {
 public:
  explicit StoppingEvents(int stopAt) : stopAt_(stopAt) {}
  FolderCache* cache = nullptr;
  int runs = 0;
  void status(std::string_view) override {}
  void letEventsRun() override {
    if (++runs == stopAt_) cache->stopFilling();
  }

 private:
  int stopAt_;
};

class StoppedFillTest : public CacheTest {
 protected:
  // Enough files for the walk, the cache read and the header reads each to let events run.
  void SetUp() override {
    for (int i = 0; i < 400; ++i) {
      home.writeMessage(inbox(), "m" + std::to_string(1000 + i) + ".eml", "Subject: S" + std::to_string(i), monday);
    }
  }
  // Fills with a stop asked at the n-th run of events; tells whether the fill finished.
  bool fillStoppedAt(FolderCache& cache, int stopAt, int* runs = nullptr) {
    StoppingEvents events(stopAt);
    events.cache = &cache;
    const bool whole = cache.fillCache(events, inbox(), "Inbox");
    if (runs) *runs = events.runs;
    return whole;
  }
};

TEST_F(StoppedFillTest, AColdFillStoppedAnywhereLeavesNothingFilledOrWritten) {
  int runs = 0;
  {
    FolderCache whole(home.context, quiet);
    ASSERT_TRUE(fillStoppedAt(whole, 0, &runs));
  }
  ASSERT_GT(runs, 5);  // the walk once, then every fifty headers
  for (const int stopAt : {1, 2, runs}) {
    SCOPED_TRACE(stopAt);
    FolderCache cache(home.context, quiet);
    EXPECT_FALSE(fillStoppedAt(cache, stopAt));
    EXPECT_FALSE(cache.cacheFilled());
    EXPECT_FALSE(cache.cacheFilling());
    EXPECT_FALSE(cache.dirty());
    EXPECT_EQ(cache.count(), 0u);
    cache.writeCache(false);
    cache.clear(false);
    EXPECT_FALSE(files::fileExists(inbox() / "cache.xml"));
  }
  // A stop asked between fills is no stop for the next one.
  FolderCache cache(home.context, quiet);
  cache.stopFilling();
  EXPECT_TRUE(cache.fillCache(quiet, inbox(), "Inbox"));
  EXPECT_EQ(cache.count(), 400u);
}

TEST_F(StoppedFillTest, AWarmFillStoppedInTheCacheReadKeepsTheFileForTheNextVisit) {
  fillAndLeave();
  const std::string written = files::loadTextFile(inbox() / "cache.xml");
  FolderCache cache(home.context, quiet);
  int runs = 0;
  // The walk asks once; the second run is inside the cache read.
  EXPECT_FALSE(fillStoppedAt(cache, 2, &runs));
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(cache.count(), 0u);
  cache.clear(false);
  EXPECT_EQ(files::loadTextFile(inbox() / "cache.xml"), written);
  EXPECT_EQ(fillAndLeave(), 0u);
}

}  // namespace
}  // namespace vonel::store
