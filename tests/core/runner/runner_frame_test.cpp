#include "core/runner/runner_frame.h"

#include <gtest/gtest.h>

#include <string>

namespace vonel::runner {
namespace {

TEST(RunnerFrame, AFrameSplitAnywhereGivesItsCommand) {
  const std::string command = "mailto:b\xC3\xB6" "b@example.org?subject=Hi there";
  const std::string frame = encodeFrame(command);
  ASSERT_TRUE(frame.starts_with("VONEL1 "));
  for (std::size_t split = 0; split <= frame.size(); ++split) {
    FrameReader reader;
    const FrameState first = reader.feed(std::string_view(frame).substr(0, split));
    EXPECT_EQ(first, split == frame.size() ? FrameState::Complete : FrameState::Incomplete) << split;
    EXPECT_EQ(reader.feed(std::string_view(frame).substr(split)), FrameState::Complete) << split;
    EXPECT_EQ(reader.command(), command);
  }
}

TEST(RunnerFrame, ByteByByteTheLargestCommandGoesThrough) {
  const std::string command(kMaxCommandBytes, 'a');
  const std::string frame = encodeFrame(command);
  FrameReader reader;
  for (char c : frame) ASSERT_NE(reader.feed(std::string_view(&c, 1)), FrameState::Invalid);
  EXPECT_EQ(reader.state(), FrameState::Complete);
  EXPECT_EQ(reader.command().size(), kMaxCommandBytes);
}

TEST(RunnerFrame, EmptyAndOversizedCommandsHaveNoFrame) {
  EXPECT_EQ(encodeFrame(""), "");
  EXPECT_EQ(encodeFrame(std::string(kMaxCommandBytes + 1, 'a')), "");
}

TEST(RunnerFrame, BadHeadersAreRejectedAtTheFirstWrongByte) {
  for (const std::string_view bad : {"GET / HTTP/1.0\r\n", "VONEL2 4\nSHOW", "VONEL1 \nSHOW", "VONEL1 0\n",
                                     "VONEL1 -4\nSHOW", "VONEL1 4 \nSHOW", "VONEL1 0000004\nSHOW",
                                     "VONEL1 65537\n", "VONEL1 1048576\n", "VONEL1 99999999999999999999\n"}) {
    FrameReader reader;
    EXPECT_EQ(reader.feed(bad), FrameState::Invalid) << bad;
  }
  FrameReader early;
  EXPECT_EQ(early.feed("X"), FrameState::Invalid);  // no need to wait for more
}

TEST(RunnerFrame, AMegabyteIsRefusedWithoutBeingRead) {
  std::string frame = "VONEL1 1048576\n" + std::string(1 << 20, 'x');
  FrameReader reader;
  EXPECT_EQ(reader.feed(frame), FrameState::Invalid);
  EXPECT_TRUE(reader.command().empty());
}

TEST(RunnerFrame, ACutFrameStaysIncompleteAndExtraBytesSpoilIt) {
  FrameReader cut;
  EXPECT_EQ(cut.feed("VONEL1 10\nSHOW"), FrameState::Incomplete);
  EXPECT_EQ(cut.feed(""), FrameState::Incomplete);

  FrameReader extra;
  EXPECT_EQ(extra.feed("VONEL1 4\nSHOWX"), FrameState::Invalid);
  FrameReader later;
  EXPECT_EQ(later.feed("VONEL1 4\nSHOW"), FrameState::Complete);
  EXPECT_EQ(later.feed("VONEL1 4\nSHOW"), FrameState::Invalid);
  EXPECT_EQ(later.feed("more"), FrameState::Invalid);
}

TEST(RunnerFrame, OnlyUtf8WithoutNulIsACommand) {
  EXPECT_TRUE(isCommandText("/home/j\xC3\xBCrgen/Saved.eml \xE2\x82\xAC \xF0\x9F\x93\xA7"));
  for (const std::string_view bad : {std::string_view("a\0b", 3), std::string_view("\xFF\xFE"),
                                     std::string_view("caf\xE9"), std::string_view("\xC0\xAF"),  // overlong "/"
                                     std::string_view("\xED\xA0\x80"),                            // a surrogate
                                     std::string_view("\xF4\x90\x80\x80"), std::string_view("\xE2\x82")}) {
    EXPECT_FALSE(isCommandText(bad));
    FrameReader reader;
    EXPECT_EQ(reader.feed("VONEL1 " + std::to_string(bad.size()) + "\n" + std::string(bad)), FrameState::Invalid);
  }
}

}  // namespace
}  // namespace vonel::runner
