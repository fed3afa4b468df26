#include "core/text/strings.h"

#include <gtest/gtest.h>

#include "core/text/cp1252.h"
#include "core/text/keyed_collection.h"

namespace vonel::text {
namespace {

TEST(OneBasedPositions, FindCountsFromOneAndGivesZeroWhenAbsent) {
  EXPECT_EQ(find("abcabc", "c"), 3u);
  EXPECT_EQ(find("abcabc", "c", 4), 6u);
  EXPECT_EQ(find("abc", "x"), 0u);
  EXPECT_EQ(find("abc", "", 2), 2u);
  EXPECT_EQ(find("abc", "a", 5), 0u);
  EXPECT_EQ(find("abc", "a", 0), 0u);
  EXPECT_EQ(findNoCase("Hello WORLD", "world"), 7u);
  EXPECT_EQ(findNoCase("\xC9t\xE9", "\xE9T\xC9"), 1u);  // accented letters fold too
  EXPECT_EQ(findLast("a.b.c", "."), 4u);
  EXPECT_EQ(findLast("a.b.c", ".", 3), 2u);
}

TEST(OneBasedPositions, MidLeftRightStayInsideTheText) {
  EXPECT_EQ(mid("Hello", 2, 3), "ell");
  EXPECT_EQ(mid("Hello", 4), "lo");
  EXPECT_EQ(mid("Hello", 9), "");
  EXPECT_EQ(mid("Hello", 0), "");
  EXPECT_EQ(left("Hello", 9), "Hello");
  EXPECT_EQ(right("Hello", 2), "lo");
  EXPECT_EQ(right("Hello", 9), "Hello");
}

TEST(Replace, DoesNotRescanWhatItInserted) {
  EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(replaceAllNoCase("Ab ab AB", "ab", "x"), "x x x");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
  EXPECT_EQ(split("a,,b", ","), (std::vector<std::string>{"a", "", "b"}));
  EXPECT_EQ(trim("  a b  "), "a b");
  EXPECT_EQ(trim("\ta\t"), "\ta\t");  // only blanks are trimmed
}

TEST(Replacement, CaseRuleAndNoRescanOfWhatWasInserted) {
  std::string text = "Aa aA";
  replaceAllNoCaseInPlace(text, "a", "aa");
  EXPECT_EQ(text, "aaaa aaaa");
  text = "Aa aA";
  replaceAllInPlace(text, "a", "b");
  EXPECT_EQ(text, "Ab bA");
  text = "xXx";
  replaceAllNoCaseInPlace(text, "x", "");
  EXPECT_EQ(text, "");
}

TEST(CodePage, RoundTripsEveryByteThroughUtf8) {
  std::string all;
  for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(utf8ToCp1252(cp1252ToUtf8(all)), all);
  EXPECT_EQ(cp1252ToUtf8("\x80"), "\xE2\x82\xAC");  // the euro sign
  EXPECT_EQ(utf8ToCp1252("\xE4\xB8\xAD"), "?");     // no such character in the code page
  EXPECT_EQ(utf8ToCp1252("\xC3"), "?");             // cut short
}

TEST(KeyedCollection, KeepsOrderAndIgnoresCaseOfKeys) {
  KeyedCollection<int> c;
  EXPECT_TRUE(c.add("One", 1));
  EXPECT_TRUE(c.add("Two", 2));
  EXPECT_TRUE(c.add("Three", 3));
  EXPECT_FALSE(c.add("TWO", 22));
  EXPECT_EQ(*c.find("two"), 2);
  EXPECT_TRUE(c.remove("ONE"));
  EXPECT_EQ(c.at(0).key, "Two");
  EXPECT_EQ(*c.find("three"), 3);
  EXPECT_EQ(c.indexOf("Three"), 1u);
  EXPECT_EQ(c.find("one"), nullptr);
}

}  // namespace
}  // namespace vonel::text
