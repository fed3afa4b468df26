#include "core/bayes/tokeniser.h"

#include <gtest/gtest.h>

#include "core/bayes/token_report.h"

namespace vonel::bayes {
namespace {

std::string fieldTokens(const std::string& text, std::string_view prefix) {
  WordTable table;
  table.initSmall();
  breakAndHash(table, text, prefix);
  return describeTable(table);
}

std::string urlTokens(const std::string& body) {
  WordTable table;
  table.initSmall();
  hashUrls(table, body);
  return describeTable(table);
}

TEST(TokeniserSubject, ThreeFormsOfTheSubject) {
  message::Message message;
  message.subject = "Buy 100 pills";
  WordTable table;
  table.initSmall();
  hashMessage(table, message, true);
  EXPECT_EQ(describeTable(table),
            "1\tSUB*Buy 100 pills\n1\tSUB*Buy\n1\tSUB*100\n1\tSUB*pills\n"
            "1\tSB-LN*Buy_100_pills\n1\tSB-ND*Buy__pills\n");

  message.subject = "Hello there";
  table.clear();
  table.initSmall();
  hashMessage(table, message, true);
  EXPECT_EQ(describeTable(table), "1\tSUB*Hello there\n1\tSUB*Hello\n1\tSUB*there\n1\tSB-LN*Hello_there\n");
}

TEST(TokeniserFields, LengthLimitsOfWordsAndPhrases) {
  const std::string word35(35, 'a');
  EXPECT_EQ(fieldTokens(word35, "UA*"), "1\tUA*" + word35 + "\n");
  EXPECT_EQ(fieldTokens(word35 + "a", "UA*"), "");
  EXPECT_EQ(fieldTokens("ab", "UA*"), "");

  const std::string phrase50 = std::string(24, 'x') + " " + std::string(25, 'y');
  EXPECT_EQ(fieldTokens(phrase50, "SUB*").substr(0, 57), "1\tSUB*" + phrase50 + "\n");
  EXPECT_EQ(fieldTokens(phrase50 + "y", "SUB*").find(phrase50), std::string::npos);
}

TEST(TokeniserFields, SeparatorsAndCleaning) {
  EXPECT_EQ(fieldTokens("<!-- x -->", "SUB*"), "1\tSUB*<!-- x -->\n") << "the dashes cut the comment word short";
  EXPECT_EQ(fieldTokens("<!--x", "HDR*"), "1\tHDR*HTMLCOMMENT\n");
  EXPECT_EQ(fieldTokens("abc>def(ghi)", "UA*"), "1\tUA*abc\n1\tUA*def\n1\tUA*ghi\n") << "'>' ends a word";
  EXPECT_EQ(fieldTokens("x-1=2,3", "HDR*"), "1\tHDR*x-1=23\n") << "no separators under HDR*, but commas are cleaned";
  EXPECT_EQ(fieldTokens("Kind: 12345 {ab}c", "HDR*"), "1\tHDR*Kind: 12345 {ab}c\n1\tHDR*abc\n");
  EXPECT_EQ(fieldTokens("one\r\ntwo\tthree", "UA*"),
            "1\tUA*one two three\n1\tUA*one\n1\tUA*two\n1\tUA*three\n");
  EXPECT_EQ(fieldTokens("123 +4-5 abc", "XMLR*"), "1\tXMLR*123 +4-5 abc\n1\tXMLR*abc\n") << "numbers are dropped";
  EXPECT_EQ(fieldTokens("multipart/mixed; boundary=abc", "CT*"), "");
  EXPECT_EQ(fieldTokens("text/plain; charset=x", "CT*"), "1\tCT*text/plain; charset=x\n1\tCT*text/plain\n");
}

TEST(TokeniserFields, AddressesYieldTheirHostInPieces) {
  EXPECT_EQ(fieldTokens("bob@mail.example.org", "FRM*"),
            "1\tFRM*bob@mail.example.org\n1\tFRM*mail.example.org\n1\tFRM*mail\n1\tFRM*.example\n1\tFRM*.org\n");
  EXPECT_EQ(fieldTokens("bob@", "FRM*"), "1\tFRM*bob@\n");
  EXPECT_EQ(fieldTokens("Word.with.dots", "").find("Wordwithdots"), 2u) << "no prefix: the dots go";
}

TEST(TokeniserFields, ReceivedGivesUnprefixedHosts) {
  EXPECT_EQ(fieldTokens("from mail.example.org (HELO x.example.org)", "RCT*"),
            "1\tRCT*from mail.example.org (HELO x.example.org)\n1\tfrom mail.example.org\n1\tx.example.org\n");
  EXPECT_EQ(fieldTokens(" from network; by host", "RCT*"), "1\tRCT* from network; by host\n");
}

TEST(TokeniserWords, CleaningFunctions) {
  EXPECT_EQ(cleanThisWord(" <a`b~c^d'e\"f,g(h)i{j}k[l]m\x01\x1e\x1f> "), "abcdefghijklm\x1f");
  EXPECT_TRUE(allNumerics(""));
  EXPECT_TRUE(allNumerics("+1-2"));
  EXPECT_FALSE(allNumerics("1.2"));
  EXPECT_EQ(cleanNumbers("a1b22c"), "abc");
  EXPECT_EQ(extractIfUrl("Click:HTTP://user@Host.org/path"), "Host.org");
  EXPECT_EQ(extractIfUrl("x@www.host.org"), "www.host.org") << "cut to the marker";
  EXPECT_EQ(extractIfUrl("user@host.org"), "user@host.org") << "no path, the user part stays";
  EXPECT_EQ(extractIfUrl("www.a.b/c@d"), "www.a.b");
}

TEST(TokeniserWords, GetLowestMovesToTheLastCharacterOfAnEarlierMatch) {
  std::size_t lowest = 0;
  getLowest(1, "abc>def", ">", lowest);
  EXPECT_EQ(lowest, 4u);
  getLowest(1, "ab www.x", "www.", lowest);
  EXPECT_EQ(lowest, 4u) << "a later match leaves it";
  lowest = 9;
  getLowest(1, "ab www.x", "www.", lowest);
  EXPECT_EQ(lowest, 7u);
}

TEST(TokeniserUrls, HostsOfLinksAndTheLastOneTwice) {
  EXPECT_EQ(urlTokens("visit www.Example.org/page now"), "2\tURL*.example.org\n");
  EXPECT_EQ(urlTokens("a http://one.example.net/x and https://two.example.net/y"),
            "1\tURL*one.example.net\n2\tURL*two.example.net\n");
  EXPECT_EQ(urlTokens("http://first.example.org/ only"), "") << "a link at the very start is not seen";
  EXPECT_EQ(urlTokens(" http://user@shop.example.com/x"), "2\tURL*shop.example.com\n") << "stops at .com";
  EXPECT_EQ(urlTokens("no links here"), "");
  EXPECT_EQ(urlTokens(" http://x.y"), "") << "no end to the host";
}

}  // namespace
}  // namespace vonel::bayes
