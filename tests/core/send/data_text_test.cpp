#include "core/send/data_text.h"

#include <gtest/gtest.h>

#include "core/send/uuencode.h"
#include "core/send/content_type.h"

namespace vonel::send {
namespace {

TEST(CutLongLines, CutsAtBlanksOrAtNineHundredNinetyEight) {
  const std::string exact(998, 'a');
  EXPECT_EQ(cutLongLines(exact + "\r\nb"), exact + "\r\nb");
  EXPECT_EQ(cutLongLines("x\r\n" + exact + "a"), "x\r\n" + exact + "\r\na");
  // A blank at or before 998 ends the piece and stays with it.
  const std::string words = std::string(500, 'w') + " " + std::string(600, 'v');
  EXPECT_EQ(cutLongLines(words), std::string(500, 'w') + " \r\n" + std::string(600, 'v'));
  // Several pieces, and a tail shorter than a piece.
  EXPECT_EQ(cutLongLines(std::string(2000, 'z')),
            std::string(998, 'z') + "\r\n" + std::string(998, 'z') + "\r\n" + std::string(4, 'z'));
}

TEST(CutLongLines, KeepsTheSeparatorAndTheDotsAndChangesNothingTheSecondTime) {
  EXPECT_EQ(cutLongLines(""), "");
  EXPECT_EQ(cutLongLines("a\rb\r.c"), "a\rb\r.c");
  EXPECT_EQ(cutLongLines("a\nb"), "a\nb");  // a bare LF is no separator
  EXPECT_EQ(cutLongLines(std::string(1000, 'c') + "\r"), std::string(998, 'c') + "\r" + "cc\r");
  const std::string text = ".\r\n..\r\n.x\r\n" + std::string(3000, 'y');
  EXPECT_EQ(cutLongLines(cutLongLines(text)), cutLongLines(text));
}

TEST(DotStuffed, AddsOneDotToEveryLineThatBeginsWithOne) {
  EXPECT_EQ(dotStuffed(".\r\n..\r\n.x\r\nx.\r\n"), "..\r\n...\r\n..x\r\nx.\r\n");
  EXPECT_EQ(dotStuffed(""), "");
  EXPECT_EQ(dotStuffed("."), "..");
  // A bare LF starts a line for the server too; a bare CR doesn't.
  EXPECT_EQ(dotStuffed("a\n.b\r.c"), "a\n..b\r.c");
}

TEST(HasEightBit, MeansAByteAboveOneTwentySeven) {
  EXPECT_FALSE(hasEightBit(std::string("plain\x7f text")));
  EXPECT_TRUE(hasEightBit("na\xefve"));
}

TEST(UuencodeLine, GroupsLengthAndPadding) {
  EXPECT_EQ(uuencodeLine("Cat"), "#0V%T");
  EXPECT_EQ(uuencodeLine("Ca"), "\"0V$`=");
  EXPECT_EQ(uuencodeLine("C"), "!0P``==");
  EXPECT_EQ(uuencodeLine(""), "`");
  EXPECT_EQ(uuencodeLine(std::string(63, 'a')).size(), 1u + 84u);
  EXPECT_EQ(uuencodeLine(std::string(64, 'a')), "");
}

TEST(ContentTypeOf, ExtensionTableWithFallBack) {
  EXPECT_EQ(contentTypeOf("report.PDF", "x/y"), "application/pdf");
  EXPECT_EQ(contentTypeOf("archive.tar.gz", "x/y"), "application/x-gzip");
  EXPECT_EQ(contentTypeOf("photo.jpeg", "x/y"), "image/jpeg");
  EXPECT_EQ(contentTypeOf("README", "x/y"), "x/y");
  EXPECT_EQ(contentTypeOf("data.unknownext", "x/y"), "x/y");
  EXPECT_EQ(contentTypeOf("trailingdot.", "x/y"), "x/y");
}

}  // namespace
}  // namespace vonel::send
