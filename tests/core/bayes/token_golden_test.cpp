// Hand-written messages and their token tables, as `vonel-inspect tokens FILE` prints them.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/bayes/token_report.h"
#include "core/bayes/tokeniser.h"
#include "core/files/file_text.h"

namespace vonel::bayes {
namespace {

class GoldenTokens : public ::testing::TestWithParam<const char*> {};

TEST_P(GoldenTokens, TableMatches) {
  const std::filesystem::path folder = std::filesystem::path(VONEL_TEST_DATA) / "bayes";
  const std::string sample = GetParam();
  message::Message message;
  message.createFromText(files::loadTextFile(folder / (sample + ".eml")), false);
  WordTable table;
  table.initSmall();
  hashMessage(table, message, false);
  EXPECT_EQ(describeTable(table), files::loadTextFile(folder / (sample + ".tokens")));
}

// plain_offer: every address region, the Received hosts, numbers dropped and
// kept, and the last URL counted twice. html_news: a boundary skips the
// content type and all headers, and an address with a dash loses its user part.
INSTANTIATE_TEST_SUITE_P(Samples, GoldenTokens, ::testing::Values("plain_offer", "html_news"));

}  // namespace
}  // namespace vonel::bayes
