#include "core/store/folder_caches.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

class FolderCachesTest : public ::testing::Test {
 protected:
  testing::StoreHome home;
  SilentProgress quiet;
  FolderCaches caches{home.context, quiet};
  fs::path inbox() { return home.context.folders.inboxFolderPath; }
  fs::path first() { return inbox() / "FIRST (091500-231126).EML"; }

  void SetUp() override {
    home.writeMessage(inbox(), "FIRST (091500-231126).EML", "Subject: First");
    home.writeMessage(inbox(), "second (091600-231126).eml", "Subject: Second\r\nX-Message-Read: 1");
  }
  // The log so far; empty before its first line.
  std::string logged() {
    const bool any = home.context.log.queuedEntries() > 0 || files::fileExists(home.context.log.currentLogFilename());
    return any ? home.logText() : std::string();
  }
  FolderCache& filledInbox() {
    FolderCache& cache = caches.obtain(inbox());
    cache.fillCache(quiet, inbox(), "Inbox");
    return cache;
  }
};

TEST_F(FolderCachesTest, AFolderHasOneCacheHoweverItsPathIsWritten) {
  FolderCache& cache = caches.obtain(inbox());
  EXPECT_EQ(&caches.obtain(inbox() / ""), &cache);
  EXPECT_EQ(caches.find(inbox() / "." / ""), &cache);
  EXPECT_EQ(caches.find(home.context.folders.outboxFolderPath), nullptr);
  EXPECT_EQ(caches.size(), 1u);
}

TEST_F(FolderCachesTest, WrappersChangeTheCacheOfTheFolder) {
  FolderCache& cache = filledInbox();
  const std::string file = first().string();
  EXPECT_TRUE(caches.markRead(inbox(), file, true));
  EXPECT_TRUE(caches.markPriority(inbox(), file, true));
  EXPECT_TRUE(caches.markReplied(file, true));  // the folder comes from the file name
  EXPECT_TRUE(caches.changeTags(inbox(), file, "work"));
  const CachedMessage& kept = *cache.messages.find("first (091500-231126).eml");
  EXPECT_TRUE(kept.read && kept.highPriority && kept.replied);
  EXPECT_EQ(kept.tags, "work");

  message::Message gone = cache.item(2);
  EXPECT_TRUE(caches.removeMessage(inbox(), gone));
  EXPECT_EQ(cache.count(), 1u);
  EXPECT_TRUE(caches.addMessage(inbox(), gone));
  EXPECT_EQ(cache.count(), 2u);
}

TEST_F(FolderCachesTest, AMissLogsTheFolderAndTheWrappersName) {
  const fs::path elsewhere = home.context.folders.archiveFolderPath;
  EXPECT_FALSE(caches.markRead(elsewhere, (elsewhere / "A.EML").string(), true));
  EXPECT_FALSE(caches.markReplied((elsewhere / "A.EML").string(), true));
  EXPECT_FALSE(caches.rescan(elsewhere));
  const std::string log = logged();
  const std::string folder = elsewhere.string();
  EXPECT_NE(log.find("Unknown cache '" + folder + "' in MarkMessageInCacheReadUnread"), std::string::npos);
  EXPECT_NE(log.find("Unknown cache '" + folder + "' in MarkMessageInCacheRepliedOrNot"), std::string::npos);
  EXPECT_NE(log.find("Unknown cache '" + folder + "' in RescanCache"), std::string::npos);
}

TEST_F(FolderCachesTest, AMessageTheCacheDoesNotKnowFailsOnlyItsWrapper) {
  filledInbox();
  EXPECT_TRUE(caches.markRead(inbox(), (inbox() / "NOT THERE.EML").string(), true));
  EXPECT_NE(logged().find("MarkMessageInCacheReadUnread"), std::string::npos);
  EXPECT_EQ(caches.find(inbox())->count(), 2u);
}

TEST_F(FolderCachesTest, ARescanFindsWhatChangedOnDiskAndABlankPathIsLogged) {
  caches.obtain(home.context.folders.outboxFolderPath);  // never filled: no path
  EXPECT_TRUE(caches.rescan(home.context.folders.outboxFolderPath));
  EXPECT_NE(logged().find("Trying to cache folder " + home.context.folders.outboxFolderPath.string() +
                          " but cache path is blank"),
            std::string::npos);

  FolderCache& cache = filledInbox();
  home.writeMessage(inbox(), "THIRD (091700-231126).EML", "Subject: Third");
  fs::remove(first());
  EXPECT_TRUE(caches.rescan(inbox()));
  EXPECT_EQ(cache.count(), 2u);
  EXPECT_NE(cache.messages.find("third (091700-231126).eml"), nullptr);
  EXPECT_EQ(cache.messages.find("first (091500-231126).eml"), nullptr);
}

TEST_F(FolderCachesTest, RescanAllRebuildsFilledCachesSkipsBlankOnesAndRestsWithTheCacheOff) {
  FolderCache& cache = filledInbox();
  caches.obtain(home.context.folders.outboxFolderPath);
  cache.writeCache(true);
  cache.markRead(first().string(), true);  // known only to the cache, not the file

  home.context.noCacheMode = true;
  caches.rescanAll();
  EXPECT_TRUE(cache.messages.find("first (091500-231126).eml")->read);
  EXPECT_EQ(logged().find("Cache.path blank in RescanAllCaches"), std::string::npos);

  home.context.noCacheMode = false;
  const std::size_t readBefore = cache.headersRead();
  caches.rescanAll();
  EXPECT_FALSE(cache.messages.find("first (091500-231126).eml")->read);  // the file says unread
  EXPECT_EQ(cache.headersRead() - readBefore, 2u);                       // every header read again
  EXPECT_EQ(cache.path(), inbox());
  EXPECT_EQ(cache.mailFolderName(), "Inbox");
  EXPECT_NE(logged().find("Cache.path blank in RescanAllCaches"), std::string::npos);
}

TEST_F(FolderCachesTest, WriteAllKeepsWhatTheCachesLearned) {
  filledInbox();
  EXPECT_FALSE(files::fileExists(inbox() / "cache.xml"));
  caches.writeAll();
  EXPECT_TRUE(files::fileExists(inbox() / "cache.xml"));
}

}  // namespace
}  // namespace vonel::store
