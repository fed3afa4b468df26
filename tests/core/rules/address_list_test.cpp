#include "core/rules/address_list.h"

#include <gtest/gtest.h>

#include "core/services/file_subs.h"
#include "../test_home.h"

namespace vonel::rules {
namespace {

class AddressListTest : public ::testing::Test {
 protected:
  std::filesystem::path file() const { return home.dir.path() / "Blocked.txt"; }
  testing::TestHome home;
};

TEST_F(AddressListTest, ReadsEntriesAsWrittenAndStopsAtARepeat) {
  files::WriteTextFile(file(), "Ann@Example.com \r\n   \r\n\r\nbob@example.com\r\nANN@example.com \r\nlate@example.com\r\n");
  AddressList list(file(), home.log);
  list.Refresh();
  EXPECT_EQ(list.size(), 2u);
  EXPECT_TRUE(list.Contains("ann@example.com "));  // untrimmed, any case
  EXPECT_FALSE(list.Contains("ann@example.com"));
  EXPECT_FALSE(list.Contains("late@example.com"));
}

TEST_F(AddressListTest, ChangesAreWrittenAndAnEmptiedListRemovesItsFile) {
  AddressList list(file(), home.log);
  list.Refresh();
  EXPECT_EQ(list.size(), 0u);
  list.Add("one@example.com");
  list.Add("two@example.com");
  list.Add("ONE@example.com");  // already there
  EXPECT_EQ(files::LoadTextFile(file()), "one@example.com\r\ntwo@example.com\r\n");
  list.Remove("TWO@EXAMPLE.COM");
  list.Remove("one@example.com");
  EXPECT_FALSE(files::FileExists(file()));
  list.Refresh();
  EXPECT_EQ(list.size(), 0u);
}

TEST_F(AddressListTest, AFileChangedElsewhereIsReadAtTheNextChange) {
  AddressList list(file(), home.log);
  list.Add("mine@example.com");
  files::WriteTextFile(file(), "theirs@example.com\r\n");
  std::filesystem::last_write_time(file(), std::filesystem::last_write_time(file()) + std::chrono::seconds(5));
  EXPECT_TRUE(list.Contains("mine@example.com"));  // look-ups never read the disk
  list.Add("third@example.com");
  EXPECT_EQ(files::LoadTextFile(file()), "theirs@example.com\r\nthird@example.com\r\n");
}

TEST(DomainOfTest, TakesWhatFollowsTheAtOfTheAddress) {
  EXPECT_EQ(DomainOf("Ann <ann@Mail.Example.com>"), "mail.example.com");
  EXPECT_EQ(DomainOf("no-at-sign"), "no-at-sign");
  EXPECT_EQ(DomainOf(" Spaced "), " Spaced ");
}

}  // namespace
}  // namespace vonel::rules
