#include "core/message/preview_body.h"

#include <gtest/gtest.h>

#include <string>

namespace vonel::message {
namespace {

TEST(PreviewBody, EveryLineEndGetsTwoBlanksBeforeIt) {
  EXPECT_EQ(previewBody("one\r\ntwo \r\n\r\nthree"), "one  \r\ntwo   \r\n  \r\nthree");
  EXPECT_EQ(previewBody("ends with a break\r\n"), "ends with a break  \r\n");
  // A lone CR or LF is no line end here.
  EXPECT_EQ(previewBody("a\rb\nc"), "a\rb\nc");
}

TEST(PreviewBody, LeadingEmptyLinesAndBlanksGo) {
  EXPECT_EQ(previewBody("\r\n\r\n   \r\n  Hello\r\n"), "Hello  \r\n");
  EXPECT_EQ(previewBody(" \r\n\tindented by a tab"), "\tindented by a tab");
  EXPECT_EQ(previewBody(" \r\n \r\n"), "");
  EXPECT_EQ(previewBody(""), "");
}

TEST(PreviewBody, AHugeBodyKeepsEveryByte) {
  std::string body(5'000'000, 'x');
  body += "\r\n";
  body += std::string(5'000'000, 'y');
  const std::string shown = previewBody(body);
  ASSERT_EQ(shown.size(), body.size() + 2);
  EXPECT_EQ(shown.substr(4'999'998, 8), "xx  \r\nyy");
}

}  // namespace
}  // namespace vonel::message
