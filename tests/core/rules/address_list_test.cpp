#include "core/rules/address_list.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::rules {
namespace {

class AddressListTest : public ::testing::Test {
 protected:
  std::filesystem::path file() const { return home.dir.path() / "Blocked.txt"; }
  testing::TestHome home;
};

TEST_F(AddressListTest, ReadsEntriesAsWrittenAndStopsAtARepeat) {
  files::writeTextFile(file(), "Ann@Example.com \r\n   \r\n\r\nbob@example.com\r\nANN@example.com \r\nlate@example.com\r\n");
  AddressList list(file(), home.log, home.prompt);
  list.refresh();
  EXPECT_EQ(list.size(), 2u);
  EXPECT_TRUE(list.contains("ann@example.com "));  // untrimmed, any case
  EXPECT_FALSE(list.contains("ann@example.com"));
  EXPECT_FALSE(list.contains("late@example.com"));
}

TEST_F(AddressListTest, ChangesAreWrittenAndAnEmptiedListRemovesItsFile) {
  AddressList list(file(), home.log, home.prompt);
  list.refresh();
  EXPECT_EQ(list.size(), 0u);
  list.add("one@example.com");
  list.add("two@example.com");
  list.add("ONE@example.com");  // already there
  EXPECT_EQ(files::loadTextFile(file()), "one@example.com\r\ntwo@example.com\r\n");
  list.remove("TWO@EXAMPLE.COM");
  list.remove("one@example.com");
  EXPECT_FALSE(files::fileExists(file()));
  list.refresh();
  EXPECT_EQ(list.size(), 0u);
}

TEST_F(AddressListTest, AFileChangedElsewhereIsReadAtTheNextChange) {
  AddressList list(file(), home.log, home.prompt);
  list.add("mine@example.com");
  files::writeTextFile(file(), "theirs@example.com\r\n");
  std::filesystem::last_write_time(file(), std::filesystem::last_write_time(file()) + std::chrono::seconds(5));
  EXPECT_TRUE(list.contains("mine@example.com"));  // look-ups never read the disk
  list.add("third@example.com");
  EXPECT_EQ(files::loadTextFile(file()), "theirs@example.com\r\nthird@example.com\r\n");
}

TEST_F(AddressListTest, LinesThatAreNoEntriesStayInPlace) {
  files::writeTextFile(file(), "a@example.com\r\n\r\n   \nb@example.com\r\nA@EXAMPLE.COM\r\nunread@example.com\r\n");
  AddressList list(file(), home.log, home.prompt);
  list.add("new@example.com");
  // The entries after the repeat stay unread, after everything, so the new one is read next time.
  EXPECT_EQ(files::loadTextFile(file()),
            "a@example.com\r\n\r\n   \r\nb@example.com\r\nnew@example.com\r\nA@EXAMPLE.COM\r\nunread@example.com\r\n");
  list.remove("a@example.com");
  list.remove("b@example.com");
  list.remove("new@example.com");
  EXPECT_EQ(files::loadTextFile(file()), "\r\n   \r\nA@EXAMPLE.COM\r\nunread@example.com\r\n");
}

TEST_F(AddressListTest, AnUnreadableListIsSetAsideBeforeItIsWritten) {
  std::filesystem::create_directory(file());
  AddressList list(file(), home.log, home.prompt);
  list.add("one@example.com");
  EXPECT_NE(home.prompt.lastError.find("Blocked.txt could not be read"), std::string::npos);
  EXPECT_EQ(files::loadTextFile(file()), "one@example.com\r\n");
  EXPECT_TRUE(std::filesystem::is_directory(home.dir.path() / "Blocked.txt.bad-20261123-093015"));
}

TEST(DomainOfTest, TakesWhatFollowsTheAtOfTheAddress) {
  EXPECT_EQ(domainOf("Ann <ann@Mail.Example.com>"), "mail.example.com");
  EXPECT_EQ(domainOf("no-at-sign"), "no-at-sign");
  EXPECT_EQ(domainOf(" Spaced "), " Spaced ");
}

}  // namespace
}  // namespace vonel::rules
