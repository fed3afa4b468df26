#include "core/files/write_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../test_home.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"

namespace vonel::files {
namespace {

// Notes what each barrier syncs, files then folders; fails when told to.
struct SyncLog {
  std::vector<std::vector<std::string>> barriers;
  bool fail = false;
  WriteBatch batch() {
    return WriteBatch([this](const std::vector<fs::path>& files, const std::vector<fs::path>& folders) {
      std::vector<std::string>& names = barriers.emplace_back();
      for (const auto* paths : {&files, &folders}) {
        for (const fs::path& path : *paths) names.push_back(path.filename().string());
      }
      if (fail) throw AppError(error_number::kDeviceIo, "Device I/O error");
    });
  }
};

std::vector<std::string> leftovers(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(WriteBatch, AnOpenBatchSyncsEachFileOnceInTheOrderOfItsLastWriteAndThenTheFolders) {
  testing::TempDir dir;
  SyncLog log;
  WriteBatch batch = log.batch();
  const fs::path inbox = dir.path() / "Inbox";
  ensureFolder(inbox);
  batch.open();
  writeTextFile(dir.path() / "Fetched0.txt", "a\r\n", batch);
  writeTextFile(inbox / "A.EML", "first", batch);
  writeTextFile(inbox / "B.EML", "second", batch);
  writeTextFile(dir.path() / "Fetched0.txt", "a\r\nb\r\n", batch);
  EXPECT_TRUE(log.barriers.empty());  // nothing waits before the barrier
  EXPECT_EQ(loadTextFile(inbox / "B.EML"), "second");
  EXPECT_EQ(batch.pendingCount(), 5u);

  batch.commit();
  const std::vector<std::string> expected{"A.EML", "B.EML", "Fetched0.txt", dir.path().filename().string(), "Inbox"};
  EXPECT_EQ(log.barriers, std::vector<std::vector<std::string>>{expected});
  EXPECT_FALSE(batch.isOpen());
  EXPECT_EQ(batch.pendingCount(), 0u);

  // Closed, the batch lets each write wait for the disk itself and keeps nothing.
  writeTextFile(inbox / "C.EML", "lone", batch);
  batch.addFolder(inbox);
  batch.commit();
  EXPECT_EQ(log.barriers.size(), 1u);
  EXPECT_EQ(loadTextFile(inbox / "C.EML"), "lone");
}

TEST(WriteBatch, AFailingBarrierThrowsLeavesWholeFilesAndEmptiesTheBatch) {
  testing::TempDir dir;
  SyncLog log;
  log.fail = true;
  WriteBatch batch = log.batch();
  batch.open();
  writeTextFile(dir.path() / "A.EML", "first", batch);
  writeTextFile(dir.path() / "B.EML", "second", batch);
  writeTextFile(dir.path() / "A.EML", "first again", batch);
  try {
    batch.commit();
    FAIL() << "the barrier held";
  } catch (const AppError& error) {
    EXPECT_EQ(error.number(), error_number::kDeviceIo);
  }
  // B was written before A's rewrite.
  EXPECT_EQ(log.barriers,
            (std::vector<std::vector<std::string>>{{"B.EML", "A.EML", dir.path().filename().string()}}));
  EXPECT_EQ(batch.pendingCount(), 0u);
  EXPECT_FALSE(batch.isOpen());
  // Every file whole under its name, no temporary file beside them.
  EXPECT_EQ(leftovers(dir.path()), (std::vector<std::string>{"A.EML", "B.EML"}));
  EXPECT_EQ(loadTextFile(dir.path() / "A.EML"), "first again");
}

TEST(WriteBatch, AWriterDroppedBeforeItsCommitJoinsNothing) {
  testing::TempDir dir;
  SyncLog log;
  WriteBatch batch = log.batch();
  batch.open();
  {
    AtomicFileWriter writer(dir.path() / "half.eml", batch);
    writer.write("only the start");
  }
  EXPECT_EQ(batch.pendingCount(), 0u);
  EXPECT_TRUE(leftovers(dir.path()).empty());
}

TEST(WriteBatch, AWriterFinishingAfterTheBatchClosedWaitsForTheDiskItself) {
  testing::TempDir dir;
  SyncLog log;
  WriteBatch batch = log.batch();
  batch.open();
  AtomicFileWriter writer(dir.path() / "late.eml", batch);
  writer.write("late");
  batch.commit();
  writer.commit();
  EXPECT_EQ(batch.pendingCount(), 0u);
  EXPECT_EQ(loadTextFile(dir.path() / "late.eml"), "late");
}

TEST(WriteBatch, TheRealBarrierSyncsFilesAndFoldersAndPassesOverFilesMovedSince) {
  testing::TempDir dir;
  WriteBatch batch;
  batch.open();
  writeTextFile(dir.path() / "kept.eml", "kept", batch);
  writeTextFile(dir.path() / "moved.eml", "moved", batch);
  fs::rename(dir.path() / "moved.eml", dir.path() / "elsewhere.eml");
  batch.addFolder(dir.path() / "gone");
  EXPECT_NO_THROW(batch.commit());
  EXPECT_THROW(syncToDisk({}, {dir.path() / "kept.eml" / "x"}), AppError);
}

}  // namespace
}  // namespace vonel::files
