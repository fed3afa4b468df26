#include "core/store/tag_files.h"

#include <gtest/gtest.h>

#include "core/services/file_subs.h"
#include "../test_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

class TagFilesTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  const fs::path& folder() { return home.dir.path(); }
  std::string read(std::string_view name) { return files::LoadTextFile(folder() / name); }
  message::clsMessage unread(std::string receiveDate) {
    message::clsMessage m;
    m.ReceiveDate = std::move(receiveDate);
    return m;
  }
};

TEST_F(TagFilesTest, UnreadCountIsKeptByCountingAndMayGoBelowZero) {
  EXPECT_EQ(UnreadTagCount(folder()), 0);
  AddToUnreadTag(home.log, folder());
  AddToUnreadTag(home.log, folder(), 4);
  EXPECT_EQ(read("Unread.Tag"), "5");
  RemoveFromUnreadTag(home.log, folder(), 5);
  RemoveFromUnreadTag(home.log, folder());
  EXPECT_EQ(UnreadTagCount(folder()), -1);
  CreateUnreadTag(home.log, folder(), 0);
  EXPECT_EQ(UnreadTagCount(folder()), 1);
  RemoveUnreadTag(home.log, folder());
  EXPECT_FALSE(files::FileExists(folder() / "Unread.Tag"));
}

TEST_F(TagFilesTest, TheTagIsOneFileWhateverTheCaseOfItsName) {
  files::WriteTextFile(folder() / "unread.tag", "7\r\n");
  AddToUnreadTag(home.log, folder());
  EXPECT_EQ(UnreadTagCount(folder()), 8);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1);
}

TEST_F(TagFilesTest, ATagWithoutANumberCountsAsZero) {
  files::WriteTextFile(folder() / "Unread.Tag", "lots");
  EXPECT_EQ(UnreadTagCount(folder()), 0);
  files::WriteTextFile(folder() / "Unread.Tag", "");
  AddToUnreadTag(home.log, folder());
  EXPECT_EQ(UnreadTagCount(folder()), 1);
}

TEST_F(TagFilesTest, ACountBeyondSixteenBitsIsLoggedAndLeftAsItWas) {
  files::WriteTextFile(folder() / "Unread.Tag", "32767");
  AddToUnreadTag(home.log, folder());
  home.log.WriteActionsToLog();
  EXPECT_EQ(read("Unread.Tag"), "32767");
  EXPECT_NE(files::LoadTextFile(home.log.CurrentLogFilename()).find("AddToUnreadTag (6)"), std::string::npos);
}

TEST_F(TagFilesTest, LastMessageDayOnlyMovesForwardAndIgnoresReadMail) {
  const long nov20 = static_cast<long>(text::DateTime{2026, 11, 20}.serial());
  AddToLastMessageTag(home.log, home.clock, folder(), unread("2026-11-20 08:00:00"));
  EXPECT_EQ(LastMessageTagDay(folder()), nov20);
  AddToLastMessageTag(home.log, home.clock, folder(), unread("2026-11-01 08:00:00"));
  EXPECT_EQ(LastMessageTagDay(folder()), nov20);

  auto read = unread("2026-11-22 08:00:00");
  read.Read = true;
  AddToLastMessageTag(home.log, home.clock, folder(), read);
  EXPECT_EQ(LastMessageTagDay(folder()), nov20);

  // No receive date: the present day, even when it is not later.
  files::WriteTextFile(folder() / "LastMsg.Tag", std::to_string(nov20 + 100) + "\r\n");
  AddToLastMessageTag(home.log, home.clock, folder(), unread(""));
  EXPECT_EQ(LastMessageTagDay(folder()), static_cast<long>(home.clock.now().serial()));
}

TEST_F(TagFilesTest, ShowFiltersExcludeEachOther) {
  EXPECT_EQ(FolderShowFilter(folder()), ShowFilter::All);
  SetFolderShowFilter(home.log, folder(), ShowFilter::UnreadOnly);
  EXPECT_TRUE(files::FileExists(folder() / "ShowUnreadOnly.tag"));
  SetFolderShowFilter(home.log, folder(), ShowFilter::UnreadHighOnly);
  EXPECT_EQ(FolderShowFilter(folder()), ShowFilter::UnreadHighOnly);
  EXPECT_FALSE(files::FileExists(folder() / "ShowUnreadOnly.tag"));
  SetFolderShowFilter(home.log, folder(), ShowFilter::All);
  EXPECT_EQ(FolderShowFilter(folder()), ShowFilter::All);
}

TEST(RemoveCountTest, StripsEveryBracketedCount) {
  EXPECT_EQ(RemoveCount("Inbox (3)"), "Inbox");
  EXPECT_EQ(RemoveCount("Work (2) (1)"), "Work");
  EXPECT_EQ(RemoveCount("Plain"), "Plain");
  EXPECT_EQ(RemoveCount("Open (ended"), "Open");
  EXPECT_EQ(RemoveCount("a) b (3)"), "a) b");
}

}  // namespace
}  // namespace vonel::store
