#include "core/log/log_tail.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/files/atomic_file.h"

namespace vonel {
namespace {

std::string_view tailOf(std::string_view text, std::size_t limit) { return text.substr(tailStart(text, limit)); }

TEST(LogTail, StartsAtALineSoNoLineIsCut) {
  const std::string text = "one\r\ntwo\r\nthree\r\n";
  EXPECT_EQ(tailOf(text, 100), text);
  EXPECT_EQ(tailOf(text, 9), "three\r\n");  // cut inside "two"
  EXPECT_EQ(tailOf(text, 12), "two\r\nthree\r\n");  // cut right at a line start keeps that line
  EXPECT_EQ(tailOf(text, 13), "two\r\nthree\r\n");
}

TEST(LogTail, CutsALineLongerThanTheLimitRatherThanShowNothing) {
  EXPECT_EQ(tailOf("head\nabcdefghij\n", 5), "ghij\n");
  EXPECT_EQ(tailOf("abcdefghij", 4), "ghij");
}

TEST(LogTail, ReadsTheFilesEndOrNothingWithoutAFile) {
  testing::TempDir dir;
  EXPECT_EQ(readLogTail(dir.path() / "log.txt", 10), std::nullopt);
  files::writeTextFile(dir.path() / "log.txt", "1 09:00:00, a\r\n1 09:00:01, b\r\n");
  EXPECT_EQ(readLogTail(dir.path() / "log.txt", 100), "1 09:00:00, a\r\n1 09:00:01, b\r\n");
  EXPECT_EQ(readLogTail(dir.path() / "log.txt", 15), "1 09:00:01, b\r\n");
  EXPECT_EQ(readLogTail(dir.path() / "log.txt", 14), " 09:00:01, b\r\n");
  files::writeTextFile(dir.path() / "log.txt", "");
  EXPECT_EQ(readLogTail(dir.path() / "log.txt", 15), "");
}

}  // namespace
}  // namespace vonel
