#include "protocol/pop3/pop3_session.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "pop3_world.h"

namespace vonel::pop3 {
namespace {

class Pop3SessionTest : public ::testing::TestWithParam<std::size_t>, public Pop3World {
 protected:
  // These tests show the walk as it is with pipelining off: the wire byte for byte.
  void SetUp() override { ctx.settings.set("POPPIPELINING0", Value(false)); }
  void run() { deliver(GetParam()); }
};

TEST_P(Pop3SessionTest, AScanWalksEveryHeaderAndQuits) {
  mailbox({"one", "two"});
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(server.host, "pop.test");
  EXPECT_EQ(server.port, 1110);
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|TOP 1 1|TOP 2 1|QUIT|");
  EXPECT_EQ(events.log, (std::vector<std::string>{"DoingServer Home", "NumberMessagesFound Home 2", "HeaderReceived",
                                                  "HeaderReceived", "Finished Home 0"}));
  ASSERT_EQ(events.headers.size(), 2u);
  EXPECT_EQ(events.headers[1].subject, "two");
  EXPECT_FLOAT_EQ(events.headers[1].size, 1.95f);  // 2000 bytes in kilobytes, two places
  EXPECT_EQ(events.headers[1].messageNumThisAcc, 2);
  EXPECT_EQ(events.progress.front(), "Checking mail on Home");
  EXPECT_NE(std::find(events.progress.begin(), events.progress.end(), "2 message(s) on Home   (2 kb)"),
            events.progress.end());
  EXPECT_EQ(events.progress.back(), "Home scan complete");
  EXPECT_FALSE(server.timerOn);
}

TEST_P(Pop3SessionTest, AnEmptyMailboxSendsNoTop) {
  mailbox({});
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|QUIT|");
  EXPECT_EQ(events.log[2], "NoMail Home");
  EXPECT_EQ(events.progress.back(), "No mail on Home");
}

TEST_P(Pop3SessionTest, FailingHeadersAreDeletedOnTheServerWithoutARow) {
  mailbox({"good", "spam offer", "fine"});
  session.getHeaders(0, true);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|TOP 1 1|TOP 2 1|DELE 2|TOP 3 1|QUIT|");
  EXPECT_EQ(events.headers.size(), 2u);
  // The trace is asked for before the DELE goes out.
  EXPECT_EQ(std::vector<std::string>(events.log.begin() + 3, events.log.begin() + 5),
            (std::vector<std::string>{"ScreenedDelete spam offer", "DeletedSpam 1"}));
  EXPECT_TRUE(progressed("Deleting message 2 of 3"));

  // Without its trace a message stays on the server.
  server.commands.clear();
  events.traceKept = false;
  session.getHeaders(0, true);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|TOP 1 1|TOP 2 1|TOP 3 1|QUIT|");
  EXPECT_TRUE(progressed("Skipping message 2 of 3 (subject)"));
}

TEST_P(Pop3SessionTest, WithoutDeleteAFailingHeaderIsListedAndSkipped) {
  mailbox({"spam"});
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|TOP 1 1|QUIT|");
  EXPECT_EQ(events.headers.size(), 1u);
  EXPECT_NE(std::find(events.progress.begin(), events.progress.end(), "Skipping message 1 of 1 (subject)"),
            events.progress.end());
}

TEST_P(Pop3SessionTest, WalkingPastTheEndStopsAtTheServersRefusal) {
  ctx.settings.set("STOPATLAST0", Value(false));
  mailbox({"a", "b", "c"});
  server.replies["TOP 4 1"] = "-ERR no such message\r\n";
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|TOP 1 1|TOP 2 1|TOP 3 1|TOP 4 1|QUIT|");
  EXPECT_EQ(events.log.back(), "Finished Home 0");
  EXPECT_EQ(std::count_if(events.log.begin(), events.log.end(), [](auto& e) { return e.starts_with("POPError"); }),
            0);
}

TEST_P(Pop3SessionTest, IgnoredHeadersAreListedAndFiledDownloadsNamed) {
  mailbox({"please ignore", "filed one"});
  server.replies["RETR 2"] = retrReply("filed one", "x\r\n");
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|TOP 2 1|RETR 2|QUIT|");
  EXPECT_EQ(events.headers.size(), 1u);
  EXPECT_NE(std::find(events.progress.begin(), events.progress.end(), "Ignoring message 1 of 2"),
            events.progress.end());
  EXPECT_NE(std::find(events.progress.begin(), events.progress.end(), "Downloaded Message 2 of 2 to \\Lists"),
            events.progress.end());
}

TEST_P(Pop3SessionTest, AListShorterThanTheMailboxLeavesSizesUnset) {
  mailbox({"a", "b", "c", "d"}, 1);
  session.getHeaders(0, false);
  run();
  ASSERT_EQ(events.headers.size(), 4u);
  EXPECT_FLOAT_EQ(events.headers[0].size, 0.98f);
  // The list's own "." and empty last line count as lines without a size;
  // past them the message keeps the size its text gave it.
  EXPECT_FLOAT_EQ(events.headers[1].size, 1.0f);
  EXPECT_FLOAT_EQ(events.headers[2].size, 1.0f);
  message::Message parsed;
  parsed.createFromText("From: a4@example.org\r\nSubject: d\r\n\r\nbody\r\n", true);
  EXPECT_FLOAT_EQ(events.headers[3].size, parsed.size);
}

TEST_P(Pop3SessionTest, AWrongPasswordEndsInPopErrorThenFinished) {
  server.replies["PASS secret"] = "-ERR [AUTH] Authentication failed.\r\n";
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|QUIT|");
  EXPECT_EQ(events.log, (std::vector<std::string>{"DoingServer Home",
                                                  "POPError Home -ERR [AUTH] Authentication failed.\r\n",
                                                  "Finished Home 0"}));
  ASSERT_EQ(events.failures.size(), 1u);
  EXPECT_EQ(events.failures[0].kind, FailureKind::LoginRefused);
  EXPECT_EQ(events.failures[0].detail, "-ERR [AUTH] Authentication failed.\r\n");
}

TEST_P(Pop3SessionTest, ADownloadIsKeptAsTheServerHoldsIt) {
  mailbox({"hello"});
  // On the wire every line that starts with a dot has one more.
  server.replies["RETR 1"] =
      retrReply("hello", "line one\r\n..\r\n...\r\n..x\r\n...\r.\r\n..\r\r\nlast\r\n");
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|RETR 1|QUIT|");
  ASSERT_EQ(events.downloads.size(), 1u);
  const auto& m = events.downloads[0];
  EXPECT_EQ(m.subject, "hello");
  EXPECT_EQ(m.messageText(), "From: a@example.org\r\nSubject: hello\r\n\r\nline one\r\n.\r\n..\r\n.x\r\n..\r.\r\n.\r\r\nlast\r\n");
  EXPECT_TRUE(m.serverUniqueId.empty());  // the server knows no UIDL
  EXPECT_EQ(m.receiveDate, "2026-11-23 10:00:05");
  EXPECT_EQ(m.messageNumThisAcc, 2);  // the header and the download both count
  EXPECT_NE(std::find(events.progress.begin(), events.progress.end(), "Downloaded Message 1 of 1 to Inbox"),
            events.progress.end());
  EXPECT_FALSE(files::fileExists(ctx.folders.messageFolderPath / "mail_36005.tmp"));
}

TEST_P(Pop3SessionTest, DeleteOnRetrieveIsPipelinedAheadOfTheNextTop) {
  ctx.settings.set("DELETEONRETRIEVE", Value(1));
  mailbox({"first", "second"});
  server.replies["RETR 1"] = retrReply("first", "x\r\n");
  server.replies["RETR 2"] = retrReply("second", "y\r\n");
  // The "+OK" of the DELE arrives first; the next TOP's status line stays in its header text.
  server.replies["TOP 2 1"] = "+OK top follows\r\nSubject: second\r\n\r\n.\r\n";
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|RETR 1|DELE 1|TOP 2 1|RETR 2|DELE 2|QUIT|");
  ASSERT_EQ(events.downloads.size(), 2u);
  EXPECT_EQ(events.downloads[1].subject, "second");

  // A message that couldn't be stored is never deleted.
  server.commands.clear();
  events.keep = false;
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|RETR 1|TOP 2 1|RETR 2|QUIT|");
}

TEST_P(Pop3SessionTest, ADownloadPassesOverWhatAnEarlierOneStored) {
  mailbox({"one", "two", "three"});
  // Lines that are no "number id" are passed over.
  server.replies["UIDL"] = "+OK\r\n1 id-one\r\nx id-two\r\n2 id-two\r\n3 id-three more\r\n4 \x01\r\nlist end\r\n.\r\n";
  server.replies["RETR 1"] = retrReply("one", "1\r\n");
  server.replies["RETR 3"] = retrReply("three", "3\r\n");
  const auto fetched = ctx.folders.dataFolderPath / "Fetched0.txt";
  files::writeTextFile(fetched, "id-two\r\ngone-from-server\r\n");
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|RETR 1|TOP 3 1|RETR 3|QUIT|");
  ASSERT_EQ(events.downloads.size(), 2u);
  EXPECT_EQ(events.downloads[0].serverUniqueId, "id-one");
  EXPECT_EQ(events.downloads[1].serverUniqueId, "id-three");
  EXPECT_TRUE(progressed("Skipping message 2 of 3 (downloaded before)"));
  // The listing prunes the ids the server no longer holds; storing adds, not the session.
  EXPECT_EQ(files::loadTextFile(fetched), "id-two\r\n");

  // When all is stored there is nothing to ask for.
  files::writeTextFile(fetched, "id-one\r\nid-two\r\nid-three\r\n");
  server.commands.clear();
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|QUIT|");

  // An empty mailbox holds none of them any more.
  mailbox({});
  server.commands.clear();
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|QUIT|");
  EXPECT_EQ(files::loadTextFile(fetched), "");
}

TEST_P(Pop3SessionTest, DeletingOnRetrieveDeletesWhatACutOffRunStored) {
  ctx.settings.set("DELETEONRETRIEVE", Value(1));
  mailbox({"one", "two", "three"});
  server.replies["UIDL"] = "+OK\r\n1 id-one\r\n2 id-two\r\n3 id-three\r\n.\r\n";
  server.replies["RETR 1"] = retrReply("one", "1\r\n");
  server.replies["RETR 3"] = retrReply("three", "3\r\n");
  files::writeTextFile(ctx.folders.dataFolderPath / "Fetched0.txt", "id-two\r\n");
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|TOP 1 1|RETR 1|DELE 1|DELE 2|TOP 3 1|RETR 3|DELE 3|QUIT|");
  EXPECT_EQ(events.downloads.size(), 2u);
  EXPECT_TRUE(progressed("Deleting message 2 of 3 (downloaded before)"));

  // A refused DELE of such a message doesn't end the pass.
  server.commands.clear();
  server.replies["DELE 2"] = "-ERR no such message\r\n";
  server.replies["TOP 3 1"] = topReply(3, "three");
  mailbox({"one", "two", "three"});
  files::writeTextFile(ctx.folders.dataFolderPath / "Fetched0.txt", "id-one\r\nid-two\r\n");
  events.log.clear();
  session.getMessages(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|UIDL|DELE 1|DELE 2|TOP 3 1|RETR 3|DELE 3|QUIT|");
  EXPECT_EQ(std::count_if(events.log.begin(), events.log.end(), [](auto& e) { return e.starts_with("POPError"); }),
            0);
}

TEST_P(Pop3SessionTest, AConnectionLostInTheMiddleOfAMessageKeepsNothingOfIt) {
  ctx.settings.set("DELETEONRETRIEVE", Value(1));
  mailbox({"first"});
  server.replies["RETR 1"] = "+OK message follows\r\nSubject: first\r\n\r\nhalf of the bo";
  session.getMessages(0, false);
  run();
  session.onSocketError(protocol::SocketError::ConnectionAborted, "Software caused connection abort");
  EXPECT_TRUE(events.downloads.empty());
  EXPECT_EQ(commands().find("DELE"), std::string::npos);
  ASSERT_EQ(events.failures.size(), 1u);
  EXPECT_EQ(events.failures[0].kind, FailureKind::ConnectionLost);
  EXPECT_EQ(events.failures[0].messagesDone, 0);
  EXPECT_EQ(events.failures[0].messageCount, 1);

  // The next session starts its message afresh.
  server.commands.clear();
  server.replies["RETR 1"] = retrReply("first", "whole body\r\n");
  session.getMessages(0, false);
  run();
  ASSERT_EQ(events.downloads.size(), 1u);
  EXPECT_EQ(events.downloads[0].messageBody(), "whole body\r\n");
  std::size_t leftovers = 0;
  for (const auto& entry : std::filesystem::directory_iterator(ctx.folders.messageFolderPath)) {
    leftovers += entry.path().extension() == ".tmp";
  }
  EXPECT_EQ(leftovers, 0u);
}

TEST_P(Pop3SessionTest, OneMessageByNumber) {
  mailbox({"a", "b"});
  server.replies["RETR 2"] = retrReply("b", "text\r\n");
  session.getSpecificMessage(0, 2);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|RETR 2|QUIT|");
  EXPECT_EQ(events.log, (std::vector<std::string>{"NumberMessagesFound Home 2", "SpecificMessage", "Finished Home 1"}));

  events.log.clear();
  server.commands.clear();
  session.getSpecificMessage(0, 3);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|QUIT|");
  // The count of fetched messages is reset only by a full transfer.
  EXPECT_EQ(events.log, (std::vector<std::string>{"NumberMessagesFound Home 2", "Finished Home 1"}));
}

TEST_P(Pop3SessionTest, DeleteAllErasesEveryMessage) {
  mailbox({"a", "b", "c"});
  session.deleteAllMail(0);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|DELE 1|DELE 2|DELE 3|QUIT|");
  EXPECT_EQ(events.progress[events.progress.size() - 2], "Deleted 3 of 3");
}

TEST_P(Pop3SessionTest, AStatWithoutBlanksWaitsForTheTimeOut) {
  mailbox({"a"});
  server.replies["STAT"] = "+OK\r\n";
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(commands(), "USER jo|PASS secret|LIST|STAT|");
  for (int i = 0; i < 29; ++i) session.onTick();
  EXPECT_EQ(events.log.back(), "DoingServer Home");
  EXPECT_EQ(events.progress.back(), "Home - Trying to connect: 1");
  session.onTick();
  EXPECT_EQ(std::vector<std::string>(events.log.end() - 3, events.log.end()),
            (std::vector<std::string>{"Cancelled Home", "Finished Home 0", "TimedOut Home 30"}));
  EXPECT_EQ(events.progress.back(), "Mail retrieval cancelled");
  ASSERT_EQ(events.failures.size(), 1u);  // before the cancel, which may end the owner's pass
  EXPECT_EQ(events.failures[0].kind, FailureKind::TimedOut);
  EXPECT_EQ(events.failures[0].seconds, 30);
}

INSTANTIATE_TEST_SUITE_P(Splits, Pop3SessionTest, ::testing::Values(1, 2, 3, 5, 64, 100000));

class Pop3Edges : public Pop3SessionTest {};

TEST_P(Pop3Edges, NoServerNoCheckAndAMissingPassword) {
  session.getHeaders(5, false);
  EXPECT_EQ(events.log, (std::vector<std::string>{"NoMailServer"}));
  EXPECT_EQ(ctx.settings.get("CHECK5"), Value(0));

  ctx.settings.set("CHECK0", Value(false));
  events.log.clear();
  session.getHeaders(0, false);
  EXPECT_EQ(events.log, (std::vector<std::string>{"NoMailServer"}));

  ctx.settings.set("PWD0", Value(""));
  mailbox({});
  session.getHeaders(0, false, true);  // forced: checked although excluded
  run();
  EXPECT_EQ(passwords.prompt, "Enter password for 'jo' on account 'Home'");
  EXPECT_EQ(commands(), "USER jo|PASS |LIST|STAT|QUIT|");
}

TEST_P(Pop3Edges, SocketErrors) {
  session.getHeaders(0, false);
  server.outgoing.clear();
  session.onSocketError(protocol::SocketError::ConnectionRefused, "Connection refused");
  ASSERT_EQ(events.failures.size(), 1u);  // the owner shows it
  EXPECT_EQ(events.failures[0].kind, FailureKind::ConnectionRefused);
  EXPECT_EQ(events.failures[0].socketError, protocol::SocketError::ConnectionRefused);
  EXPECT_EQ(events.failures[0].detail, "Connection refused");
  EXPECT_TRUE(server.timerOn);  // the time-out ends it
  session.onSocketError(protocol::SocketError::HostNotFound, "Host not found");
  EXPECT_EQ(std::vector<std::string>(events.log.end() - 2, events.log.end()),
            (std::vector<std::string>{"NoConnection", "Finished Home 0"}));
  EXPECT_EQ(events.failures.back().kind, FailureKind::HostNotFound);
  EXPECT_FALSE(server.timerOn);
}

TEST_P(Pop3Edges, AServerThatClosesMidDownloadStoresNothing) {
  mailbox({"a"});
  server.replies["RETR 1"] = "+OK\r\nSubject: a\r\n\r\npartial";
  session.getMessages(0, false);
  run();
  EXPECT_EQ(server.commands.back(), "RETR 1");
  session.onSocketError(protocol::SocketError::ConnectionAborted, "aborted");
  EXPECT_TRUE(events.downloads.empty());
  EXPECT_EQ(events.log.back(), "Finished Home 0");
}

TEST_P(Pop3Edges, AnErrorInsideALongRetrIsStillAFile) {
  mailbox({"a"});
  server.replies["RETR 1"] = retrReply("a", "-ERR is just text here\r\n" + std::string(70000, 'x') + "\r\n");
  session.getMessages(0, false);
  run();
  ASSERT_EQ(events.downloads.size(), 1u);
  EXPECT_EQ(events.downloads[0].messageBody().substr(0, 6), "-ERR i");
}

TEST_P(Pop3Edges, HugeLinesAndBinaryBytesEndInAnErrorOrAMessage) {
  server.greeting = "+OK " + std::string(10 << 20, 'x') + "\r\n";
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(events.log.back(), "Finished Home 0");
  ASSERT_GE(events.log.size(), 2u);
  EXPECT_TRUE(events.log[events.log.size() - 2].starts_with("POPError Home xxxx"));

  events.log.clear();
  server.greeting = "+OK ready\r\n";
  mailbox({"a"});
  server.replies["TOP 1 1"] = std::string("+OK\r\nSubject: \0\xff\x01\r\n\r\n\0\r\n.\r\n", 27);
  session.getHeaders(0, false);
  run();
  EXPECT_EQ(events.headers.size(), 1u);
  EXPECT_EQ(events.log.back(), "Finished Home 0");
}

INSTANTIATE_TEST_SUITE_P(Splits, Pop3Edges, ::testing::Values(1, 7, 100000));

}  // namespace
}  // namespace vonel::pop3
