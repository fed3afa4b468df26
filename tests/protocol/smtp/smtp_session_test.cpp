#include "protocol/smtp/smtp_session.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "protocol/smtp/date_line.h"
#include "sender_home.h"

namespace vonel::smtp {
namespace {

using testing::SenderHome;
using Events = std::vector<std::string>;

std::string addresses(int count) {
  std::string list;
  for (int i = 0; i < count; ++i) list += (i ? ";" : "") + ("a" + std::to_string(i) + "@x.org");
  return list;
}

TEST(SmtpDialogue, PlainSessionSendsEveryRecipientThenQuits) {
  SenderHome home;
  auto& s = *home.sender;
  s.setRecipient("to1@x.org; to2@x.org ");
  s.setCcRecipient("cc@x.org");
  s.setBccRecipient(" bcc@x.org");
  s.setMessage("Hello\r\n.dot");
  s.send();
  EXPECT_EQ(home.socket.connects, 1);
  EXPECT_EQ(home.socket.host, "mail.example.org");
  EXPECT_EQ(home.socket.port, 25);
  EXPECT_TRUE(home.socket.timerOn);
  home.socket.socketState = SocketState::Connected;
  s.onSocketConnected();
  s.onDataReceived("220 hi\r\n");
  EXPECT_EQ(home.socket.last(), "HELO example.org\r\n");
  s.onDataReceived("250 ok\r\n");
  EXPECT_EQ(home.listener.outcomes(), Events{"Connected"});
  // The owner answers Connected with Send, which now finds the socket open.
  s.send();
  const Events expected{"MAIL FROM: <me@example.org>\r\n", "RCPT TO: <to1@x.org>\r\n", "RCPT TO: <to2@x.org>\r\n",
                        "RCPT TO: <cc@x.org>\r\n", "RCPT TO: <bcc@x.org>\r\n", "DATA\r\n"};
  for (const auto& command : expected) {
    EXPECT_EQ(home.socket.last(), command);
    s.onDataReceived(command == "DATA\r\n" ? "354 go\r\n" : "250 ok\r\n");
  }
  EXPECT_EQ(home.socket.last(), "Date: Mon, 23 Nov 2026 09:30:15 +0100\r\nHello\r\n..dot\r\n\r\n.\r\n");
  s.onDataReceived("250 queued\r\n");
  EXPECT_EQ(home.socket.last(), "QUIT\r\n");
  EXPECT_EQ(home.listener.outcomes(), (Events{"Connected", "Progress:100", "SendSuccessful"}));
  EXPECT_EQ(home.listener.events.end()[-2], "Status:Transmission Complete...");
  s.onDataReceived("221 bye\r\n");
  EXPECT_EQ(home.listener.outcomes().back(), "Disconnected");
  EXPECT_EQ(home.socket.closes, 1);
  EXPECT_FALSE(home.socket.timerOn);
}

TEST(SmtpDialogue, KeptOpenConnectionCarriesTwoMessagesAndEmptyListsAreSkipped) {
  SenderHome home;
  auto& s = *home.sender;
  home.connectPlain();
  for (int message = 0; message < 2; ++message) {
    s.setRecipient("to@x.org");
    s.setMessage("m");
    s.send();
    EXPECT_EQ(home.socket.last(), "MAIL FROM: <me@example.org>\r\n");
    s.onDataReceived("250 ok\r\n");
    EXPECT_EQ(home.socket.last(), "RCPT TO: <to@x.org>\r\n");
    s.onDataReceived("250 ok\r\n");
    EXPECT_EQ(home.socket.last(), "DATA\r\n");
    s.onDataReceived("354 go\r\n");
    s.onDataReceived("250 ok\r\n");
    EXPECT_NE(home.socket.last(), "QUIT\r\n");
  }
  EXPECT_EQ(home.socket.connects, 1);
  s.disconnect();
  EXPECT_EQ(home.socket.last(), "QUIT\r\n");
  EXPECT_EQ(s.sessionState(), SmtpState::AwaitQuitReply);
}

TEST(SmtpDialogue, FailingReplyToASingleSendReportsItsTextAndClosesTheSocket) {
  SenderHome home;
  auto& s = *home.sender;
  s.setRecipient("nobody@x.org");
  s.send();
  home.socket.socketState = SocketState::Connected;
  s.onSocketConnected();
  s.onDataReceived("220 hi\r\n");
  s.onDataReceived("250 ok\r\n");
  s.send();
  s.onDataReceived("250 ok\r\n");
  s.onDataReceived("550   No such user  \r\n");
  // Blanks are trimmed before the CR LF is taken off, so the inner ones stay.
  EXPECT_EQ(home.listener.outcomes().back(), "SendFailed:No such user  ");
  EXPECT_TRUE(s.failed());
  EXPECT_EQ(home.socket.closes, 1);
  EXPECT_FALSE(home.socket.timerOn);
}

// On a connection kept open, each step of a message can refuse it: the reply
// is reported whole, RSET clears the transaction, and the next message goes
// over the same connection.
TEST(SmtpDialogue, RefusedMessageIsResetAndTheConnectionCarriesTheNext) {
  const std::string script[] = {"250 ok\r\n", "250 ok\r\n", "250 ok\r\n", "250 ok\r\n", "354 go\r\n"};
  for (int refusedAt = 0; refusedAt <= 5; ++refusedAt) {
    SenderHome home;
    auto& s = *home.sender;
    home.connectPlain();
    s.setRecipient("to@x.org");
    s.setCcRecipient("cc@x.org");
    s.setBccRecipient("bcc@x.org");
    s.send();
    for (int i = 0; i < refusedAt; ++i) s.onDataReceived(script[i]);
    s.onDataReceived(refusedAt == 0 ? "451 4.3.0 try later\r\n" : "550-5.1.1 first line\r\n550 5.1.1 second\r\n");
    EXPECT_EQ(home.listener.outcomes().back(),
              refusedAt == 0 ? "Refused:451 4.3.0 try later" : "Refused:550-5.1.1 first line 550 5.1.1 second")
        << refusedAt;
    EXPECT_EQ(home.socket.last(), "RSET\r\n");
    EXPECT_EQ(home.socket.closes, 0);
    EXPECT_FALSE(s.failed());
    s.onDataReceived("250 flushed\r\n");
    EXPECT_EQ(home.listener.outcomes().back(), "Connected");
    s.setRecipient("next@x.org");
    s.setCcRecipient("");
    s.setBccRecipient("");
    s.send();
    EXPECT_EQ(home.socket.last(), "MAIL FROM: <me@example.org>\r\n");
    EXPECT_EQ(home.socket.connects, 1);
  }
}

TEST(SmtpDialogue, AConnectionThatCannotGoOnAfterARefusalFails) {
  // The server closes: 421 is no refusal of the message but of the connection.
  SenderHome closing;
  closing.connectPlain();
  closing.sender->setRecipient("to@x.org");
  closing.sender->send();
  closing.sender->onDataReceived("421 4.7.0 closing\r\n");
  EXPECT_EQ(closing.listener.outcomes().back(), "SendFailed:4.7.0 closing");
  EXPECT_EQ(closing.socket.closes, 1);

  SenderHome refusedReset;
  refusedReset.connectPlain();
  refusedReset.sender->setRecipient("to@x.org");
  refusedReset.sender->send();
  refusedReset.sender->onDataReceived("550 no\r\n");
  refusedReset.sender->onDataReceived("502 no RSET here\r\n");
  EXPECT_EQ(refusedReset.listener.outcomes(), (Events{"Connected", "Refused:550 no", "SendFailed:no RSET here"}));
  EXPECT_EQ(refusedReset.socket.closes, 1);
}

TEST(SmtpDialogue, TheWireStuffsEachLineOnceAndTheTextStaysAsWritten) {
  SenderHome home;
  auto& s = *home.sender;
  home.connectPlain();
  s.setRecipient("to@x.org");
  s.setMessage(".\r\n..\r\n.x\r\nx.\r\n. ");
  EXPECT_EQ(s.message(), ".\r\n..\r\n.x\r\nx.\r\n. ");
  s.send();
  s.onDataReceived("250 ok\r\n");
  s.onDataReceived("250 ok\r\n");
  s.onDataReceived("354 go\r\n");
  EXPECT_EQ(home.socket.last(), "Date: Mon, 23 Nov 2026 09:30:15 +0100\r\n..\r\n...\r\n..x\r\nx.\r\n.. \r\n\r\n.\r\n");
  // A second message over the same connection is stuffed once too.
  s.onDataReceived("250 ok\r\n");
  s.send();
  s.onDataReceived("250 ok\r\n");
  s.onDataReceived("250 ok\r\n");
  s.onDataReceived("354 go\r\n");
  EXPECT_EQ(home.socket.last(), "Date: Mon, 23 Nov 2026 09:30:15 +0100\r\n..\r\n...\r\n..x\r\nx.\r\n.. \r\n\r\n.\r\n");
}

TEST(SmtpDialogue, EveryStateAcceptsOnlyItsOwnCode) {
  // State entered by the steps before it, the reply that must fail there.
  struct Case {
    int repliesBefore;
    std::string wrong;
  };
  const std::string script[] = {"250 ok\r\n", "250 ok\r\n", "354 go\r\n"};
  for (const Case& c : {Case{0, "251 x\r\n"}, Case{1, "354 x\r\n"}, Case{2, "250 x\r\n"}, Case{3, "354 x\r\n"}}) {
    SenderHome home;
    home.connectPlain();
    home.sender->setRecipient("to@x.org");
    home.sender->send();
    for (int i = 0; i < c.repliesBefore; ++i) home.sender->onDataReceived(script[i]);
    home.sender->onDataReceived(c.wrong);
    EXPECT_EQ(home.listener.outcomes().back(), "SendFailed:x" ) << c.repliesBefore;
  }
}

TEST(SmtpDialogue, SplitReplyMakesOneTransitionPerChunk) {
  // One chunk is one reply: the first piece decides with the code it holds.
  const std::string reply = "250 ok\r\n";
  for (std::size_t cut = 1; cut < reply.size(); ++cut) {
    SenderHome home;
    home.connectPlain();
    home.sender->setRecipient("to@x.org");
    home.sender->send();
    home.sender->onDataReceived(reply.substr(0, cut));
    if (cut < 3) {
      EXPECT_TRUE(home.sender->failed()) << cut;
    } else {
      EXPECT_EQ(home.socket.last(), "RCPT TO: <to@x.org>\r\n") << cut;
      home.sender->onDataReceived(reply.substr(cut));  // the rest is a reply of its own, code 0
      EXPECT_TRUE(home.sender->failed()) << cut;
    }
  }
}

TEST(SmtpGreeting, AnyDataLeadsToHelloAndTwoTwentyIsIgnoredAfterIt) {
  SenderHome home;
  home.sender->setFrom("justaname");
  home.sender->connect();
  home.socket.socketState = SocketState::Connected;
  home.sender->onSocketConnected();
  home.sender->onDataReceived("garbage without a code");
  EXPECT_EQ(home.socket.last(), "HELO justaname\r\n");
  home.sender->onDataReceived("220 again\r\n");
  EXPECT_EQ(home.sender->sessionState(), SmtpState::AwaitHelloReply);
  EXPECT_TRUE(home.listener.outcomes().empty());
  home.sender->onDataReceived("250 ok\r\n");
  EXPECT_EQ(home.listener.outcomes(), Events{"Connected"});
}

TEST(SmtpGreeting, AuthEqualsLoginInGreetingAddsAuthToMailFrom) {
  SenderHome home;
  home.sender->connect();
  home.socket.socketState = SocketState::Connected;
  home.sender->onSocketConnected();
  home.sender->onDataReceived("220 host ESMTP AUTH=LOGIN\r\n");
  home.sender->onDataReceived("250 ok\r\n");
  home.sender->setRecipient("to@x.org");
  home.sender->send();
  EXPECT_EQ(home.socket.last(), "MAIL FROM: <me@example.org> AUTH=me@example.org\r\n");
}

TEST(SmtpGreeting, DataBeforeTheSocketIsConnectedRetriesThenGivesUp) {
  SenderHome home;
  home.sender->setConnectRetry(3);
  home.sender->setRecipient("to@x.org");
  home.sender->send();
  home.sender->onDataReceived("421 busy\r\n");
  home.sender->onDataReceived("421 busy\r\n");
  EXPECT_EQ(home.listener.events.back(), "Status:Connecting to Server... (Attempt 2 of 3)");
  EXPECT_EQ(home.socket.connects, 3);
  home.sender->onDataReceived("421 busy\r\n");
  EXPECT_EQ(home.listener.outcomes(), (Events{"ErrorConnecting", "SendFailed:busy"}));
}

class AuthLogin : public ::testing::Test {
 protected:
  void SetUp() override {
    home.context.settings.set("Uname0", "user");
    home.context.settings.set("UseAuthentication", true);
    home.sender->initialise(0);
    home.sender->setPassword("secret");
    home.sender->connect();
    home.socket.socketState = SocketState::Connected;
    home.sender->onSocketConnected();
    home.sender->onDataReceived("220 hi\r\n");
  }
  SenderHome home;
};

TEST_F(AuthLogin, EhloLinesInSeparateChunksDriveTheLogin) {
  EXPECT_EQ(home.socket.last(), "EHLO example.org\r\n");
  home.sender->onDataReceived("250-mail.example.org\r\n");
  EXPECT_EQ(home.socket.last(), "AUTH LOGIN\r\n");
  home.sender->onDataReceived("250-SIZE 100\r\n");
  EXPECT_EQ(home.sender->sessionState(), SmtpState::AwaitAuthReply);  // waits for a reply that names AUTH LOGIN
  home.sender->onDataReceived("250 AUTH LOGIN PLAIN\r\n");
  EXPECT_EQ(home.socket.last(), "dXNlcg==\r\n");
  home.sender->onDataReceived("250 ok\r\n");
  EXPECT_EQ(home.socket.last(), "c2VjcmV0\r\n");
  home.sender->onDataReceived("250 ok\r\n");
  EXPECT_EQ(home.listener.outcomes(), Events{"Connected"});
}

TEST_F(AuthLogin, ThreeThirtyFourAndTwoThirtyFiveFailAsDocumented) {
  home.sender->onDataReceived("250 AUTH LOGIN\r\n");
  home.sender->onDataReceived("334 VXNlcm5hbWU6\r\n");
  EXPECT_EQ(home.listener.outcomes(), Events{"SendFailed:VXNlcm5hbWU6"});
}

TEST_F(AuthLogin, RejectedPasswordFailsThenReportsTheConnectionError) {
  home.sender->onDataReceived("250 hi\r\n");
  home.sender->onDataReceived("250 AUTH LOGIN\r\n");
  home.sender->onDataReceived("250 ok\r\n");
  home.sender->onDataReceived("535 bad credentials\r\n");
  EXPECT_EQ(home.listener.outcomes(), (Events{"SendFailed:bad credentials", "ErrorConnecting"}));
}

TEST(SmtpSend, RecipientChecksCountEveryAddress) {
  SenderHome home;
  home.sender->setRecipient(addresses(50));
  home.sender->setCcRecipient(addresses(49));
  home.sender->setBccRecipient("last@x.org");
  home.sender->send();
  EXPECT_TRUE(home.listener.outcomes().empty());

  home.sender->setBccRecipient("last@x.org;one.more@x.org");
  home.sender->send();
  EXPECT_EQ(home.listener.outcomes().back(), "SendFailed:Too many recipients");

  home.sender->setRecipient("");
  home.sender->setCcRecipient(addresses(101));
  home.sender->send();
  EXPECT_EQ(home.listener.outcomes().back(),
            "SendFailed:No Recipient E-mail Address Specified\r\nToo many recipients");
}

TEST(SmtpSend, RefusesToRunBeforeInitialise) {
  SenderHome home;
  SmtpSession fresh(home.context, home.socket, home.listener, 0);
  try {
    fresh.send();
    FAIL() << "no error";
  } catch (const AppError& error) {
    EXPECT_EQ(error.number(), 23000);
    EXPECT_EQ(error.description(), "Sendmail not initialised");
  }
}

TEST(SmtpSend, SocketErrorsFailOrReportTheUnusableAddress) {
  SenderHome home;
  home.sender->setRecipient("to@x.org");
  home.sender->send();
  home.sender->onSocketError(10061, "Connection refused");
  EXPECT_EQ(home.listener.outcomes(), Events{"SendFailed:Connection refused"});

  home.socket.socketState = SocketState::Error;
  home.sender->onSocketError(kAddressNotAvailable, "Address not available");
  EXPECT_EQ(home.listener.outcomes().back(), "ErrorConnecting");
  EXPECT_EQ(home.socket.socketState, SocketState::Closed);
  EXPECT_TRUE(home.sender->pendingErrors().empty());
}

TEST(SmtpTimeout, QuietServerGetsStatusAfterTenSecondsAndFailsAtTheDeadline) {
  SenderHome home;
  home.sender->setMessageTimeout(-30);  // the absolute value counts
  home.sender->setRecipient("to@x.org");
  home.sender->send();
  home.listener.events.clear();
  home.advance(9);
  home.sender->onTimerTick();
  EXPECT_TRUE(home.listener.events.empty());
  home.advance(1);
  home.sender->onTimerTick();
  EXPECT_EQ(home.listener.events, Events{"Status:Retrying ... 20"});
  home.advance(20);
  home.sender->onTimerTick();
  EXPECT_EQ(home.listener.events.back(), "SendFailed:Timeout occurred: The SMTP Host did not respond to the request");
  EXPECT_FALSE(home.socket.timerOn);
}

TEST(SmtpTimeout, EveryReplyPushesTheDeadline) {
  SenderHome home;
  home.sender->setMessageTimeout(15);
  home.connectPlain();
  home.advance(14);
  home.sender->onDataReceived("250 late but here\r\n");
  home.advance(14);
  home.sender->onTimerTick();
  EXPECT_FALSE(home.sender->failed());
}

TEST(SmtpProgress, ReportsChangedPercentagesAtMostFourTimesASecond) {
  SenderHome home;
  home.connectPlain();
  home.sender->setRecipient("to@x.org");
  home.sender->setMessage(std::string(1000, 'x'));
  home.sender->send();
  home.listener.events.clear();
  home.sender->onBytesWritten(250);
  home.sender->onBytesWritten(250);  // same moment: too soon
  home.advance(1);
  home.sender->onBytesWritten(0);
  home.advance(1);
  home.sender->onBytesWritten(0);  // still 50 %: not repeated
  home.advance(1);
  home.sender->onBytesWritten(900);
  EXPECT_EQ(home.listener.events, (Events{"Progress:25", "Progress:50", "Progress:100"}));
}

TEST(SmtpProperties, PortRangeAddsAndClearsItsError) {
  SenderHome home;
  home.sender->setSmtpPort(0);
  EXPECT_TRUE(home.sender->pendingErrors().contains("Invalid Remote Port"));
  EXPECT_EQ(home.sender->smtpPort(), 25);
  home.sender->setSmtpPort(65536);
  home.sender->setSmtpPort(2525);
  EXPECT_TRUE(home.sender->pendingErrors().empty());
  EXPECT_EQ(home.context.settings.get("RemotePort").number(), 2525);
  // A pending error is held once, whatever its case, and reported with the others.
  home.sender->setSmtpPort(-1);
  home.sender->setSmtpPort(0);
  home.sender->send();
  EXPECT_EQ(home.listener.outcomes(),
            std::vector<std::string>{"SendFailed:Invalid Remote Port\r\nNo Recipient E-mail Address Specified"});
}

TEST(SmtpProperties, BoundedValuesIgnoreOutOfRangeWrites) {
  SenderHome home;
  home.sender->setConnectRetry(21);
  home.sender->setConnectTimeout(0);
  EXPECT_EQ(home.sender->connectRetry(), 3);
  EXPECT_EQ(home.sender->connectTimeout(), 10);
  EXPECT_TRUE(home.sender->pendingErrors().empty());
  home.sender->setConnectRetry(20);
  home.sender->setConnectTimeout(120);
  EXPECT_EQ(home.context.settings.get("ConnectRetry").number(), 20);
  EXPECT_EQ(home.context.settings.get("ConnectTimeout").number(), 120);
}

TEST(SmtpProperties, PriorityWordFollowsOnlyTheThreeKnownValues) {
  SenderHome home;
  EXPECT_EQ(home.sender->fields().priorityWord, "");
  home.sender->setPriority(send::Priority::Highest);
  EXPECT_EQ(home.sender->fields().priorityWord, "High");
  home.sender->setPriority(send::Priority::Low);
  EXPECT_EQ(home.sender->fields().priorityWord, "High");
  home.sender->setPriority(send::Priority::Lowest);
  EXPECT_EQ(home.sender->fields().priorityWord, "Low");
}

TEST(SmtpProperties, ContentBaseBecomesAnHttpFolder) {
  SenderHome home;
  home.sender->setContentBase("server\\pages");
  EXPECT_EQ(home.sender->contentBase(), "http://server/pages/");
  home.sender->setContentBase("HTTP://Server/");
  EXPECT_EQ(home.sender->contentBase(), "HTTP://Server/");
}

TEST(SmtpProperties, MessageIsFormattedAndFlagsEightBitOfTheLastText) {
  SenderHome home;
  home.sender->setMessage(".x " + std::string(1000, 'x'));
  EXPECT_EQ(home.sender->message(), ".x \r\n" + std::string(998, 'x') + "\r\n" + "xx");
  home.sender->setMessage("caf\xe9");
  EXPECT_TRUE(home.sender->fields().eightBit);
  home.sender->setMessage("cafe");
  EXPECT_FALSE(home.sender->fields().eightBit);
}

TEST(SmtpProperties, AttachmentsNeedExistingFilesAndKeepTheirNames) {
  SenderHome home;
  files::writeTextFile(home.dir.path() / "a.txt", "12345");
  files::writeTextFile(home.dir.path() / "b.pdf", "123");
  const std::string folder = home.dir.path().string();
  home.sender->setAttachment(" " + folder + "/a.txt ;" + folder + "/b.pdf");
  EXPECT_EQ(home.sender->fields().attachmentNames, (std::vector<std::string>{"a.txt", "b.pdf"}));
  EXPECT_EQ(home.sender->fields().attachmentFileBytes, 8);
  EXPECT_EQ(home.sender->fields().attachmentNameBytes, 10);
  home.sender->setAttachment(folder + "/a.txt;" + folder + "/gone.txt");
  EXPECT_TRUE(home.sender->pendingErrors().contains("The file you tried to attach does not exist"));
  home.sender->setAttachment("");
  EXPECT_TRUE(home.sender->pendingErrors().empty());
}

TEST(SmtpInitialise, ReadsTheAccountAndThePortFallBack) {
  SenderHome home;
  home.context.settings.set("SMTP3", "smtp.three.org");
  home.context.settings.set("SMTPPort3", "587");
  home.context.settings.set("Uname3", "three");
  home.context.settings.set("ReplyAddress3", "three@x.org");
  home.sender->setRecipient("old@x.org");
  home.sender->initialise(3);
  EXPECT_EQ(home.sender->smtpHost(), "smtp.three.org");
  EXPECT_EQ(home.sender->smtpPort(), 587);
  EXPECT_EQ(home.sender->username(), "three");
  EXPECT_EQ(home.sender->from(), "three@x.org");
  EXPECT_EQ(home.sender->fromDisplayName(), "");
  EXPECT_TRUE(home.sender->fields().recipient.empty());
  // A saved RemotePort other than 25 wins over every account's port.
  home.context.settings.set("RemotePort", "2525");
  home.sender->initialise(3);
  EXPECT_EQ(home.sender->smtpPort(), 2525);
}

TEST(SmtpDateLine, TimeZoneFromTheStandardBias) {
  EXPECT_EQ(timeZoneText(-60), "+0100");
  EXPECT_EQ(timeZoneText(300), "-0500");
  EXPECT_EQ(timeZoneText(-330), "+0530");
  EXPECT_EQ(timeZoneText(210), "-0330");
  EXPECT_EQ(timeZoneText(0), "+0000");
  EXPECT_EQ(timeZoneText(30), "+0030");  // under an hour west keeps the plus
  EXPECT_EQ(dateLine(text::DateTime{2026, 1, 4, 7, 5, 9}, "-0500"), "Date: Sun, 4 Jan 2026 07:05:09 -0500\r\n");
}

}  // namespace
}  // namespace vonel::smtp
