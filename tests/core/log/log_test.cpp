#include "core/log/log.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "../test_home.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/append_file.h"

namespace vonel {
namespace {

std::string logText(testing::TestHome& home) {
  const auto file = home.dir.path() / "log.txt";
  return files::fileExists(file) ? files::loadTextFile(file) : std::string();
}

TEST(Logging, ANewFileStartsWithTheHeader) {
  testing::TestHome home;
  home.log.logEvent("first", true);
  const auto dir = home.dir.path().string();
  EXPECT_EQ(logText(home), "1 09:30:15, Log file created \r\n"
                           "1 09:30:15, Operating System: TestOS\r\n"
                           "1 09:30:15, App: Vonel\r\n"
                           "1 09:30:15, Version: 1.2.3\r\n"
                           "1 09:30:15, Curdir: /cur\r\n"
                           "1 09:30:15, App path: " + dir + "\r\n"
                           "1 09:30:15, first\r\n");
  home.log.logEvent("again", true);  // a new file drops the old text
  EXPECT_EQ(logText(home).find("first"), std::string::npos);
}

TEST(Logging, TwentyEntriesWaitAndTheTwentyFirstFlushesAll) {
  testing::TestHome home;
  for (int i = 1; i <= 20; ++i) home.log.addAction("entry " + std::to_string(i));
  EXPECT_EQ(logText(home), "");
  home.log.addAction("entry 21", "Proc", "Mod");
  const std::string text = logText(home);
  EXPECT_NE(text.find("1 09:30:15, entry 1\r\n"), std::string::npos);
  EXPECT_NE(text.find("entry 21 in Proc of module Mod\r\n"), std::string::npos);
  EXPECT_EQ(home.log.queuedEntries(), 0u);
}

TEST(Logging, AQueuedEntryKeepsTheTimeItWasQueued) {
  testing::TestHome home;
  home.log.addAction("early");
  EXPECT_EQ(home.log.currentAction(), "0 09:30:15, early");
  home.clock.set(text::DateTime{2026, 11, 23, 9, 45, 0});
  home.log.addDebug("late");
  home.log.writeActionsToLog();
  EXPECT_EQ(logText(home), "1 09:30:15, early\r\n1 09:45:00, DBG: late\r\n");
  EXPECT_EQ(home.log.currentAction(), "0 09:30:15, early");  // debug lines leave it alone
}

TEST(Logging, NoLoggingWritesNothingAndKeepsTheCurrentAction) {
  testing::TestHome home;
  home.log.addAction("before");
  home.log.loggingOff = true;
  home.log.addAction("during");
  home.log.logEvent("event");
  EXPECT_EQ(home.log.currentAction(), "0 09:30:15, before");
  home.log.loggingOff = false;
  home.log.writeActionsToLog();
  EXPECT_EQ(logText(home), "1 09:30:15, before\r\n");
}

TEST(Logging, ErrorsAndTheErrorTail) {
  testing::TestHome home;
  home.log.addAction("queued");
  home.log.logError(AppError(53, "File not found"), "LoadIt", "modFiles", "While loading: ");
  EXPECT_NE(logText(home).find("While loading: Error 53 (File not found) in LoadIt of modFiles\r\n"),
            std::string::npos);
  EXPECT_NE(logText(home).find("queued"), std::string::npos);
  EXPECT_FALSE(guardedStep(home.log, "Step", "modX", [] { throw AppError(61, "Disk full"); }));
  EXPECT_TRUE(guardedStep(home.log, "Step", "modX", [] {}));
  EXPECT_EQ(home.log.currentAction(), "0 09:30:15, Disk full in Step (61) of module modX");
}

TEST(Logging, AnOverrideInAMissingFolderLandsInTheHome) {
  testing::TestHome home;
  home.log.overrideLogFilename("/no/such/folder/other.txt");
  EXPECT_EQ(home.log.currentLogFilename(), home.dir.path() / "other.txt");
  home.log.overrideLogFilename("bare.txt");
  EXPECT_EQ(home.log.currentLogFilename(), home.dir.path() / "bare.txt");
}

TEST(Logging, AFullDiskIsReportedAsSuch) {
  if (!files::folderExists("/dev/shm")) GTEST_SKIP();
  // /dev/full refuses every write with "no space left".
  try {
    appendToFile("/dev/full", "x");
    FAIL() << "the write should have failed";
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 61);
  }
  EXPECT_EQ(AppError::fromErrno(ENOSPC, "f").number(), 61);
}

TEST(Logging, AnUnwritableLogIsSkippedSilently) {
  testing::TestHome home;
  std::filesystem::create_directory(home.dir.path() / "log.txt");  // a folder where the file should be
  home.log.logEvent("lost");
  home.log.addAction("lost too");
  home.log.writeActionsToLog();
  EXPECT_EQ(home.log.queuedEntries(), 0u);
}

}  // namespace
}  // namespace vonel
