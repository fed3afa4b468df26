#include <gtest/gtest.h>

#include "core/message/address.h"
#include "core/message/iso_decode.h"
#include "core/message/transfer_encoding.h"

namespace vonel::message {
namespace {

TEST(IsoDecode, QuotedWordsLoseTheirMarkersButKeepUnderscores) {
  EXPECT_EQ(isoDecode("=?iso-8859-1?Q?Caf=E9_au_lait?="), "Caf\xE9_au_lait");
  EXPECT_EQ(isoDecode("\"Ann\" <ann@example.com>"), "Ann <ann@example.com>");
  EXPECT_EQ(isoDecode("  plain text  "), "plain text");
}

TEST(IsoDecode, AnyQuestionAfterQCutsThePlainTextBeforeIt) {
  EXPECT_EQ(isoDecode("Read our faq? It helps"), "It helps");
}

TEST(IsoDecode, Base64TailIsDecodedAndThenAppendedAfterTheBlankFill) {
  // "Hi" fills 2 of an 11-byte buffer; the tail from the first blank comes back as it was.
  EXPECT_EQ(isoDecode("=?utf-8?B?SGk=?= there"), "Hi" + std::string(10, ' ') + "there");
  EXPECT_EQ(isoDecode("=?windows-1252?b?SGk=?="), "Hi");
}

TEST(IsoDecode, Utf8IsConvertedOnlyWhenItsMarkerSurvivesTheCuts) {
  // After the "q?" cut the charset name is gone, so the UTF-8 bytes stay.
  EXPECT_EQ(isoDecode("=?utf-8?Q?Caf=C3=A9?="), "Caf\xC3\xA9");
  EXPECT_EQ(isoDecode("utf-8?Caf\xC3\xA9"), "Caf\xE9");
}

TEST(ExtractEmail, AngleBracketsCaseBlanksAndLists) {
  EXPECT_EQ(extractEmail("Ann Smith <Ann@Example.COM>"), "ann@example.com");
  EXPECT_EQ(extractEmail("<a@b.com> trailing"), "a@b.com");
  EXPECT_EQ(extractEmail("ann @ example.com"), "ann@example.com");
  EXPECT_EQ(extractEmail("a@b.com, c@d.com"), "a@b.com,");
  EXPECT_EQ(extractEmail("   "), "");
}

TEST(FirstAddressIn, TheWordAroundTheFirstAtSignOutOfItsBrackets) {
  EXPECT_EQ(firstAddressIn("Write to <Ann@Example.com> or bob@example.org"), "Ann@Example.com");
  // Only a blank ends the word, so a line end leaves the next line's first word on it.
  EXPECT_EQ(firstAddressIn("Reach me at x@y.org\r\nThanks a lot"), "x@y.org\r\nThanks");
  EXPECT_EQ(firstAddressIn("@start and more"), "@start");
  EXPECT_EQ(firstAddressIn("no address here"), "");
}

TEST(ExtractName, TextBeforeTheBracketWithoutQuotes) {
  EXPECT_EQ(extractName("\"O'Neil, Ann\" <ann@example.com>"), "ONeil, Ann");
  EXPECT_EQ(extractName("<ann@example.com>"), "<ann@example.com>");
  EXPECT_EQ(extractName("ann@example.com"), "ann@example.com");
}

TEST(QuotedPrintableDecode, SoftBreaksBecomeLineEndsUnlessTheTextMentionsEbay) {
  EXPECT_EQ(quotedPrintableDecode("abc=\r\ndef=41"), "abc\r\ndefA");
  EXPECT_EQ(quotedPrintableDecode("eBay x=\r\ny=3D1"), "eBay xy=1");
  const std::string wrapped = std::string(75, 'a') + "=\r\n" + std::string(75, 'b') + "=\r\nc";
  EXPECT_EQ(quotedPrintableDecode(wrapped), std::string(75, 'a') + std::string(75, 'b') + "c");
}

TEST(QuotedPrintableDecode, DotCodeAndCarriageReturnCodeAreLineEnds) {
  EXPECT_EQ(quotedPrintableDecode("one=2Etwo"), "one\r\ntwo");
  EXPECT_EQ(quotedPrintableDecode("a\r\nb=0Dc=0A"), "ab\r\nc");
}

TEST(QuotedPrintableDecode, StrayEqualsSignsStayAndTheResultIsTrimmed) {
  EXPECT_EQ(quotedPrintableDecode("a = b=4"), "a = b=4");
  EXPECT_EQ(quotedPrintableDecode("=20x=3d=20"), "x=");
  EXPECT_EQ(quotedPrintableDecode("no equals "), "no equals ");
}

TEST(Base64, DecodingKeepsTheBlankFillAndEncodingIsStandard) {
  EXPECT_EQ(decodeMime64("SGVs\r\nbG8="), "Hello   ");
  EXPECT_EQ(decodeMime64("S!G?V*s"), "Hel    ");
  EXPECT_EQ(decodeMime64(""), "");
  EXPECT_EQ(encodeMime64String("Hello"), "SGVsbG8=");
  EXPECT_EQ(encodeMime64String(std::string("\xFF\x00z", 3)), "/wB6");
}

}  // namespace
}  // namespace vonel::message
