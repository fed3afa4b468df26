#include "core/store/folder_lists.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

class FolderListsTest : public ::testing::Test {
 protected:
  testing::StoreHome home;
  void SetUp() override {
    for (const char* folder : {"Inbox/Work", "zeta", "Alpha/Work"}) fs::create_directories(home.root() / folder);
  }
};

TEST_F(FolderListsTest, BothListsAreWrittenInByteOrderWithTheLastTwoNames) {
  writeFolderLists(home.context.log, home.context.folders);
  EXPECT_EQ(files::loadTextFile(home.context.folders.folderListFile),
            "Alpha\\\r\nAlpha\\Work\\\r\nArchive\\\r\nDeleted\\\r\nInbox\\\r\nInbox\\Work\\\r\nOutbox\\\r\n"
            "Sent Items\\\r\nSpamBayes\\\r\nSpamBayes\\BayesOld\\\r\nzeta\\\r\n");
  EXPECT_EQ(files::loadTextFile(home.context.folders.folderNamesFile),
            "Alpha\r\nFolders\r\nWork\r\nAlpha\r\nArchive\r\nFolders\r\nDeleted\r\nFolders\r\nInbox\r\nFolders\r\n"
            "Work\r\nInbox\r\nOutbox\r\nFolders\r\nSent Items\r\nFolders\r\nSpamBayes\r\nFolders\r\n"
            "BayesOld\r\nSpamBayes\r\nzeta\r\nFolders\r\n");
}

TEST_F(FolderListsTest, TheFolderChooserLeavesOutTheOutboxAndProposesTheInbox) {
  const FolderChoices choices = folderChoices(home.context.log, home.context.folders);  // makes the lists
  ASSERT_EQ(choices.items.size(), 10u);
  EXPECT_EQ(choices.items.front(), "\\Alpha\\");
  ASSERT_TRUE(choices.selected);
  EXPECT_EQ(choices.items[*choices.selected], "\\Inbox\\");
  EXPECT_EQ(std::count(choices.items.begin(), choices.items.end(), "\\Outbox\\"), 0);
  EXPECT_EQ(storeFolder(home.root(), "\\Inbox\\Work\\"), home.root() / "Inbox" / "Work");
}

TEST_F(FolderListsTest, ANewFolderNeedsAPlainNameNotTakenInAnyCase) {
  std::string name = "  ?!  ";
  EXPECT_EQ(makeNewFolder(home.context.log, home.context.folders, "\\Inbox\\", name), "Please enter a folder name");
  name = "wOrK";
  EXPECT_EQ(makeNewFolder(home.context.log, home.context.folders, "\\Inbox\\", name),
            "There's already a folder called wOrK.  Please try again.");
  name = "Bills/2026";
  EXPECT_EQ(makeNewFolder(home.context.log, home.context.folders, "\\Inbox\\", name), "");
  EXPECT_EQ(name, "Bills2026");
  EXPECT_TRUE(files::folderExists(home.root() / "Inbox" / "Bills2026"));
}

}  // namespace
}  // namespace vonel::store
