#include "core/store/folder_listing.h"

#include <gtest/gtest.h>

#include "core/files/file_text.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

TEST(FolderListingTest, ALongWalkAsksToGoOnAndGivesNothingWhenStopped) {
  testing::StoreHome home;
  const fs::path inbox = home.context.folders.inboxFolderPath;
  for (int i = 599; i >= 0; --i) files::writeTextFile(inbox / ("M" + std::to_string(1000 + i) + ".eml"), "x");
  files::writeTextFile(inbox / "notes.txt", "not mail");

  int asked = 0;
  const auto all = listMessageFiles(inbox, [&] { return ++asked > 0; });
  EXPECT_EQ(asked, 2);  // every 256 entries of the 601 and the dots
  ASSERT_EQ(all.size(), 600u);
  EXPECT_EQ(all.front().name, "M1000.eml");
  EXPECT_EQ(all.back().key, "M1599.EML");
  EXPECT_EQ(listMessageFiles(inbox).size(), 600u);

  asked = 0;
  EXPECT_TRUE(listMessageFiles(inbox, [&] { return ++asked < 2; }).empty());
  EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace vonel::store
