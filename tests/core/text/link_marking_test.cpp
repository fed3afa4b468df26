#include "core/text/link_marking.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vonel::text {
namespace {

std::vector<std::string> marked(std::string_view text) {
  std::vector<std::string> found;
  for (const LinkSpan& link : underlineLinks(text)) found.emplace_back(text.substr(link.start, link.length));
  return found;
}

using Links = std::vector<std::string>;

TEST(LinkMarking, AnUnderlinedStartStopsTheRestOfThatMarkersScan) {
  // The second "https:" lies in the http link, so the third stays plain.
  EXPECT_EQ(marked("http://a.com/?to=https://b.com https://c.com"), (Links{"http://a.com/?to=https://b.com"}));
  // An "@" inside a web link ends the mail scan, even before a real address.
  EXPECT_EQ(marked("http://me@site.org/ ann@example.com"), (Links{"http://me@site.org/"}));
  // Hits are exact: only the check for any hit ignores case.
  EXPECT_EQ(marked("HTTP://LOUD.COM"), Links{});
}

TEST(LinkMarking, OnlyATrailingCommaLeavesAWebLink) {
  EXPECT_EQ(marked("see www.x.com, then"), (Links{"www.x.com"}));
  EXPECT_EQ(marked("http://a.com/x,y, next"), (Links{"http://a.com/x,y"}));
  // A mail address keeps its comma: it is no stop after the "@".
  EXPECT_EQ(marked("me@host.org, you"), (Links{"me@host.org,"}));
}

TEST(LinkMarking, AMailAddressNeedsAPointAndSomethingBeforeTheAt) {
  EXPECT_EQ(marked("me@host and @name.org"), Links{});
  EXPECT_EQ(marked("to:me@host.org"), (Links{"me@host.org"}));
  EXPECT_EQ(marked("a,b@c.d"), (Links{"b@c.d"}));
}

TEST(LinkMarking, TheEndIsSoughtFromTheStartNotFromTheMarker) {
  // ")" ends a link but does not start one, so the stretch before it is taken.
  EXPECT_EQ(marked("a)http://b.com"), (Links{"a"}));
  EXPECT_EQ(marked("x(http://b.com) y"), (Links{"http://b.com"}));
}

TEST(LinkMarking, ManyMarkersGiveOneLinkEachWithoutRescanning) {
  std::string text;
  for (int i = 0; i < 10000; ++i) text += "a@b.c ";
  EXPECT_EQ(underlineLinks(text).size(), 10000u);

  // No point anywhere: a search of the rest for one per "@" grows with the square.
  const std::string noPoint = [] {
    std::string body;
    for (int i = 0; i < 200000; ++i) body += "x@y,";
    return body;
  }();
  EXPECT_TRUE(underlineLinks(noPoint).empty());

  const std::string line = std::string(20'000'000, 'w') + " www.end.org";
  EXPECT_EQ(marked(line).back(), "www.end.org");
}

}  // namespace
}  // namespace vonel::text
