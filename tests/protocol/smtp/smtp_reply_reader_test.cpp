#include "protocol/smtp/smtp_reply_reader.h"

#include <gtest/gtest.h>

namespace vonel::smtp {
namespace {

std::vector<SmtpReply> readAll(SmtpReplyReader& reader) {
  std::vector<SmtpReply> replies;
  while (reader.hasReply()) replies.push_back(reader.take());
  return replies;
}

TEST(SmtpReplyReader, GathersMultiLineRepliesWhateverTheSplit) {
  const std::string wire = "250-first\r\n250-AUTH PLAIN\r\n250 last\r\n354 go\n220\r\n";
  for (std::size_t a = 0; a <= wire.size(); ++a) {
    for (std::size_t b = a; b <= wire.size(); ++b) {
      SmtpReplyReader reader;
      reader.add(wire.substr(0, a));
      reader.add(wire.substr(a, b - a));
      reader.add(wire.substr(b));
      const std::vector<SmtpReply> replies = readAll(reader);
      ASSERT_EQ(replies.size(), 3u) << a << " " << b;
      EXPECT_EQ(replies[0].code, 250);
      EXPECT_EQ(replies[0].lines.size(), 3u);
      EXPECT_EQ(replies[0].text(), "last");
      EXPECT_EQ(replies[0].whole(), "250-first 250-AUTH PLAIN 250 last");
      EXPECT_EQ(replies[1].code, 354);
      EXPECT_EQ(replies[2].code, 220);
      EXPECT_EQ(replies[2].text(), "");
    }
  }
}

TEST(SmtpReplyReader, KeepsBoundedPiecesOfEndlessLinesAndReplies) {
  SmtpReplyReader reader;
  reader.add("250-" + std::string(100 * 1024, 'x'));
  EXPECT_FALSE(reader.hasReply());
  reader.add("\r\n");
  for (int i = 0; i < 5000; ++i) reader.add("250-more\r\n");
  reader.add("250 end\r\n");
  const SmtpReply reply = reader.take();
  EXPECT_EQ(reply.lines.front().size(), SmtpReplyReader::kLongestKeptLine);
  EXPECT_EQ(reply.lines.size(), SmtpReplyReader::kMostKeptLines);
  EXPECT_EQ(reply.code, 250);
}

TEST(SmtpReplyReader, LinesWithoutACodeEndTheirReplyWithCodeZero) {
  SmtpReplyReader reader;
  reader.add("garbage\r\n25\r\n2x0-no\r\n");
  const std::vector<SmtpReply> replies = readAll(reader);
  ASSERT_EQ(replies.size(), 3u);
  for (const SmtpReply& reply : replies) EXPECT_EQ(reply.code, 0);
}

}  // namespace
}  // namespace vonel::smtp
