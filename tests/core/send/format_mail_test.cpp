#include "core/send/format_mail.h"

#include <gtest/gtest.h>

#include "core/send/uuencode.h"
#include "core/send/content_type.h"

namespace vonel::send {
namespace {

TEST(FormatMail, LongLinesAreCutAtBlanksOrAtNineHundredNinetyEight) {
  const std::string exact(998, 'a');
  EXPECT_EQ(FormatMail(exact + "\r\nb"), exact + "\r\nb");
  EXPECT_EQ(FormatMail("x\r\n" + exact + "a"), "x\r\n" + exact + "\r\na");
  // A blank at or before 998 ends the piece and stays with it.
  const std::string words = std::string(500, 'w') + " " + std::string(600, 'v');
  EXPECT_EQ(FormatMail(words), std::string(500, 'w') + " \r\n" + std::string(600, 'v'));
  // Several pieces, and a tail shorter than a piece.
  EXPECT_EQ(FormatMail(std::string(2000, 'z')),
            std::string(998, 'z') + "\r\n" + std::string(998, 'z') + "\r\n" + std::string(4, 'z'));
}

TEST(FormatMail, SeparatorIsKeptAndLongLineWithoutOneGetsCrLf) {
  EXPECT_EQ(FormatMail(""), "");
  EXPECT_EQ(FormatMail("a\rb\r.c"), "a\rb\r..c");
  EXPECT_EQ(FormatMail("a\nb"), "a\nb");  // a bare LF is no separator
  EXPECT_EQ(FormatMail(std::string(1000, 'c') + "\r"), std::string(998, 'c') + "\r" + "cc\r");
}

TEST(FormatMail, DotsAreAddedOnEveryPass) {
  std::string text = "first\r\n.second\r\n..";
  for (int pass = 0; pass < 3; ++pass) text = FormatMail(text);
  EXPECT_EQ(text, "first\r\n....second\r\n.....");
}

TEST(FormatMail, EightBitMeansAByteAboveOneTwentySeven) {
  EXPECT_FALSE(hasEightBit(std::string("plain\x7f text")));
  EXPECT_TRUE(hasEightBit("na\xefve"));
}

TEST(UUEncodeString, GroupsLengthAndPadding) {
  EXPECT_EQ(UUEncodeString("Cat"), "#0V%T");
  EXPECT_EQ(UUEncodeString("Ca"), "\"0V$`=");
  EXPECT_EQ(UUEncodeString("C"), "!0P``==");
  EXPECT_EQ(UUEncodeString(""), "`");
  EXPECT_EQ(UUEncodeString(std::string(63, 'a')).size(), 1u + 84u);
  EXPECT_EQ(UUEncodeString(std::string(64, 'a')), "");
}

TEST(GetContentType, ExtensionTableWithFallBack) {
  EXPECT_EQ(GetContentType("report.PDF", "x/y"), "application/pdf");
  EXPECT_EQ(GetContentType("archive.tar.gz", "x/y"), "application/x-gzip");
  EXPECT_EQ(GetContentType("photo.jpeg", "x/y"), "image/jpeg");
  EXPECT_EQ(GetContentType("README", "x/y"), "x/y");
  EXPECT_EQ(GetContentType("data.unknownext", "x/y"), "x/y");
  EXPECT_EQ(GetContentType("trailingdot.", "x/y"), "x/y");
}

}  // namespace
}  // namespace vonel::send
