#include "demo/pop3_sandbox_session.h"

#include <gtest/gtest.h>

#include "sandbox/memory_maildrop.h"

namespace vonel::sandbox {
namespace {

class Pop3SandboxSessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    drop.mail = {{"a1", "Subject: one\r\n\r\nfirst line\r\n.hidden dot\r\nthird\r\n"},
                 {"b2", "Subject: two\r\n\r\nbody\r\n"}};
  }
  std::string loggedIn() {
    const std::string reply = session.onData("USER jo\r\nPASS secret\r\n");
    EXPECT_EQ(reply, "+OK\r\n+OK 2 messages\r\n");
    return reply;
  }

  MemoryMaildrop drop;
  Pop3SandboxSession session{drop};
};

TEST_F(Pop3SandboxSessionTest, RefusesAWrongPasswordAndEveryMailCommandBeforeLogin) {
  EXPECT_EQ(session.onData("STAT\r\nRETR 1\r\nPASS secret\r\n"),
            "-ERR unknown command\r\n-ERR unknown command\r\n-ERR unknown command\r\n");
  EXPECT_EQ(session.onData("USER jo\r\nPASS wrong\r\nSTAT\r\n"),
            "+OK\r\n-ERR [AUTH] Authentication failed.\r\n-ERR unknown command\r\n");
  // A refused password forgets the user: the next PASS alone is not enough.
  EXPECT_EQ(session.onData("PASS secret\r\n"), "-ERR unknown command\r\n");
  EXPECT_EQ(drop.opened, 0);
}

TEST_F(Pop3SandboxSessionTest, ListsSizesAndIdsAndCountsOnlyWhatIsNotDeleted) {
  loggedIn();
  EXPECT_EQ(session.onData("stat\r\n"), "+OK 2 70\r\n");
  EXPECT_EQ(session.onData("LIST\r\n"), "+OK\r\n1 48\r\n2 22\r\n.\r\n");
  EXPECT_EQ(session.onData("UIDL 2\r\n"), "+OK 2 b2\r\n");
  EXPECT_EQ(session.onData("DELE 1\r\n"), "+OK\r\n");
  EXPECT_EQ(session.onData("UIDL\r\n"), "+OK\r\n2 b2\r\n.\r\n");
  EXPECT_EQ(session.onData("STAT\r\nLIST 1\r\nDELE 1\r\n"),
            "+OK 1 22\r\n-ERR no such message\r\n-ERR no such message\r\n");
}

TEST_F(Pop3SandboxSessionTest, SendsMessagesWithLeadingDotsDoubledAndTopCutsAfterTheHeader) {
  loggedIn();
  EXPECT_EQ(session.onData("RETR 1\r\n"),
            "+OK 48 octets\r\nSubject: one\r\n\r\nfirst line\r\n..hidden dot\r\nthird\r\n.\r\n");
  EXPECT_EQ(session.onData("TOP 1 1\r\n"), "+OK 48 octets\r\nSubject: one\r\n\r\nfirst line\r\n.\r\n");
  EXPECT_EQ(session.onData("TOP 2 0\r\n"), "+OK 22 octets\r\nSubject: two\r\n\r\n.\r\n");
  EXPECT_EQ(session.onData("TOP 2 99\r\n"), "+OK 22 octets\r\nSubject: two\r\n\r\nbody\r\n.\r\n");
}

TEST_F(Pop3SandboxSessionTest, AnswersBadNumbersWithAnError) {
  loggedIn();
  for (const char* command : {"RETR 0\r\n", "RETR 3\r\n", "RETR x\r\n", "RETR -1\r\n", "RETR\r\n",
                              "TOP 1\r\n", "TOP 1 x\r\n", "DELE 1234567890\r\n", "LIST 1 2\r\n"}) {
    EXPECT_TRUE(session.onData(command).starts_with("-ERR")) << command;
  }
  EXPECT_EQ(session.onData("NOOP\r\n"), "+OK\r\n");
}

TEST_F(Pop3SandboxSessionTest, DeletesOnlyAtQuitAndRsetTakesDeletionsBack) {
  loggedIn();
  session.onData("DELE 1\r\nDELE 2\r\nRSET\r\nDELE 2\r\n");
  EXPECT_TRUE(drop.removed.empty());
  EXPECT_EQ(session.onData("QUIT\r\nSTAT\r\n"), "+OK bye\r\n");
  EXPECT_TRUE(session.finished());
  EXPECT_EQ(drop.removed, std::vector<std::string>{"b2"});
}

TEST_F(Pop3SandboxSessionTest, ALostConnectionDeletesNothing) {
  {
    Pop3SandboxSession lost(drop);
    lost.onData("USER jo\r\nPASS secret\r\nDELE 1\r\n");
  }
  EXPECT_TRUE(drop.removed.empty());
}

TEST_F(Pop3SandboxSessionTest, RepliesAlikeWhereverTheBytesAreSplit) {
  const std::string talk = "USER jo\r\nPASS secret\nLIST\r\nTOP 1 1\r\nDELE 2\r\nQUIT\r\n";
  Pop3SandboxSession whole(drop);
  const std::string expected = whole.onData(talk);
  for (std::size_t split = 1; split < talk.size(); ++split) {
    Pop3SandboxSession parts(drop);
    std::string replies = parts.onData(talk.substr(0, split));
    replies += parts.onData(talk.substr(split));
    EXPECT_EQ(replies, expected) << split;
  }
}

TEST_F(Pop3SandboxSessionTest, RefusesALineOverTheCapAndGoesOn) {
  loggedIn();
  const std::string longLine = "NOOP " + std::string(kCommandLineLimit, 'x') + "\r\n";
  EXPECT_EQ(session.onData(longLine.substr(0, 600)), "");
  EXPECT_EQ(session.onData(longLine.substr(600) + "NOOP\r\n"), "-ERR line too long\r\n+OK\r\n");
}

}  // namespace
}  // namespace vonel::sandbox
