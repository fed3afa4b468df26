#include "core/send/format_mail.h"

#include <gtest/gtest.h>

#include "core/send/uuencode.h"
#include "core/send/content_type.h"

namespace vonel::send {
namespace {

TEST(formatMail, LongLinesAreCutAtBlanksOrAtNineHundredNinetyEight) {
  const std::string exact(998, 'a');
  EXPECT_EQ(formatMail(exact + "\r\nb"), exact + "\r\nb");
  EXPECT_EQ(formatMail("x\r\n" + exact + "a"), "x\r\n" + exact + "\r\na");
  // A blank at or before 998 ends the piece and stays with it.
  const std::string words = std::string(500, 'w') + " " + std::string(600, 'v');
  EXPECT_EQ(formatMail(words), std::string(500, 'w') + " \r\n" + std::string(600, 'v'));
  // Several pieces, and a tail shorter than a piece.
  EXPECT_EQ(formatMail(std::string(2000, 'z')),
            std::string(998, 'z') + "\r\n" + std::string(998, 'z') + "\r\n" + std::string(4, 'z'));
}

TEST(formatMail, SeparatorIsKeptAndLongLineWithoutOneGetsCrLf) {
  EXPECT_EQ(formatMail(""), "");
  EXPECT_EQ(formatMail("a\rb\r.c"), "a\rb\r..c");
  EXPECT_EQ(formatMail("a\nb"), "a\nb");  // a bare LF is no separator
  EXPECT_EQ(formatMail(std::string(1000, 'c') + "\r"), std::string(998, 'c') + "\r" + "cc\r");
}

TEST(formatMail, DotsAreAddedOnEveryPass) {
  std::string text = "first\r\n.second\r\n..";
  for (int pass = 0; pass < 3; ++pass) text = formatMail(text);
  EXPECT_EQ(text, "first\r\n....second\r\n.....");
}

TEST(formatMail, EightBitMeansAByteAboveOneTwentySeven) {
  EXPECT_FALSE(hasEightBit(std::string("plain\x7f text")));
  EXPECT_TRUE(hasEightBit("na\xefve"));
}

TEST(uuEncodeString, GroupsLengthAndPadding) {
  EXPECT_EQ(uuEncodeString("Cat"), "#0V%T");
  EXPECT_EQ(uuEncodeString("Ca"), "\"0V$`=");
  EXPECT_EQ(uuEncodeString("C"), "!0P``==");
  EXPECT_EQ(uuEncodeString(""), "`");
  EXPECT_EQ(uuEncodeString(std::string(63, 'a')).size(), 1u + 84u);
  EXPECT_EQ(uuEncodeString(std::string(64, 'a')), "");
}

TEST(getContentType, ExtensionTableWithFallBack) {
  EXPECT_EQ(getContentType("report.PDF", "x/y"), "application/pdf");
  EXPECT_EQ(getContentType("archive.tar.gz", "x/y"), "application/x-gzip");
  EXPECT_EQ(getContentType("photo.jpeg", "x/y"), "image/jpeg");
  EXPECT_EQ(getContentType("README", "x/y"), "x/y");
  EXPECT_EQ(getContentType("data.unknownext", "x/y"), "x/y");
  EXPECT_EQ(getContentType("trailingdot.", "x/y"), "x/y");
}

}  // namespace
}  // namespace vonel::send
