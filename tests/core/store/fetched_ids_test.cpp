#include "core/store/fetched_ids.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/message/message.h"
#include "core/store/received_mail.h"
#include "store_home.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

class FetchedIdsTest : public ::testing::Test {
 protected:
  testing::StoreHome home;
  fs::path data() const { return home.context.folders.dataFolderPath; }
  fs::path idsFile(int account = 2) const { return data() / ("Fetched" + std::to_string(account) + ".txt"); }
  fs::path pendingFile() const { return data() / "Fetching2.txt"; }
  std::string ids(int account = 2) const {
    return files::fileExists(idsFile(account)) ? files::loadTextFile(idsFile(account)) : "(none)";
  }
};

TEST_F(FetchedIdsTest, IdsAreAddedOnceThePendingFileIsOnDiskAndPrunedByTheListing) {
  {
    FetchedIds fetched(data(), 2, home.context.writes);
    EXPECT_EQ(fetched.size(), 0u);
    fetched.beginStoring("b", home.root() / "Inbox" / "B.EML");
    EXPECT_EQ(files::loadTextFile(pendingFile()), "b\r\n" + files::textFromPath(home.root() / "Inbox" / "B.EML") + "\r\n");
    EXPECT_EQ(ids(), "(none)");
    fetched.finishStoring();
    EXPECT_FALSE(files::fileExists(pendingFile()));
    fetched.beginStoring("a", home.root() / "A.EML");
    fetched.finishStoring();
  }
  EXPECT_EQ(ids(), "b\r\na\r\n");
  EXPECT_EQ(ids(0), "(none)");  // each account its own file

  FetchedIds again(data(), 2, home.context.writes);
  EXPECT_TRUE(again.contains("a"));
  EXPECT_FALSE(again.contains("A"));
  again.keepOnly({"a", "new"});
  EXPECT_EQ(ids(), "a\r\n");
}

TEST_F(FetchedIdsTest, ARunCutOffBetweenTheMessageAndItsIdIsPutRight) {
  files::writeTextFile(idsFile(), "old\r\n\r\nold\r\n");
  const fs::path stored = home.root() / "Inbox" / "STORED.EML";
  files::writeTextFile(stored, "Subject: x\r\n\r\n");
  files::writeTextFile(pendingFile(), "cut\r\n" + files::textFromPath(stored) + "\r\n");
  FetchedIds fetched(data(), 2, home.context.writes);
  EXPECT_TRUE(fetched.contains("cut"));
  EXPECT_EQ(ids(), "old\r\ncut\r\n");
  EXPECT_FALSE(files::fileExists(pendingFile()));

  // Cut off before its file was whole: the message comes again.
  files::writeTextFile(pendingFile(), "lost\r\n" + files::textFromPath(home.root() / "Inbox" / "NEVER.EML") + "\r\n");
  FetchedIds next(data(), 2, home.context.writes);
  EXPECT_FALSE(next.contains("lost"));
  EXPECT_EQ(next.size(), 2u);
  EXPECT_FALSE(files::fileExists(pendingFile()));
}

TEST_F(FetchedIdsTest, AReceivedMessageIsStoredAsItCameAndItsIdRecorded) {
  const std::string text =
      "From: ann@example.com\r\nSubject: Dots\r\n\r\n.\r\nX-Message-Read: 1\r\nlast line without end";
  message::Message message(&home.context.log, &home.clock);
  message.createFromText(text, false);
  message.fromAccount = 2;
  message.serverUniqueId = "uid-7";
  const StoredMessage stored = saveReceivedMessage(home.context, message);
  EXPECT_EQ(stored.file.filename(), "DOTS (093015-261123).EML");
  EXPECT_EQ(files::loadTextFile(stored.file),
            "From: ann@example.com\r\nSubject: Dots\r\nX-Receive-Date: 2026-11-23 09:30:15\r\nX-Message-Tags: \r\n"
            "\r\n.\r\nX-Message-Read: 1\r\nlast line without end");
  EXPECT_EQ(ids(), "uid-7\r\n");
  EXPECT_FALSE(files::fileExists(pendingFile()));

  // Without an id, as from a server without UIDL, nothing is recorded.
  message.serverUniqueId.clear();
  message.fromAccount = 3;
  saveReceivedMessage(home.context, message);
  EXPECT_EQ(ids(3), "(none)");
}

}  // namespace
}  // namespace vonel::store
