#include "core/files/any_case.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/files/atomic_file.h"

namespace vonel::files {
namespace {

TEST(FileLayer, FindsANameInAnyCaseButPrefersTheExactOne) {
  testing::TempDir dir;
  writeTextFile(dir.path() / "VONEL.INI", "x");
  EXPECT_EQ(findAnyCase(dir.path(), "Vonel.ini"), dir.path() / "VONEL.INI");
  EXPECT_EQ(resolveAnyCase(dir.path(), "Paths.ini"), dir.path() / "Paths.ini");
  writeTextFile(dir.path() / "Vonel.ini", "y");
  EXPECT_EQ(findAnyCase(dir.path(), "Vonel.ini"), dir.path() / "Vonel.ini");
  EXPECT_FALSE(findAnyCase(dir.path() / "absent", "x"));
}

}  // namespace
}  // namespace vonel::files
