// Hand-written messages and what vonel-inspect prints for them. To look at
// one by hand: vonel-inspect message FILE [--headers-only] --now "2026-01-02 03:04:05" --bias 0
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "core/message/message.h"
#include "core/message/message_report.h"
#include "core/files/file_text.h"

namespace vonel::message {
namespace {

struct GoldenCase {
  const char* sample;
  bool headerOnly;
};

const GoldenCase kCases[] = {
    {"folding", false},       {"folding", true},       {"encoded_words", false}, {"encoded_words", true},
    {"store_flags", false},   {"store_flags", true},   {"no_blank_line", false}, {"multipart_alternative", false},
    {"attachments", false},   {"html_only", false},    {"nested_parts", false},
};

// The first line that differs, so a failure says where without a wall of text.
std::string firstDifference(const std::string& expected, const std::string& actual) {
  std::istringstream want(expected);
  std::istringstream got(actual);
  std::string wantLine;
  std::string gotLine;
  for (int line = 1;; ++line) {
    const bool moreWanted = static_cast<bool>(std::getline(want, wantLine));
    const bool moreGot = static_cast<bool>(std::getline(got, gotLine));
    if (!moreWanted && !moreGot) return "identical";
    if (wantLine != gotLine || moreWanted != moreGot) {
      return "line " + std::to_string(line) + "\n  expected: " + wantLine + "\n  actual:   " + gotLine;
    }
  }
}

class GoldenMessage : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenMessage, InspectOutputMatches) {
  const auto& [sample, headerOnly] = GetParam();
  const std::filesystem::path folder = std::filesystem::path(VONEL_TEST_DATA) / "messages";
  const std::string expected =
      files::loadTextFile(folder / (std::string(sample) + (headerOnly ? ".headers.out" : ".out")));

  const FixedClock clock(text::DateTime{2026, 1, 2, 3, 4, 5});
  Message message(nullptr, &clock);
  message.createFromText(files::loadTextFile(folder / (std::string(sample) + ".eml")), headerOnly);
  const std::string actual = describeMessage(message, 0);
  EXPECT_TRUE(actual == expected) << firstDifference(expected, actual);
}

INSTANTIATE_TEST_SUITE_P(Samples, GoldenMessage, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<GoldenCase>& info) {
                           return std::string(info.param.sample) + (info.param.headerOnly ? "_headers" : "_full");
                         });

}  // namespace
}  // namespace vonel::message
