#include "core/files/path_text.h"

#include <gtest/gtest.h>

namespace vonel::files {
namespace {

TEST(FileLayer, SettingsTextBecomesAPathAndBack) {
  const std::string text = "/tmp/Caf\xE9";
  EXPECT_EQ(textFromPath(pathFromText(text)), text);
  EXPECT_EQ(pathFromText(text).string(), "/tmp/Caf\xC3\xA9");
}

}  // namespace
}  // namespace vonel::files
