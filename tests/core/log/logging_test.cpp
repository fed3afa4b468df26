#include "core/log/logging.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/services/file_subs.h"

namespace vonel {
namespace {

std::string logText(testing::TestHome& home) {
  const auto file = home.dir.path() / "log.txt";
  return files::FileExists(file) ? files::LoadTextFile(file) : std::string();
}

TEST(Logging, ANewFileStartsWithTheHeader) {
  testing::TestHome home;
  home.log.LogEvent("first", true);
  const auto dir = home.dir.path().string();
  EXPECT_EQ(logText(home), "1 09:30:15, Log file created \r\n"
                           "1 09:30:15, Operating System: TestOS\r\n"
                           "1 09:30:15, App: Vonel\r\n"
                           "1 09:30:15, Version: 1.2.3\r\n"
                           "1 09:30:15, Curdir: /cur\r\n"
                           "1 09:30:15, App path: " + dir + "\r\n"
                           "1 09:30:15, first\r\n");
  home.log.LogEvent("again", true);  // a new file drops the old text
  EXPECT_EQ(logText(home).find("first"), std::string::npos);
}

TEST(Logging, TwentyEntriesWaitAndTheTwentyFirstFlushesAll) {
  testing::TestHome home;
  for (int i = 1; i <= 20; ++i) home.log.AddAction("entry " + std::to_string(i));
  EXPECT_EQ(logText(home), "");
  home.log.AddAction("entry 21", "Proc", "Mod");
  const std::string text = logText(home);
  EXPECT_NE(text.find("1 09:30:15, entry 1\r\n"), std::string::npos);
  EXPECT_NE(text.find("entry 21 in Proc of module Mod\r\n"), std::string::npos);
  EXPECT_EQ(home.log.queuedEntries(), 0u);
}

TEST(Logging, AQueuedEntryKeepsTheTimeItWasQueued) {
  testing::TestHome home;
  home.log.AddAction("early");
  EXPECT_EQ(home.log.CurrentAction(), "0 09:30:15, early");
  home.clock.set(text::DateTime{2026, 11, 23, 9, 45, 0});
  home.log.AddDebug("late");
  home.log.WriteActionsToLog();
  EXPECT_EQ(logText(home), "1 09:30:15, early\r\n1 09:45:00, DBG: late\r\n");
  EXPECT_EQ(home.log.CurrentAction(), "0 09:30:15, early");  // debug lines leave it alone
}

TEST(Logging, NoLoggingWritesNothingAndKeepsTheCurrentAction) {
  testing::TestHome home;
  home.log.AddAction("before");
  home.log.NOLOGGING = true;
  home.log.AddAction("during");
  home.log.LogEvent("event");
  EXPECT_EQ(home.log.CurrentAction(), "0 09:30:15, before");
  home.log.NOLOGGING = false;
  home.log.WriteActionsToLog();
  EXPECT_EQ(logText(home), "1 09:30:15, before\r\n");
}

TEST(Logging, ErrorsAndTheErrorTail) {
  testing::TestHome home;
  home.log.AddAction("queued");
  home.log.LogError(AppError(53, "File not found"), "LoadIt", "modFiles", "While loading: ");
  EXPECT_NE(logText(home).find("While loading: Error 53 (File not found) in LoadIt of modFiles\r\n"),
            std::string::npos);
  EXPECT_NE(logText(home).find("queued"), std::string::npos);
  EXPECT_FALSE(guardedStep(home.log, "Step", "modX", [] { throw AppError(61, "Disk full"); }));
  EXPECT_TRUE(guardedStep(home.log, "Step", "modX", [] {}));
  EXPECT_EQ(home.log.CurrentAction(), "0 09:30:15, Disk full in Step (61) of module modX");
}

TEST(Logging, AnOverrideInAMissingFolderLandsInTheHome) {
  testing::TestHome home;
  home.log.OverrideLogFilename("/no/such/folder/other.txt");
  EXPECT_EQ(home.log.CurrentLogFilename(), home.dir.path() / "other.txt");
  home.log.OverrideLogFilename("bare.txt");
  EXPECT_EQ(home.log.CurrentLogFilename(), home.dir.path() / "bare.txt");
}

TEST(Logging, AnUnwritableLogIsSkippedSilently) {
  testing::TestHome home;
  std::filesystem::create_directory(home.dir.path() / "log.txt");  // a folder where the file should be
  home.log.LogEvent("lost");
  home.log.AddAction("lost too");
  home.log.WriteActionsToLog();
  EXPECT_EQ(home.log.queuedEntries(), 0u);
}

}  // namespace
}  // namespace vonel
