#include "core/text/markup.h"

#include <gtest/gtest.h>

#include "core/text/shared_text.h"

namespace vonel::text {
namespace {

std::string constToChar(std::string text) {
  htmlConstToChar(text);
  return text;
}

std::string stripped(std::string text) {
  stripHtml(text);
  return text;
}

TEST(HtmlConstToChar, DecimalReferencesBecomeBytesBelow255AndOthersGo) {
  EXPECT_EQ(constToChar("&#65;BC"), "ABC");
  EXPECT_EQ(constToChar("a&#300;b&#0;c&#x41;d"), "abcd");
  EXPECT_EQ(constToChar("&#65;&#65;&#66;"), "AAB");
  EXPECT_EQ(constToChar("no end &#65"), "no end &#65");
}

TEST(HtmlConstToChar, EachDistinctReferenceResolvesEveryCopyOfItInTurn) {
  // The first reference takes its copy out of the unfinished one behind it.
  EXPECT_EQ(constToChar("&#49; &#50 &#49;"), "1 &#50 1");
  // Deleting a reference can join "&" and "#" into a new one.
  EXPECT_EQ(constToChar("&&#300;#66;"), "B");
  EXPECT_EQ(constToChar("&#38;#67;"), "C");
  std::string many;
  for (int code = 10000; code < 60000; ++code) many += "&#" + std::to_string(code) + ";x";
  EXPECT_TRUE(constToChar(many) == std::string(50000, 'x'));
}

TEST(HtmlConstToChar, TypographicFormsAndTheEnDashAsThreeDots) {
  EXPECT_EQ(constToChar("wait&HELLIP; &#8211; &#8220;q&#8221; &#8217;"), "wait... ... \"q\" '");
  EXPECT_EQ(constToChar("&bull;&#8364;"), "\x95\x80");
  EXPECT_EQ(constToChar("&prime;&Prime;&PRIME;"), "'\"&PRIME;");
}

TEST(StripHtml, TagsAndBareStyleBlocksGo) {
  EXPECT_EQ(stripped("<p>Hi <b>there</b></p>"), "Hi there");
  EXPECT_EQ(stripped("a<STYLE>p{}</style>b<style>x</Style>c"), "abc");
  EXPECT_EQ(stripped("a<style type=x>p{}</style>b"), "ap{}b");
  EXPECT_EQ(stripped("a<style>never closed"), "anever closed");
}

TEST(StripHtml, UnbalancedBracketsAreKept) {
  EXPECT_EQ(stripped("3 < 4 and more"), "3 < 4 and more");
  EXPECT_EQ(stripped("5 > 4"), "5 > 4");
  EXPECT_EQ(stripped("x<a>y<b"), "xy<b");
}

TEST(SharedText, EatCrapAtEitherEnd) {
  std::string text = "-- Regards - - \r\n";
  trimJunkFromEnd(text);
  EXPECT_EQ(text, "-- Regards");
  trimJunkFromStart(text);
  EXPECT_EQ(text, "Regards");
  text = " - ";
  trimJunkFromEnd(text);
  EXPECT_EQ(text, "");
}

TEST(SharedText, CleaningAndComparing) {
  std::string name = "Jos\xE9 O'Neil 2!";
  removeNonAlphaNumeric(name);
  EXPECT_EQ(name, "Jos ONeil 2");
  EXPECT_EQ(cleanString("Re: a/b \"c\""), "Re  a b  c");
  EXPECT_EQ(cleanString("CON"), "CON1");
  EXPECT_EQ(cleanString("con"), "con");
  EXPECT_TRUE(stringsEqual(" Inbox ", "INBOX"));
  EXPECT_TRUE(containsNoCase("Hello World", "WORLD"));
  EXPECT_FALSE(containsNoCase("Hello", "bye"));
}

TEST(SharedText, ByteLevelHelpers) {
  std::string text = "a  b   c";
  removeExtraSpaces(text);
  EXPECT_EQ(text, "a b c");
  removeChar(text, " xyz");
  EXPECT_EQ(text, "abc");
  removeChar(text, "");
  EXPECT_EQ(text, "abc");
  text = std::string("ab\0cd", 5);
  cutOffNull(text);
  EXPECT_EQ(text, "ab");
  EXPECT_EQ(trimBlanksAndNulls(std::string(" \0x y\0 ", 7)), "x y");
  EXPECT_EQ(wordCount(" one\ttwo\r\nthree "), 3u);
}

}  // namespace
}  // namespace vonel::text

#include "core/text/link_marking.h"

namespace vonel::text {
namespace {

std::vector<std::string> links(std::string_view text) {
  std::vector<std::string> found;
  for (const auto& link : underlineLinks(text)) found.emplace_back(text.substr(link.start, link.length));
  return found;
}

TEST(UnderlineLinks, WebAndMailAddressesWithTheirStopCharacters) {
  EXPECT_EQ(links("See (http://a.example/x), mail \"Ann\" <ann@example.com>; ftp:files"),
            (std::vector<std::string>{"http://a.example/x", "ftp:files", "ann@example.com"}));
  EXPECT_EQ(links("go to www.example.com, now"), (std::vector<std::string>{"www.example.com"}));
  EXPECT_EQ(links("to:me@host.org, @name.org and a@b"), (std::vector<std::string>{"me@host.org,"}));
}

TEST(UnderlineLinks, AMarkerInsideAnEarlierLinkStopsThatMarkersScan) {
  // "www." first meets the http link, so the plain www address after it stays plain.
  EXPECT_EQ(links("http://www.a.com www.b.com"), (std::vector<std::string>{"http://www.a.com"}));
  EXPECT_EQ(links(std::string(100000, '@')), std::vector<std::string>{});
}

TEST(CleanWord, UndoesTheDisguisesInTheirOrder) {
  EXPECT_EQ(cleanWord("V1.AGRA"), "ViAGRA");
  EXPECT_EQ(cleanWord("fr__ee: c()()l 0ff3r"), "fr  ee cool off3r");
  EXPECT_EQ(cleanWord("(.)-{~}"), "o");  // the dropped point joins the brackets first
  EXPECT_EQ(cleanWord("m@il's, ((x)"), "mails x");
}

}  // namespace
}  // namespace vonel::text
