#include "core/store/tag_files.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

class TagFilesTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  const fs::path& folder() { return home.dir.path(); }
  std::string read(std::string_view name) { return files::loadTextFile(folder() / name); }
  message::Message unread(std::string receiveDate) {
    message::Message m;
    m.receiveDate = std::move(receiveDate);
    return m;
  }
};

TEST_F(TagFilesTest, UnreadCountIsKeptByCountingAndMayGoBelowZero) {
  EXPECT_EQ(unreadTagCount(folder()), 0);
  addToUnreadTag(home.log, folder());
  addToUnreadTag(home.log, folder(), 4);
  EXPECT_EQ(read("Unread.Tag"), "5");
  removeFromUnreadTag(home.log, folder(), 5);
  removeFromUnreadTag(home.log, folder());
  EXPECT_EQ(unreadTagCount(folder()), -1);
  createUnreadTag(home.log, folder(), 0);
  EXPECT_EQ(unreadTagCount(folder()), 1);
  removeUnreadTag(home.log, folder());
  EXPECT_FALSE(files::fileExists(folder() / "Unread.Tag"));
}

TEST_F(TagFilesTest, TheTagIsOneFileWhateverTheCaseOfItsName) {
  files::writeTextFile(folder() / "unread.tag", "7\r\n");
  addToUnreadTag(home.log, folder());
  EXPECT_EQ(unreadTagCount(folder()), 8);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1);
}

TEST_F(TagFilesTest, ATagWithoutANumberCountsAsZero) {
  files::writeTextFile(folder() / "Unread.Tag", "lots");
  EXPECT_EQ(unreadTagCount(folder()), 0);
  files::writeTextFile(folder() / "Unread.Tag", "");
  addToUnreadTag(home.log, folder());
  EXPECT_EQ(unreadTagCount(folder()), 1);
}

TEST_F(TagFilesTest, ACountBeyondSixteenBitsIsLoggedAndLeftAsItWas) {
  files::writeTextFile(folder() / "Unread.Tag", "32767");
  addToUnreadTag(home.log, folder());
  home.log.writeActionsToLog();
  EXPECT_EQ(read("Unread.Tag"), "32767");
  EXPECT_NE(files::loadTextFile(home.log.currentLogFilename()).find("AddToUnreadTag (6)"), std::string::npos);
}

TEST_F(TagFilesTest, LastMessageDayOnlyMovesForwardAndIgnoresReadMail) {
  const long nov20 = static_cast<long>(text::DateTime{2026, 11, 20}.serial());
  addToLastMessageTag(home.log, home.clock, folder(), unread("2026-11-20 08:00:00"));
  EXPECT_EQ(lastMessageTagDay(folder()), nov20);
  addToLastMessageTag(home.log, home.clock, folder(), unread("2026-11-01 08:00:00"));
  EXPECT_EQ(lastMessageTagDay(folder()), nov20);

  auto read = unread("2026-11-22 08:00:00");
  read.read = true;
  addToLastMessageTag(home.log, home.clock, folder(), read);
  EXPECT_EQ(lastMessageTagDay(folder()), nov20);

  // No receive date: the present day, even when it is not later.
  files::writeTextFile(folder() / "LastMsg.Tag", std::to_string(nov20 + 100) + "\r\n");
  addToLastMessageTag(home.log, home.clock, folder(), unread(""));
  EXPECT_EQ(lastMessageTagDay(folder()), static_cast<long>(home.clock.now().serial()));
}

TEST_F(TagFilesTest, ShowFiltersExcludeEachOther) {
  EXPECT_EQ(folderShowFilter(folder()), ShowFilter::All);
  setFolderShowFilter(home.log, folder(), ShowFilter::UnreadOnly);
  EXPECT_TRUE(files::fileExists(folder() / "ShowUnreadOnly.tag"));
  setFolderShowFilter(home.log, folder(), ShowFilter::UnreadHighOnly);
  EXPECT_EQ(folderShowFilter(folder()), ShowFilter::UnreadHighOnly);
  EXPECT_FALSE(files::fileExists(folder() / "ShowUnreadOnly.tag"));
  setFolderShowFilter(home.log, folder(), ShowFilter::All);
  EXPECT_EQ(folderShowFilter(folder()), ShowFilter::All);
}

TEST_F(TagFilesTest, ShowFiltersAreFoundInAnySpellingAndUnreadOnlyWins) {
  fs::create_directory(folder() / "showunreadonly.TAG");  // a folder so named is no tag
  files::writeTextFile(folder() / "SHOWUNREADHIGHONLY.TAG", "");
  EXPECT_EQ(folderShowFilter(folder()), ShowFilter::UnreadHighOnly);
  files::writeTextFile(folder() / "SHOWUNREADONLY.tag", "");
  EXPECT_EQ(folderShowFilter(folder()), ShowFilter::UnreadOnly);
}

TEST(RemoveCountTest, StripsEveryBracketedCount) {
  EXPECT_EQ(removeCount("Inbox (3)"), "Inbox");
  EXPECT_EQ(removeCount("Work (2) (1)"), "Work");
  EXPECT_EQ(removeCount("Plain"), "Plain");
  EXPECT_EQ(removeCount("Open (ended"), "Open");
  EXPECT_EQ(removeCount("a) b (3)"), "a) b");
}

}  // namespace
}  // namespace vonel::store
