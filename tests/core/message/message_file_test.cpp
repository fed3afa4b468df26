#include "core/message/message_file.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::message {
namespace {

namespace fs = std::filesystem;

class MessageFileTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  const fs::path& folder() { return home.dir.path(); }
  fs::path write(const std::string& name, const std::string& text) {
    files::writeTextFile(folder() / name, text);
    return folder() / name;
  }
  std::vector<std::string> names() {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(folder())) {
      if (entry.path().filename() != "log.txt") result.push_back(entry.path().filename().string());
    }
    std::sort(result.begin(), result.end());
    return result;
  }
  std::string logText() {
    home.log.writeActionsToLog();
    return files::loadTextFile(home.log.currentLogFilename());
  }
};

TEST_F(MessageFileTest, AHeaderReadTakesTheHeadersAndTheFilesTrueSizeAndTime) {
  const std::string body(5000, 'x');
  const fs::path file = write("A.EML", "Subject: Hi\r\nX-Message-Tags: work\r\n\r\n" + body);
  fs::last_write_time(file, fs::last_write_time(file) - std::chrono::hours(30));
  const Message m = readMessageHeader(file, home.log);
  EXPECT_EQ(m.subject, "Hi");
  EXPECT_EQ(m.tags(), "work");
  EXPECT_EQ(m.messageBody(), " ");
  EXPECT_EQ(m.size, 5.0f);
  EXPECT_EQ(m.filename(), file.string());
  EXPECT_EQ(m.fileDate, *files::fileDate(file));
  EXPECT_EQ(m.receiveDate, text::formatStoreDate(m.fileDate));
  EXPECT_EQ(readMessageFull(file, home.log).messageBody(), body);
}

TEST_F(MessageFileTest, AHeaderReadRepairsCutAndBareLineEndBlocks) {
  std::string headers;
  for (int i = 0; headers.size() < 12000; ++i) headers += "X-Filler-" + std::to_string(i) + ": some text\r\n";
  const Message cut = readMessageHeader(write("LONG.EML", "Subject: Long\r\n" + headers + "\r\nbody"), home.log);
  EXPECT_EQ(cut.subject, "Long");
  EXPECT_LE(cut.headers.size(), 10000u);

  const fs::path bare = write("BARE.EML", "Subject: Bare\nFrom: a@b.c\n\nbody\n");
  EXPECT_EQ(readMessageHeader(bare, home.log).subject, "Bare");
  EXPECT_EQ(readMessageFull(bare, home.log).subject, "");
  EXPECT_NE(logText().find("Invalid message format"), std::string::npos);
}

TEST_F(MessageFileTest, MissingAndEmptyFilesGiveAnEmptyMessage) {
  EXPECT_EQ(readMessageHeader(folder() / "NONE.EML", home.log).filename(), "");
  EXPECT_EQ(readMessageFull(write("EMPTY.EML", ""), home.log).filename(), "");
}

TEST_F(MessageFileTest, SavingInTheOtherReadStateLeavesExactlyOneFileInTheRightCase) {
  const fs::path file = write("HELLO (093015-261123).EML", "Subject: Hello\r\n\r\nbody\r\n");
  Message m = readMessageFull(file, home.log);
  m.read = true;
  saveMessage(m, home.log);
  EXPECT_EQ(names(), std::vector<std::string>{"hello (093015-261123).eml"});
  const Message again = readMessageFull(folder() / "hello (093015-261123).eml", home.log);
  EXPECT_TRUE(again.read);
  EXPECT_EQ(again.messageBody(), "body\r\n");

  // An unread message given a lower-case name still lands under the upper-case one.
  m.read = false;
  m.setFilename((folder() / "hello (093015-261123).eml").string());
  saveMessage(m, home.log);
  EXPECT_EQ(names(), std::vector<std::string>{"HELLO (093015-261123).EML"});
}

TEST_F(MessageFileTest, NamesInOneSecondCountUpAndKeepOnlyPlainCharacters) {
  const FixedClock& clock = home.clock;  // 2026-11-23 09:30:15
  const fs::path first = getUnusedFilename(false, folder(), "Re: Lunch (was: dinner)", "eml", clock);
  EXPECT_EQ(first.filename(), "RE LUNCH (093015-261123).EML");
  write(first.filename().string(), "x");
  EXPECT_EQ(getUnusedFilename(false, folder(), "Re: Lunch", ".eml", clock).filename(), "RE LUNCH (093015-261123) 1.EML");
  write("re lunch (093015-261123) 1.eml", "x");  // taken in the other case counts too
  EXPECT_EQ(getUnusedFilename(true, folder(), "Re: Lunch", ".EML", clock).filename(), "re lunch (093015-261123) 2.eml");
  EXPECT_EQ(getUnusedFilename(false, folder(), "?!*", ".eml", clock).filename(), "MESSAGE (093015-261123).EML");
}

TEST_F(MessageFileTest, ASelectionBecomesAnUnreadMessageMarkedAsAPart) {
  const fs::path original = write("mail (093015-261123).eml", "Subject: Plans\r\nFrom: a@b.c\r\n\r\nOne. Two. Three.\r\n");
  const Message part = duplicateSelection(original, "Two.", home.log, home.clock);
  EXPECT_EQ(part.subject, "PART: Plans");
  EXPECT_EQ(fs::path(part.filename()).filename(), "DUPEMSG (093015-261123).EML");
  const Message stored = readMessageFull(part.filename(), home.log);
  EXPECT_EQ(stored.subject, "Plans");
  EXPECT_EQ(stored.messageBody(), "Two.");
  EXPECT_FALSE(stored.read);
}

}  // namespace
}  // namespace vonel::message
