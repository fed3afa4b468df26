#include "core/store/screened_folder.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

message::Message failedHeader(testing::StoreHome& home, const std::string& header) {
  message::Message message(&home.context.log, &home.clock);
  message.createFromText(header + "\r\n\r\nfirst body line\r\n", true);
  message.deleted = true;
  message.bayes = 0.99f;
  message.filterReason = "Blocked\r\nsender";
  return message;
}

TEST(ScreenedFolder, AHeaderIsKeptReadWithItsVerdictAndTheFolderListed) {
  testing::StoreHome home;
  const auto message = failedHeader(home, "From: bad@spam.example\r\nSubject: Cheap pills\r\nX-Message-Read: 1");
  const fs::path file = keepScreenedHeader(home.context, message);
  EXPECT_EQ(file, home.root() / "Screened" / "cheap pills (093015-261123).eml");
  EXPECT_EQ(files::loadTextFile(file),
            "From: bad@spam.example\r\nSubject: Cheap pills\r\nX-Message-Read: 1\r\n"
            "X-Screened: FAIL; score 0.99; Blocked sender\r\nX-Receive-Date: 2026-11-23 09:30:15\r\n"
            "X-Message-Tags: \r\n\r\n");
  EXPECT_NE(files::loadTextFile(home.context.folders.folderListFile).find("\r\nScreened\\\r\n"), std::string::npos);

  // A folder of that name in another case is the one used.
  fs::remove_all(home.root() / "Screened");
  fs::create_directories(home.root() / "screened");
  auto blocked = failedHeader(home, "Subject: again");
  blocked.blockedSender = true;
  blocked.filterReason.clear();
  const fs::path second = keepScreenedHeader(home.context, blocked);
  EXPECT_EQ(second.parent_path(), home.root() / "screened");
  EXPECT_NE(files::loadTextFile(second).find("\r\nX-Screened: BLOCK; score 0.99\r\n"), std::string::npos);
}

TEST(ScreenedFolder, EntriesGoAfterTheSetNumberOfDays) {
  testing::StoreHome home;
  const fs::path folder = home.root() / "Screened";
  fs::create_directories(folder);
  const auto now = fs::file_time_type::clock::now();
  const auto day = std::chrono::hours(24);
  home.writeMessage(folder, "old.eml", "Subject: old", now - 31 * day);
  home.writeMessage(folder, "young.eml", "Subject: young", now - 29 * day);
  home.writeMessage(folder, "notes.txt", "Subject: not an entry", now - 90 * day);
  // The files' times count from the machine's clock.
  home.clock.set(SystemClock().now());
  EXPECT_EQ(removeOldScreened(home.context), 1);
  EXPECT_FALSE(files::fileExists(folder / "old.eml"));
  EXPECT_TRUE(files::fileExists(folder / "young.eml"));
  EXPECT_TRUE(files::fileExists(folder / "notes.txt"));

  home.context.settings.set("ScreenedDays", Value(0));
  home.writeMessage(folder, "older.eml", "Subject: older", now - 400 * day);
  EXPECT_EQ(removeOldScreened(home.context), 0);
  home.context.settings.set("ScreenedDays", Value(10));
  EXPECT_EQ(removeOldScreened(home.context), 2);
}

}  // namespace
}  // namespace vonel::store
