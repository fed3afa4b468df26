#include "protocol/smtp/standard_smtp_session.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/message/transfer_encoding.h"
#include "sender_home.h"

namespace vonel::smtp {
namespace {

using testing::SenderHome;
using Events = std::vector<std::string>;

struct RecordingUpgrade : protocol::TlsUpgrade {
  int handshakes = 0;
  void startTls() override { ++handshakes; }
};

// A standard session over the home's recording socket, for a message with
// one recipient and a line that begins with a dot.
struct StandardHome {
  SenderHome home;
  RecordingUpgrade upgrade;
  StandardSmtpSession session{home.context, home.socket, upgrade, home.listener, *home.sender};

  explicit StandardHome(TransportSecurity security, bool authenticate = true) {
    home.sender->setRecipient("to@x.org");
    home.sender->setMessage("Hello\r\n.x\r\n..y");
    if (authenticate) {
      home.sender->setUseAuthentication(true);
      home.sender->setUsername("me");
      home.sender->setPassword("s3cret");
    }
    session.setSecurity(security);
  }
  const Events& sent() const { return home.socket.sent; }
  // Connects and feeds the server's lines, each cut at `at` when it is inside.
  void reply(std::string_view bytes, std::size_t at = 0) {
    if (at == 0 || at >= bytes.size()) return session.onDataReceived(bytes);
    session.onDataReceived(bytes.substr(0, at));
    session.onDataReceived(bytes.substr(at));
  }
  void open() {
    session.connect();
    home.socket.socketState = SocketState::Connected;
  }
};

const std::string kEhloWithPlain = "250-mail.example.org\r\n250-PIPELINING\r\n250-AUTH LOGIN PLAIN\r\n250 8BITMIME\r\n";

TEST(StandardSmtp, PlainAuthAndOneMessageAtEverySplitOfTheReplies) {
  const std::string plainCredentials = message::encodeMime64String(std::string("\0me\0s3cret", 10));
  for (std::size_t at = 0; at < kEhloWithPlain.size(); ++at) {
    StandardHome s(TransportSecurity::Tls);
    s.open();
    EXPECT_EQ(s.home.socket.port, 25);
    s.reply("220 mail.example.org ESMTP\r\n", at);
    EXPECT_EQ(s.home.socket.last(), "EHLO example.org\r\n");
    s.reply(kEhloWithPlain, at);
    ASSERT_EQ(s.home.socket.last(), "AUTH PLAIN " + plainCredentials + "\r\n") << at;
    s.reply("235 2.7.0 Authentication successful\r\n", at);
    EXPECT_EQ(s.home.listener.outcomes(), Events{"Connected"});
    s.session.send();
    for (const char* command : {"MAIL FROM:<me@example.org>\r\n", "RCPT TO:<to@x.org>\r\n", "DATA\r\n"}) {
      EXPECT_EQ(s.home.socket.last(), command);
      s.reply(std::string_view(command) == "DATA\r\n" ? "354 go ahead\r\n" : "250 2.1.0 OK\r\n", at);
    }
    // One dot of transparency per line, and the end of the text made a line end.
    EXPECT_EQ(s.home.socket.last(), "Date: Mon, 23 Nov 2026 09:30:15 +0100\r\nHello\r\n..x\r\n...y\r\n.\r\n");
    s.reply("250 2.0.0 queued\r\n", at);
    EXPECT_EQ(s.home.listener.outcomes(), (Events{"Connected", "Progress:100", "SendSuccessful"}));
    s.session.disconnect();
    EXPECT_EQ(s.home.socket.last(), "QUIT\r\n");
    s.reply("221 bye\r\n", at);
    EXPECT_EQ(s.home.listener.outcomes().back(), "Disconnected");
    EXPECT_EQ(s.upgrade.handshakes, 0);
  }
}

TEST(StandardSmtp, StartTlsComesFirstAndLoginFollowsTheSecondEhlo) {
  StandardHome s(TransportSecurity::Upgrade);
  s.open();
  EXPECT_EQ(s.home.socket.port, 25);
  s.reply("220 hi\r\n");
  s.reply("250-hi\r\n250-AUTH LOGIN PLAIN\r\n250 STARTTLS\r\n");
  EXPECT_EQ(s.home.socket.last(), "STARTTLS\r\n");
  // Whatever follows the 220 in plain text is dropped with the handshake.
  s.reply("220 ready\r\n250 injected\r\n");
  EXPECT_EQ(s.upgrade.handshakes, 1);
  EXPECT_EQ(s.session.state(), StandardState::AwaitHandshake);
  s.session.onTlsEstablished();
  EXPECT_EQ(s.home.socket.last(), "EHLO example.org\r\n");
  s.reply("250-hi\r\n250 AUTH=LOGIN\r\n");
  EXPECT_EQ(s.home.socket.last(), "AUTH LOGIN\r\n");
  s.reply("334 VXNlcm5hbWU6\r\n");
  EXPECT_EQ(s.home.socket.last(), message::encodeMime64String("me") + "\r\n");
  // A prompt that isn't base64 is only a prompt.
  s.reply("334 not base64 at all!\r\n");
  EXPECT_EQ(s.home.socket.last(), message::encodeMime64String("s3cret") + "\r\n");
  s.reply("235 ok\r\n");
  EXPECT_EQ(s.home.listener.outcomes(), Events{"Connected"});
  for (const std::string& line : s.sent()) {
    if (&line == &s.sent()[2]) break;  // what went before the handshake
    EXPECT_EQ(line.find("AUTH"), std::string::npos) << line;
  }
}

TEST(StandardSmtp, FailuresReportTheServersTextAndSendNoPassword) {
  struct Case {
    const char* name;
    TransportSecurity security;
    std::vector<std::string> replies;
    std::string failure;
  };
  const std::vector<Case> cases{
      {"wrong password", TransportSecurity::Tls, {"220 hi\r\n", kEhloWithPlain, "535 5.7.8 Authentication credentials invalid\r\n"},
       "5.7.8 Authentication credentials invalid"},
      {"235 before the password", TransportSecurity::Tls, {"220 hi\r\n", "250 AUTH LOGIN\r\n", "334 VXNlcm5hbWU6\r\n", "235 fine\r\n"},
       "fine"},
      {"no STARTTLS offered", TransportSecurity::Upgrade, {"220 hi\r\n", "250-hi\r\n250 AUTH PLAIN\r\n"},
       "The SMTP server offers no STARTTLS; nothing was sent"},
      {"STARTTLS refused", TransportSecurity::Upgrade, {"220 hi\r\n", "250-hi\r\n250 STARTTLS\r\n", "454 TLS not available\r\n"},
       "TLS not available"},
      {"greeting refused", TransportSecurity::Plain, {"554 go away\r\n"}, "go away"},
  };
  for (const Case& c : cases) {
    StandardHome s(c.security);
    s.open();
    for (const std::string& reply : c.replies) s.reply(reply);
    EXPECT_EQ(s.home.listener.outcomes(), Events{"SendFailed:" + c.failure}) << c.name;
    EXPECT_GE(s.home.socket.closes, 1) << c.name;
    const auto plainAuths = std::count_if(s.sent().begin(), s.sent().end(),
                                          [](const std::string& line) { return line.starts_with("AUTH PLAIN"); });
    EXPECT_EQ(plainAuths, c.name == std::string("wrong password") ? 1 : 0) << c.name;
    for (const std::string& line : s.sent()) {
      EXPECT_EQ(line.find(message::encodeMime64String("s3cret")), std::string::npos) << c.name;
    }
  }
}

TEST(StandardSmtp, HeloAfterARefusedEhloAndAHugeEhloLine) {
  StandardHome s(TransportSecurity::Plain, false);
  s.open();
  s.reply("220 hi\r\n");
  s.reply("502 5.5.2 What?\r\n");
  EXPECT_EQ(s.home.socket.last(), "HELO example.org\r\n");
  s.reply("250 hello\r\n");
  EXPECT_EQ(s.home.listener.outcomes(), Events{"Connected"});

  StandardHome big(TransportSecurity::Upgrade);
  big.open();
  big.reply("220 hi\r\n");
  const std::string hugeLine = "250-" + std::string(100 * 1024, 'x') + "\r\n";
  for (std::size_t i = 0; i < hugeLine.size(); i += 1000) big.reply(std::string_view(hugeLine).substr(i, 1000));
  big.reply("250 STARTTLS\r\n");
  EXPECT_EQ(big.home.socket.last(), "STARTTLS\r\n");
}

TEST(StandardSmtp, RefusedMessageOnAKeptConnectionIsResetAndSilenceTimesOut) {
  StandardHome s(TransportSecurity::Plain, false);
  s.open();
  s.reply("220 hi\r\n");
  s.reply("250 hi\r\n");
  s.session.send();
  s.reply("250 ok\r\n");
  s.reply("550-5.1.1 No such user\r\n550 5.1.1 really\r\n");
  EXPECT_EQ(s.home.socket.last(), "RSET\r\n");
  s.reply("250 reset\r\n");
  EXPECT_EQ(s.home.listener.outcomes(),
            (Events{"Connected", "Refused:550-5.1.1 No such user 550 5.1.1 really", "Connected"}));

  s.session.send();
  for (int second = 0; second < 59; ++second) s.session.onTimerTick();
  EXPECT_EQ(s.home.listener.events.back(), "Status:Retrying ... 1");
  s.session.onTimerTick();
  EXPECT_EQ(s.home.listener.outcomes().back(),
            "SendFailed:Timeout occurred: The SMTP Host did not respond to the request");
}

TEST(StandardSmtp, AMessageWithoutRecipientFailsBeforeConnecting) {
  StandardHome s(TransportSecurity::Tls);
  s.home.sender->setRecipient("");
  s.session.send();
  EXPECT_EQ(s.home.socket.connects, 0);
  EXPECT_EQ(s.home.listener.outcomes(), Events{"SendFailed:No Recipient E-mail Address Specified"});
}

}  // namespace
}  // namespace vonel::smtp
