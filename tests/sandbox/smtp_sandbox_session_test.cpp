#include "demo/smtp_sandbox_session.h"

#include <gtest/gtest.h>

namespace vonel::sandbox {
namespace {

class KeptMail final : public Delivery {
 public:
  std::vector<Envelope> kept;
  bool deliver(const Envelope& envelope) override {
    kept.push_back(envelope);
    return true;
  }
};

constexpr std::string_view kTransaction =
    "EHLO client.example.org\r\nMAIL FROM:<jo@example.org>\r\nRCPT TO:<robin@example.org>\r\n"
    "RCPT TO: <kai@example.net>\r\nDATA\r\nSubject: dots\r\n\r\n..leading dot\r\n...\r\nend\r\n.\r\nQUIT\r\n";
constexpr std::string_view kReplies =
    "250 sandbox.example.net\r\n250 OK\r\n250 OK\r\n250 OK\r\n354 End data with <CR><LF>.<CR><LF>\r\n"
    "250 OK message kept\r\n221 Bye\r\n";

TEST(SmtpSandboxSession, KeepsAMessageWithItsEnvelopeAndUnstuffedDotsWhereverTheBytesAreSplit) {
  for (std::size_t split = 0; split < kTransaction.size(); ++split) {
    KeptMail mail;
    SmtpSandboxSession session(mail);
    std::string replies = session.onData(kTransaction.substr(0, split));
    replies += session.onData(kTransaction.substr(split));
    ASSERT_EQ(replies, kReplies) << split;
    ASSERT_EQ(mail.kept.size(), 1u);
    EXPECT_EQ(mail.kept[0].sender, "jo@example.org");
    EXPECT_EQ(mail.kept[0].recipients, (std::vector<std::string>{"robin@example.org", "kai@example.net"}));
    EXPECT_EQ(mail.kept[0].bytes, "Subject: dots\r\n\r\n.leading dot\r\n..\r\nend\r\n");
    EXPECT_TRUE(session.finished());
  }
}

TEST(SmtpSandboxSession, KeepsCommandsInTheirOrder) {
  KeptMail mail;
  SmtpSandboxSession session(mail);
  EXPECT_EQ(session.onData("MAIL FROM:<a@example.org>\r\n"), "503 Bad sequence of commands\r\n");
  EXPECT_EQ(session.onData("HELO\r\n"), "501 Say who you are\r\n");
  EXPECT_EQ(session.onData("HELO me\r\nRCPT TO:<b@example.org>\r\nDATA\r\n"),
            "250 sandbox.example.net\r\n503 Bad sequence of commands\r\n503 Bad sequence of commands\r\n");
  EXPECT_EQ(session.onData("MAIL FROM:<a@example.org>\r\nMAIL FROM:<a@example.org>\r\nRCPT TO:<nobody>\r\n"),
            "250 OK\r\n503 Bad sequence of commands\r\n501 Syntax: RCPT TO:<address>\r\n");
  // RSET forgets the sender: a recipient needs a new MAIL.
  EXPECT_EQ(session.onData("RSET\r\nRCPT TO:<b@example.org>\r\n"), "250 OK\r\n503 Bad sequence of commands\r\n");
  EXPECT_TRUE(mail.kept.empty());
}

TEST(SmtpSandboxSession, AnswersGarbageAuthAndOverlongLinesWith500) {
  KeptMail mail;
  SmtpSandboxSession session(mail);
  EXPECT_EQ(session.onData("AUTH PLAIN AGpvAHNlY3JldA==\r\n"), "500 Command not recognised\r\n");
  EXPECT_EQ(session.onData(std::string(5000, 'A') + "\r\nNOOP\r\n"), "500 Line too long\r\n250 OK\r\n");
  EXPECT_EQ(session.onData(std::string("\0\xff\r\n", 4)), "500 Command not recognised\r\n");
}

TEST(SmtpSandboxSession, RefusesDataOverTenMegabytesAndTakesTheNextMessage) {
  KeptMail mail;
  SmtpSandboxSession session(mail);
  session.onData("HELO me\r\nMAIL FROM:<a@example.org>\r\nRCPT TO:<b@example.org>\r\nDATA\r\n");
  const std::string line(999, 'x');
  std::string replies;
  for (std::size_t sent = 0; sent <= kDataLimit; sent += line.size() + 2) replies += session.onData(line + "\r\n");
  EXPECT_EQ(replies, "");
  EXPECT_EQ(session.onData(".\r\n"), "552 Message exceeds 10 MB\r\n");
  EXPECT_EQ(session.onData("MAIL FROM:<a@example.org>\r\nRCPT TO:<b@example.org>\r\nDATA\r\nsmall\r\n.\r\n"),
            "250 OK\r\n250 OK\r\n354 End data with <CR><LF>.<CR><LF>\r\n250 OK message kept\r\n");
  ASSERT_EQ(mail.kept.size(), 1u);
  EXPECT_EQ(mail.kept[0].bytes, "small\r\n");
}

TEST(SmtpSandboxSession, RefusesOneEndlessDataLineWithoutHoldingIt) {
  KeptMail mail;
  SmtpSandboxSession session(mail);
  session.onData("HELO me\r\nMAIL FROM:<>\r\nRCPT TO:<b@example.org>\r\nDATA\r\n");
  const std::string chunk(1024 * 1024, 'y');
  for (int i = 0; i < 12; ++i) session.onData(chunk);
  EXPECT_EQ(session.onData("\r\n.\r\n"), "552 Message exceeds 10 MB\r\n");
  EXPECT_TRUE(mail.kept.empty());
}

}  // namespace
}  // namespace vonel::sandbox
