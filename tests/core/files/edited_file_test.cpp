#include "core/files/edited_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::files {
namespace {

namespace fs = std::filesystem;

class EditedFileTest : public ::testing::Test {
 protected:
  fs::path file() const { return home.dir.path() / "Vonel.ini"; }
  // The stamp is the test clock's moment.
  fs::path badCopy() const { return home.dir.path() / "Vonel.ini.bad-20261123-093015"; }
  testing::TestHome home;
  EditedFile edited{home.log, home.prompt};
};

TEST_F(EditedFileTest, AMissingFileIsNoFaultAndAReadableOneIsReplacedFreely) {
  EXPECT_FALSE(edited.read(file()).has_value());
  EXPECT_TRUE(home.prompt.lastError.empty());
  EXPECT_TRUE(edited.mayReplace(file()));

  writeTextFile(file(), "A,1\r\n");
  EXPECT_EQ(edited.read(file()), "A,1\r\n");
  EXPECT_TRUE(edited.mayReplace(file()));
  EXPECT_TRUE(fileExists(file()));
  EXPECT_FALSE(fs::exists(badCopy()));
}

TEST_F(EditedFileTest, AFolderInThePlaceOfTheFileIsToldAndSetAsideBeforeAWrite) {
  fs::create_directory(file());
  writeTextFile(file() / "inside", "kept");
  EXPECT_FALSE(edited.read(file()).has_value());
  EXPECT_NE(home.prompt.lastError.find("Vonel.ini could not be read (a folder stands in its place)"),
            std::string::npos);
  EXPECT_NE(home.prompt.lastError.find("keeps it as Vonel.ini.bad-20261123-093015"), std::string::npos);
  EXPECT_TRUE(fs::is_directory(file()));  // nothing changes before a write

  home.prompt.lastError.clear();
  ASSERT_TRUE(edited.mayReplace(file()));
  EXPECT_FALSE(fs::exists(file()));
  EXPECT_EQ(loadTextFile(badCopy() / "inside"), "kept");
  EXPECT_TRUE(home.prompt.lastError.empty());  // the user was told at the read
}

TEST_F(EditedFileTest, ASecondCopyInTheSameSecondGetsItsOwnName) {
  writeTextFile(badCopy(), "earlier");
  fs::create_directory(file());
  EXPECT_TRUE(edited.mayReplace(file()));  // found only now: the user is told now
  EXPECT_NE(home.prompt.lastError.find("kept as Vonel.ini.bad-20261123-093015-2"), std::string::npos);
  EXPECT_EQ(loadTextFile(badCopy()), "earlier");
  EXPECT_TRUE(fs::is_directory(home.dir.path() / "Vonel.ini.bad-20261123-093015-2"));
}

TEST_F(EditedFileTest, WhenTheCopyFailsTheFileIsLeftAloneAndTheUserToldOnce) {
  // A name so long that the copy's name is too long for the file system.
  const fs::path longName = home.dir.path() / std::string(250, 'n');
  fs::create_directory(longName);
  EXPECT_FALSE(edited.read(longName).has_value());
  EXPECT_FALSE(edited.mayReplace(longName));
  EXPECT_NE(home.prompt.lastError.find("it was left as it is, and the changes to it were not saved"),
            std::string::npos);
  EXPECT_TRUE(fs::is_directory(longName));
  home.prompt.lastError.clear();
  EXPECT_FALSE(edited.mayReplace(longName));
  EXPECT_TRUE(home.prompt.lastError.empty());
}

TEST_F(EditedFileTest, AFileWithoutReadPermissionIsSetAside) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  writeTextFile(file(), "SECRET,1\r\n");
  fs::permissions(file(), fs::perms::none);
  EXPECT_FALSE(edited.read(file()).has_value());
  EXPECT_NE(home.prompt.lastError.find("(Permission denied)"), std::string::npos);
  ASSERT_TRUE(edited.mayReplace(file()));
  fs::permissions(badCopy(), fs::perms::owner_read);
  EXPECT_EQ(loadTextFile(badCopy()), "SECRET,1\r\n");
}

TEST_F(EditedFileTest, APipeIsNeverOpened) {
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_FALSE(edited.read(file()).has_value());
  EXPECT_NE(home.prompt.lastError.find("(it is not a file)"), std::string::npos);
  EXPECT_TRUE(edited.mayReplace(file()));
  EXPECT_EQ(fs::status(badCopy()).type(), fs::file_type::fifo);
}

}  // namespace
}  // namespace vonel::files
