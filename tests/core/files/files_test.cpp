#include "core/files/files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "../test_home.h"
#include "core/log/app_error.h"

namespace vonel::files {
namespace {

TEST(FileLayer, WritesReplaceTheWholeFileAndLeaveNoTemporaries) {
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  writeTextFile(file, std::string("a\0b\r\n", 5));
  EXPECT_EQ(loadTextFile(file), std::string("a\0b\r\n", 5));
  writeTextFile(file, "short");
  EXPECT_EQ(loadTextFile(file), "short");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);
}

TEST(FileLayer, AFailedWriteKeepsTheOldFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes into read-only folders";
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  writeTextFile(file, "old");
  fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
  try {
    writeTextFile(file, "new");
    FAIL() << "the write should have failed";
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 75);
  }
  EXPECT_EQ(loadTextFile(file), "old");
}

TEST(FileLayer, AFullDiskIsReportedAsSuchAndKeepsTheOldFile) {
  if (!folderExists("/dev/shm")) GTEST_SKIP();
  // /dev/full refuses every write with "no space left".
  testing::TempDir dir;
  const auto file = dir.path() / "data.txt";
  writeTextFile(file, "old");
  try {
    appendToFile("/dev/full", "x");
    FAIL() << "the write should have failed";
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 61);
  }
  EXPECT_EQ(AppError::fromErrno(ENOSPC, "f").number(), 61);
}

TEST(FileLayer, FindsANameInAnyCaseButPrefersTheExactOne) {
  testing::TempDir dir;
  writeTextFile(dir.path() / "VONEL.INI", "x");
  EXPECT_EQ(findAnyCase(dir.path(), "Vonel.ini"), dir.path() / "VONEL.INI");
  EXPECT_EQ(resolveAnyCase(dir.path(), "Paths.ini"), dir.path() / "Paths.ini");
  writeTextFile(dir.path() / "Vonel.ini", "y");
  EXPECT_EQ(findAnyCase(dir.path(), "Vonel.ini"), dir.path() / "Vonel.ini");
  EXPECT_FALSE(findAnyCase(dir.path() / "absent", "x"));
}

TEST(FileLayer, ReadOnlyFlagsSizesAndMissingFiles) {
  testing::TempDir dir;
  const auto file = dir.path() / "f";
  writeTextFile(file, "12345");
  EXPECT_EQ(fileSize(file), 5u);
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_TRUE(isReadOnly(file));
  EXPECT_TRUE(makeReadWrite(file));
  EXPECT_FALSE(isReadOnly(file));
  EXPECT_TRUE(eraseFile(file));
  EXPECT_TRUE(eraseFile(file));  // gone already is fine
  EXPECT_FALSE(fileSize(file));
  EXPECT_THROW(loadTextFile(file), AppError);
  EXPECT_TRUE(mkMissingDir(dir.path() / "a" / "b" / "c"));
}

TEST(FileLayer, SettingsTextBecomesAPathAndBack) {
  const std::string text = "/tmp/Caf\xE9";
  EXPECT_EQ(textFromPath(pathFromText(text)), text);
  EXPECT_EQ(pathFromText(text).string(), "/tmp/Caf\xC3\xA9");
}

}  // namespace
}  // namespace vonel::files
