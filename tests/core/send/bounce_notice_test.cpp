#include "core/send/bounce_notice.h"

#include <gtest/gtest.h>

#include "core/settings/settings_store.h"
#include "../test_home.h"

namespace vonel::send {
namespace {

class BounceTest : public ::testing::Test, public MessageSpooler {
 protected:
  testing::TestHome home;
  SettingsStore settings{home.log, home.prompt};
  std::vector<std::string> spooled;

  void spoolMessage(message::Message& message, const std::string& from, const std::string& name) override {
    spooled.push_back(message.toEmail() + "|" + message.subject + "|" + from + "|" + name);
  }
  static message::Message original(std::string_view text) {
    message::Message m;
    m.createFromText(std::string(text), false);
    return m;
  }
};

TEST_F(BounceTest, TheNoticeNamesTheAddressItCameToAndQuotesTheHeadersWithoutDeliveredTo) {
  const auto m = original(
      "Delivered-To: me@example.org\r\nFrom: Spammer <spam@example.net>\r\nTo: me@example.org\r\n"
      "Subject: Offer\r\nX-Envelope-To: <Alias@Example.org>, other@example.org\r\nX-Message-Read: 1\r\n\r\nbody\r\n");
  const auto notice = bounceNotice(settings, m);
  ASSERT_TRUE(notice);
  EXPECT_EQ(notice->sender, "MAILER-DAEMON@example.org");
  EXPECT_EQ(notice->message.toEmail(), "spam@example.net");
  EXPECT_EQ(notice->message.subject, "Failure Notice");
  const std::string body(notice->message.messageBody());
  EXPECT_EQ(body.substr(0, body.find("--- Below")),
            "Hi. This is the qmail-send program at example.org.\r\n"
            "I'm afraid I wasn't able to deliver your message to the following addresses.\r\n"
            "This is a permanent error; I've given up. Sorry it didn't work out.\r\n\r\n"
            "<alias@example.org>:\r\n"
            "Sorry, no mailbox here by that name. (#5.1.1)\r\n\r\n");
  EXPECT_EQ(body.find("Delivered-To"), std::string::npos);
  EXPECT_EQ(body.find("X-Message-Read: 1"), std::string::npos);
  EXPECT_NE(body.find("Subject: Offer"), std::string::npos);
}

TEST_F(BounceTest, SettingsNameTheSubjectAndTheMailerAndTheAccountGivesTheAddressLast) {
  settings.set("BOUNCESUBJECT", Value("Undeliverable"));
  settings.set("BOUNCEPREFIX", Value("postmaster@"));
  settings.set("REPLYADDRESS3", Value("mine@example.com"));
  auto m = original("Reply-To: back@example.net\r\nSubject: x\r\n\r\nbody\r\n");
  m.fromAccount = 3;
  ASSERT_TRUE(bounceMessage(settings, *this, m));
  EXPECT_EQ(spooled, std::vector<std::string>{"back@example.net|Undeliverable|postmaster@example.com|postmaster@example.com"});
}

TEST_F(BounceTest, WithoutAnyAddressOfTheSenderNothingIsSpooled) {
  EXPECT_FALSE(bounceMessage(settings, *this, original("To: me@example.org\r\nSubject: x\r\n\r\nbody\r\n")));
  EXPECT_TRUE(spooled.empty());
}

}  // namespace
}  // namespace vonel::send
