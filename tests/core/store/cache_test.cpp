#include "core/store/cache.h"

#include <gtest/gtest.h>

#include <chrono>

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
  fs::path inbox() { return home.context.folders.InboxFolderPath; }
  const fs::file_time_type monday = fs::file_time_type::clock::now() - 48h;

  void SetUp() override {
    home.writeMessage(inbox(), "FIRST (091500-231126).EML", "Subject: First\r\nX-Receive-Date: 2026-11-23 09:15:00", monday);
    home.writeMessage(inbox(), "second (091600-231126).eml", "Subject: Second\r\nX-Message-Read: 1", monday);
    home.writeMessage(inbox(), "Third (091700-231126).Eml", "Subject: Third\r\nX-Message-Tags: work", monday);
    files::WriteTextFile(inbox() / "notes.txt", "not mail");
  }

  std::vector<std::string> subjects(const clsCache& cache) {
    std::vector<std::string> result;
    for (const auto& entry : cache.Messages) result.push_back(entry.value.Subject);
    return result;
  }

  // A fill, then the file written as a window leaving the folder would.
  std::size_t fillAndLeave(std::vector<std::string>* seen = nullptr) {
    clsCache cache(home.context, quiet);
    cache.FillCache(quiet, inbox(), "Inbox");
    if (seen) *seen = subjects(cache);
    const std::size_t opened = cache.HeadersRead();
    cache.Clear(false);
    return opened;
  }
};

TEST_F(CacheTest, AColdFillReadsEveryHeaderAndAWarmOneNone) {
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 3u);
  EXPECT_EQ(seen, (std::vector<std::string>{"First", "Second", "Third"}));
  ASSERT_TRUE(files::FileExists(inbox() / "cache.xml"));
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
  clsCache cache(home.context, quiet);
  cache.FillCache(quiet, inbox(), "Inbox");
  EXPECT_FALSE(cache.Item(1).Read);
  EXPECT_TRUE(cache.Item(2).Read);
  EXPECT_EQ(cache.Item(3).Tags(), "work");
  EXPECT_EQ(cache.Item(4).Subject, "");  // beyond the end: an empty message
  cache.MarkMsgReadUnread((inbox() / "first (091500-231126).eml").string(), true);
  EXPECT_TRUE(cache.Dirty());
  EXPECT_THROW(cache.MarkMsgPriority("/nowhere/GONE.EML", true), AppError);
  cache.Clear(false);
  clsCache again(home.context, quiet);
  again.FillCache(quiet, inbox(), "Inbox");
  EXPECT_TRUE(again.Item(1).Read);
  EXPECT_EQ(again.HeadersRead(), 0u);
}

TEST_F(CacheTest, ADamagedOrForeignCacheCostsAReadNeverAMessage) {
  for (const std::string& damage : {std::string(""), std::string("\x01\x02 garbage <MESSAGES><MESSAGE>"),
                                   std::string("<CACHEVER>2<CACHEVER><MESSAGES></MESSAGES>")}) {
    files::WriteTextFile(inbox() / "cache.xml", damage);
    std::vector<std::string> seen;
    EXPECT_EQ(fillAndLeave(&seen), 3u);
    EXPECT_EQ(seen.size(), 3u);
  }
  // A cut-off file keeps what it lists whole; the rest is read from the files.
  fillAndLeave();
  const std::string whole = files::LoadTextFile(inbox() / "cache.xml");
  files::WriteTextFile(inbox() / "cache.xml", whole.substr(0, whole.find("Second")));
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 2u);
  EXPECT_EQ(seen.size(), 3u);
}

TEST_F(CacheTest, ACacheListingFilesThatAreGoneListsOnlyWhatIsThere) {
  fillAndLeave();
  std::string text = files::LoadTextFile(inbox() / "cache.xml");
  fs::remove(inbox() / "Third (091700-231126).Eml");
  std::vector<std::string> seen;
  EXPECT_EQ(fillAndLeave(&seen), 0u);
  EXPECT_EQ(seen, (std::vector<std::string>{"First", "Second"}));
}

TEST_F(CacheTest, NoCacheModeWritesNothingAndAWriteErasesTheOldCsv) {
  home.context.NoCacheMode = true;
  fillAndLeave();
  EXPECT_FALSE(files::FileExists(inbox() / "cache.xml"));
  home.context.NoCacheMode = false;
  files::WriteTextFile(inbox() / "cache.csv", "old");
  fillAndLeave();
  EXPECT_FALSE(files::FileExists(inbox() / "cache.csv"));
  clsCache cache(home.context, quiet);
  cache.FillCache(quiet, inbox(), "Inbox");
  cache.Clear(true);
  EXPECT_FALSE(files::FileExists(inbox() / "cache.xml"));
}

}  // namespace
}  // namespace vonel::store
