#include "core/send/outbox.h"

#include <gtest/gtest.h>

#include "core/send/spooled_text.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/store/tag_files.h"
#include "../test_home.h"

namespace vonel::send {
namespace {

namespace fs = std::filesystem;

TEST(OutboxNames, CarryTwoAccountDigitsAndTheFirstFreeCounter) {
  testing::TempDir dir;
  EXPECT_EQ(outboxFileName(7, 12), "07_outbound_12.eml");
  EXPECT_EQ(freeOutboxCounter(dir.path(), 0), 0);
  files::writeTextFile(dir.path() / "00_outbound_0.eml", "x");
  files::writeTextFile(dir.path() / "00_outbound_2.eml", "x");
  EXPECT_EQ(freeOutboxCounter(dir.path(), 0), 1);
  EXPECT_EQ(freeOutboxCounter(dir.path(), 0, 2), 3);
  EXPECT_EQ(freeOutboxCounter(dir.path(), 1), 0);
}

TEST(OutboxNames, ListedInSpoolOrderWithTheExtensionInAnyCase) {
  testing::TempDir dir;
  for (const char* name : {"00_outbound_10.eml", "07_outbound_0.EML", "00_outbound_9.eml", "00_outbound_0.eml",
                           "Unread.Tag", "notes.txt"}) {
    files::writeTextFile(dir.path() / name, "x");
  }
  fs::create_directory(dir.path() / "folder.eml");
  const std::vector<std::string> expected{"00_outbound_0.eml", "00_outbound_9.eml", "00_outbound_10.eml",
                                          "07_outbound_0.EML"};
  EXPECT_EQ(listOutboxFiles(dir.path()), expected);
  EXPECT_TRUE(listOutboxFiles(dir.path() / "missing").empty());
}

TEST(OutboxNames, AccountsAreFoundByDigitsAndFilesByValue) {
  const std::vector<std::string> names{"00_outbound_0.eml", "7x_odd.eml", "07_outbound_0.eml", "25_outbound_0.eml"};
  EXPECT_TRUE(accountHasMail(names, 0));
  EXPECT_TRUE(accountHasMail(names, 7));
  EXPECT_FALSE(accountHasMail(names, 1));
  EXPECT_TRUE(accountHasMail(names, 25));
  // The first name whose two characters read as the number: "7x" reads as 7.
  EXPECT_EQ(firstFileOfAccount(names, 7), 1u);
  EXPECT_EQ(firstFileOfAccount(names, 3), names.size());
  EXPECT_EQ(fileRoot("00_outbound_3.eml"), "00_outbound_3");
}

TEST(SentDate, GoesAtTheEndOfTheHeaderUnlessOneIsThere) {
  const text::DateTime now{2026, 11, 23, 9, 30, 15};
  EXPECT_EQ(withSentDate("From: a\r\nTo: b\r\n\r\nbody\r\n\r\nmore", now),
            "From: a\r\nTo: b\r\nDate: 2026-11-23 09:30:15\r\n\r\nbody\r\n\r\nmore");
  // Only a CR straight before "Date:" counts, so a header line after CR LF
  // doesn't, and the copy gets a second date.
  EXPECT_EQ(withSentDate("From: a\rDATE: x\r\n\r\nbody", now), "From: a\rDATE: x\r\n\r\nbody");
  EXPECT_EQ(withSentDate("From: a\r\nDate: x\r\n\r\nb", now), "From: a\r\nDate: x\r\nDate: 2026-11-23 09:30:15\r\n\r\nb");
  // A "Date:" in the body doesn't count, and no blank line means no change.
  EXPECT_EQ(withSentDate("From: a\r\n\r\n\rDate: in body", now),
            "From: a\r\nDate: 2026-11-23 09:30:15\r\n\r\n\rDate: in body");
  EXPECT_EQ(withSentDate("From: a\r\nTo: b", now), "From: a\r\nTo: b");
}

class MoveToSentItemsTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  fs::path outbox = home.dir.path() / "Outbox";
  fs::path sent = home.dir.path() / "Sent Items";
  files::WriteBatch writes;

  void SetUp() override {
    fs::create_directories(outbox);
    fs::create_directories(sent);
    files::writeTextFile(outbox / "00_outbound_4.eml", "From: <me@x.org>\r\nTo: <you@y.org>\r\nSubject: Hi\r\n\r\nText\r\n");
    files::writeTextFile(outbox / "Unread.Tag", "3");
  }
};

TEST_F(MoveToSentItemsTest, FilesAReadDatedCopyAndOnlyThenDeletesTheOriginal) {
  const SentMessage moved = moveToSentItems(outbox, sent, "00_outbound_4.eml", home.log, home.clock, writes);
  EXPECT_TRUE(moved.filed);
  EXPECT_EQ(moved.subject, "Hi");
  EXPECT_EQ(moved.recipient, "<you@y.org>");
  EXPECT_FALSE(files::fileExists(outbox / "00_outbound_4.eml"));
  EXPECT_EQ(store::unreadTagCount(outbox), 2);
  const fs::path copy = sent / "00outbound4 (093015-261123).eml";
  ASSERT_TRUE(files::fileExists(copy));
  const std::string text = files::loadTextFile(copy);
  EXPECT_NE(text.find("Subject: Hi\r\n"), std::string::npos);
  EXPECT_NE(text.find("\r\nDate: 2026-11-23 09:30:15\r\n"), std::string::npos);
  EXPECT_NE(text.find("X-Message-Read: 1"), std::string::npos);
  EXPECT_NE(text.find("\r\n\r\nText"), std::string::npos);
}

TEST_F(MoveToSentItemsTest, ARefusalNoteStaysWithItsMessageAndGoesWithIt) {
  writeRefusalNote(outbox, "00_outbound_4.eml", "550 5.1.1 <you@y.org>: Recipient address rejected");
  EXPECT_EQ(files::loadTextFile(outbox / "00_outbound_4.eml.refused"),
            "550 5.1.1 <you@y.org>: Recipient address rejected\r\n");
  // A note is no outbox file of its own.
  EXPECT_EQ(listOutboxFiles(outbox), std::vector<std::string>{"00_outbound_4.eml"});
  EXPECT_TRUE(moveToSentItems(outbox, sent, "00_outbound_4.eml", home.log, home.clock, writes).filed);
  EXPECT_FALSE(files::fileExists(outbox / "00_outbound_4.eml.refused"));
  EXPECT_TRUE(clearRefusalNote(outbox, "00_outbound_4.eml"));
}

TEST_F(MoveToSentItemsTest, TheUploadReadsTheFileAsItStands) {
  files::writeTextFile(outbox / "00_outbound_5.eml", "To: <you@y.org>\r\nSubject: Dots\r\n\r\n.\r\n..\r\n");
  const OutboxMessage spooled = readOutboxMessage(outbox / "00_outbound_5.eml", home.log);
  EXPECT_EQ(spooled.text, "To: <you@y.org>\r\nSubject: Dots\r\n\r\n.\r\n..\r\n");
  EXPECT_EQ(spooled.fields.subject, "Dots");
  EXPECT_EQ(spooled.fields.toEmail(), "<you@y.org>");
  const OutboxMessage missing = readOutboxMessage(outbox / "gone.eml", home.log);
  EXPECT_TRUE(missing.text.empty());
  EXPECT_TRUE(missing.fields.toEmail().empty());
}

TEST_F(MoveToSentItemsTest, AFailedCopyLeavesTheOutboxFileAsItWas) {
  fs::remove_all(sent);
  files::writeTextFile(sent, "a file where the folder should be");
  const std::string before = files::loadTextFile(outbox / "00_outbound_4.eml");
  EXPECT_FALSE(moveToSentItems(outbox, sent, "00_outbound_4.eml", home.log, home.clock, writes).filed);
  EXPECT_EQ(files::loadTextFile(outbox / "00_outbound_4.eml"), before);
  EXPECT_EQ(store::unreadTagCount(outbox), 3);
}

TEST(AddressLists, NamelessEntriesTakeTheAddressesSoFar) {
  EXPECT_EQ(splitAddressList("").addresses, "");
  const AddressList one = splitAddressList("Ann <Ann@X.org>");
  EXPECT_EQ(one.addresses, "ann@x.org");
  EXPECT_EQ(one.names, "Ann");
  // extractName gives back text without "<" as it stands, so only an empty
  // piece (or a bare quoted name) is nameless.
  const AddressList many = splitAddressList("a@x.org;\"\" <b@x.org>;;Cy <c@x.org>");
  EXPECT_EQ(many.addresses, "a@x.org;b@x.org;;c@x.org");
  EXPECT_EQ(many.names, "a@x.org;a@x.org;b@x.org;a@x.org;b@x.org;;Cy");
  EXPECT_EQ(addressesOf("Ann <a@x.org>;b@x.org"), "a@x.org;b@x.org");
  EXPECT_EQ(addressesOf(""), "");
}

TEST(SpooledText, TheFirstBccHeaderGoesWithItsFoldedLines) {
  EXPECT_EQ(cutBccHeader("To: a\r\nBcc: <h@x>,\r\n <i@x>\r\nSubject: s\r\n\r\nb"), "To: a\r\nSubject: s\r\n\r\nb");
  // Any case, wherever it stands: here the subject's tail goes and the real header stays.
  EXPECT_EQ(cutBccHeader("Subject: re bcc: you\r\nBcc: <h@x>\r\nX: 1\r\n\r\n"), "Subject: re Bcc: <h@x>\r\nX: 1\r\n\r\n");
  // No ":" after it: the header stays.
  EXPECT_EQ(cutBccHeader("To: a\r\nBcc: <h@x>\r\n\r\nbody"), "To: a\r\nBcc: <h@x>\r\n\r\nbody");
  EXPECT_EQ(cutBccHeader("To: a\r\n\r\nbody"), "To: a\r\n\r\nbody");
}

TEST(SpooledText, WireTextEndsEveryLineInCrLfAndLosesLoneLineFeeds) {
  EXPECT_EQ(wireText("A: 1\r\n\r\nline\nnext\rlast\r\n\r\n"), "A: 1\r\n\r\nlinenext\r\nlast");
  // The dots are the session's: the text keeps its own.
  EXPECT_EQ(wireText("a\r\n.dot\r\n..\r\n."), "a\r\n.dot\r\n..\r\n.");
}

TEST(SpooledText, StoreHeadersAreCutFromTheHeaderOnly) {
  const std::string body = "\r\nX-Message-Read: 1\r\nX-Receive-Date: kept in the body\r\n";
  EXPECT_EQ(withoutStoreHeaders("From: a\r\nX-Receive-Date: 2026-11-23 09:30:15\r\nx-message-tags: Work,\r\n"
                                "\tHome\r\nSubject: s\r\nX-Message-Read : 1\r\nX-Message-Replied: 1\r\n"
                                "X-Message-HighPriority: 1\r\nX-Mailer: Vonel\r\n" + body),
            "From: a\r\nSubject: s\r\nX-Mailer: Vonel\r\n" + body);
  // Bare LF line ends, and a header without a body.
  EXPECT_EQ(withoutStoreHeaders("From: a\nX-Message-Tags: \nTo: b\n\nX-Message-Tags: t\n"),
            "From: a\nTo: b\n\nX-Message-Tags: t\n");
  EXPECT_EQ(withoutStoreHeaders("To: b\r\nX-Message-Read: 1"), "To: b\r\n");
  EXPECT_EQ(withoutStoreHeaders(""), "");
}

}  // namespace
}  // namespace vonel::send
