#include "core/message/message_file.h"

#include <gtest/gtest.h>

#include "core/services/file_subs.h"
#include "../test_home.h"

namespace vonel::message {
namespace {

namespace fs = std::filesystem;

class MessageFileTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  const fs::path& folder() { return home.dir.path(); }
  fs::path write(const std::string& name, const std::string& text) {
    files::WriteTextFile(folder() / name, text);
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
    home.log.WriteActionsToLog();
    return files::LoadTextFile(home.log.CurrentLogFilename());
  }
};

TEST_F(MessageFileTest, AHeaderReadTakesTheHeadersAndTheFilesTrueSizeAndTime) {
  const std::string body(5000, 'x');
  const fs::path file = write("A.EML", "Subject: Hi\r\nX-Message-Tags: work\r\n\r\n" + body);
  fs::last_write_time(file, fs::last_write_time(file) - std::chrono::hours(30));
  const clsMessage m = ReadMessageHeader(file, home.log);
  EXPECT_EQ(m.Subject, "Hi");
  EXPECT_EQ(m.Tags(), "work");
  EXPECT_EQ(m.MessageBody(), " ");
  EXPECT_EQ(m.Size, 5.0f);
  EXPECT_EQ(m.Filename(), file.string());
  EXPECT_EQ(m.FileDate, *files::FileDate(file));
  EXPECT_EQ(m.ReceiveDate, text::formatStoreDate(m.FileDate));
  EXPECT_EQ(ReadMessageFull(file, home.log).MessageBody(), body);
}

TEST_F(MessageFileTest, AHeaderReadRepairsCutAndBareLineEndBlocks) {
  std::string headers;
  for (int i = 0; headers.size() < 12000; ++i) headers += "X-Filler-" + std::to_string(i) + ": some text\r\n";
  const clsMessage cut = ReadMessageHeader(write("LONG.EML", "Subject: Long\r\n" + headers + "\r\nbody"), home.log);
  EXPECT_EQ(cut.Subject, "Long");
  EXPECT_LE(cut.Headers.size(), 10000u);

  const fs::path bare = write("BARE.EML", "Subject: Bare\nFrom: a@b.c\n\nbody\n");
  EXPECT_EQ(ReadMessageHeader(bare, home.log).Subject, "Bare");
  EXPECT_EQ(ReadMessageFull(bare, home.log).Subject, "");
  EXPECT_NE(logText().find("Invalid message format"), std::string::npos);
}

TEST_F(MessageFileTest, MissingAndEmptyFilesGiveAnEmptyMessage) {
  EXPECT_EQ(ReadMessageHeader(folder() / "NONE.EML", home.log).Filename(), "");
  EXPECT_EQ(ReadMessageFull(write("EMPTY.EML", ""), home.log).Filename(), "");
}

TEST_F(MessageFileTest, SavingInTheOtherReadStateLeavesExactlyOneFileInTheRightCase) {
  const fs::path file = write("HELLO (093015-261123).EML", "Subject: Hello\r\n\r\nbody\r\n");
  clsMessage m = ReadMessageFull(file, home.log);
  m.Read = true;
  SaveMessage(m, home.log);
  EXPECT_EQ(names(), std::vector<std::string>{"hello (093015-261123).eml"});
  const clsMessage again = ReadMessageFull(folder() / "hello (093015-261123).eml", home.log);
  EXPECT_TRUE(again.Read);
  EXPECT_EQ(again.MessageBody(), "body\r\n");

  // An unread message given a lower-case name still lands under the upper-case one.
  m.Read = false;
  m.setFilename((folder() / "hello (093015-261123).eml").string());
  SaveMessage(m, home.log);
  EXPECT_EQ(names(), std::vector<std::string>{"HELLO (093015-261123).EML"});
}

TEST_F(MessageFileTest, NamesInOneSecondCountUpAndKeepOnlyPlainCharacters) {
  const FixedClock& clock = home.clock;  // 2026-11-23 09:30:15
  const fs::path first = GetUnusedFilename(false, folder(), "Re: Lunch (was: dinner)", "eml", clock);
  EXPECT_EQ(first.filename(), "RE LUNCH (093015-261123).EML");
  write(first.filename().string(), "x");
  EXPECT_EQ(GetUnusedFilename(false, folder(), "Re: Lunch", ".eml", clock).filename(), "RE LUNCH (093015-261123) 1.EML");
  write("re lunch (093015-261123) 1.eml", "x");  // taken in the other case counts too
  EXPECT_EQ(GetUnusedFilename(true, folder(), "Re: Lunch", ".EML", clock).filename(), "re lunch (093015-261123) 2.eml");
  EXPECT_EQ(GetUnusedFilename(false, folder(), "?!*", ".eml", clock).filename(), "MESSAGE (093015-261123).EML");
}

TEST_F(MessageFileTest, ASelectionBecomesAnUnreadMessageMarkedAsAPart) {
  const fs::path original = write("mail (093015-261123).eml", "Subject: Plans\r\nFrom: a@b.c\r\n\r\nOne. Two. Three.\r\n");
  const clsMessage part = DuplicateSelection(original, "Two.", home.log, home.clock);
  EXPECT_EQ(part.Subject, "PART: Plans");
  EXPECT_EQ(fs::path(part.Filename()).filename(), "DUPEMSG (093015-261123).EML");
  const clsMessage stored = ReadMessageFull(part.Filename(), home.log);
  EXPECT_EQ(stored.Subject, "Plans");
  EXPECT_EQ(stored.MessageBody(), "Two.");
  EXPECT_FALSE(stored.Read);
}

}  // namespace
}  // namespace vonel::message
