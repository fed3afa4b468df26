#include "core/files/file_info.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"

namespace vonel::files {
namespace {

TEST(FileLayer, ReadOnlyFlagsSizesAndMissingFiles) {
  testing::TempDir dir;
  const auto file = dir.path() / "f";
  writeTextFile(file, "12345");
  EXPECT_EQ(fileSize(file), 5u);
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_TRUE(isReadOnly(file));
  EXPECT_TRUE(makeReadWrite(file));
  EXPECT_FALSE(isReadOnly(file));
  EXPECT_TRUE(eraseFile(file));
  EXPECT_TRUE(eraseFile(file));  // gone already is fine
  EXPECT_FALSE(fileSize(file));
  EXPECT_THROW(loadTextFile(file), AppError);
  EXPECT_TRUE(ensureFolder(dir.path() / "a" / "b" / "c"));
}

}  // namespace
}  // namespace vonel::files
