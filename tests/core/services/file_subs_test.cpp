#include "core/services/file_subs.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "../test_home.h"
#include "core/log/app_error.h"

namespace vonel::files {
namespace {

TEST(FileLayer, WritesReplaceTheWholeFileAndLeaveNoTemporaries) {
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  WriteTextFile(file, std::string("a\0b\r\n", 5));
  EXPECT_EQ(LoadTextFile(file), std::string("a\0b\r\n", 5));
  WriteTextFile(file, "short");
  EXPECT_EQ(LoadTextFile(file), "short");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);
}

TEST(FileLayer, AFailedWriteKeepsTheOldFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes into read-only folders";
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  WriteTextFile(file, "old");
  fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
  try {
    WriteTextFile(file, "new");
    FAIL() << "the write should have failed";
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 75);
  }
  EXPECT_EQ(LoadTextFile(file), "old");
}

TEST(FileLayer, AFullDiskIsReportedAsSuchAndKeepsTheOldFile) {
  if (!FolderExists("/dev/shm")) GTEST_SKIP();
  // /dev/full refuses every write with "no space left".
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  WriteTextFile(file, "old");
  try {
    AppendToFile("/dev/full", "x");
    FAIL() << "the write should have failed";
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 61);
  }
  EXPECT_EQ(AppError::fromErrno(ENOSPC, "f").number(), 61);
}

TEST(FileLayer, FindsANameInAnyCaseButPrefersTheExactOne) {
  testing::TempDir dir;
  WriteTextFile(dir.path() / "VONEL.INI", "x");
  EXPECT_EQ(FindAnyCase(dir.path(), "Vonel.ini"), dir.path() / "VONEL.INI");
  EXPECT_EQ(ResolveAnyCase(dir.path(), "Paths.ini"), dir.path() / "Paths.ini");
  WriteTextFile(dir.path() / "Vonel.ini", "y");
  EXPECT_EQ(FindAnyCase(dir.path(), "Vonel.ini"), dir.path() / "Vonel.ini");
  EXPECT_FALSE(FindAnyCase(dir.path() / "absent", "x"));
}

TEST(FileLayer, ReadOnlyFlagsSizesAndMissingFiles) {
  testing::TempDir dir;
  const auto file = dir.path() / "f";
  WriteTextFile(file, "12345");
  EXPECT_EQ(FileSize(file), 5u);
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_TRUE(IsReadOnly(file));
  EXPECT_TRUE(MakeReadWrite(file));
  EXPECT_FALSE(IsReadOnly(file));
  EXPECT_TRUE(EraseFile(file));
  EXPECT_TRUE(EraseFile(file));  // gone already is fine
  EXPECT_FALSE(FileSize(file));
  EXPECT_THROW(LoadTextFile(file), AppError);
  EXPECT_TRUE(MkMissingDir(dir.path() / "a" / "b" / "c"));
}

TEST(FileLayer, SettingsTextBecomesAPathAndBack) {
  const std::string text = "/tmp/Caf\xE9";
  EXPECT_EQ(TextFromPath(PathFromText(text)), text);
  EXPECT_EQ(PathFromText(text).string(), "/tmp/Caf\xC3\xA9");
}

}  // namespace
}  // namespace vonel::files
