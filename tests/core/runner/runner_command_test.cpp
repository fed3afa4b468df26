#include "core/runner/runner_command.h"

#include <gtest/gtest.h>

#include <string>

#include "core/message/mailto_link.h"

namespace vonel::runner {
namespace {

TEST(RunnerCommand, OnlyAnEmptyCommandOrShowAsksForTheWindow) {
  EXPECT_TRUE(showsWindow(""));
  EXPECT_TRUE(showsWindow("   "));
  EXPECT_TRUE(showsWindow(" SHOW "));
  EXPECT_FALSE(showsWindow("show"));
  EXPECT_FALSE(showsWindow("SHOW me"));
}

TEST(RunnerCommand, SlashMailtoComposesToWhatFollowsInItsOwnCase) {
  const MailCommand command = readMailCommand("\"C:\\Vonel.exe\" /MailTo:  Bob.Smith@Example.ORG  ");
  EXPECT_EQ(command.kind, MailCommandKind::Compose);
  EXPECT_EQ(command.compose.to, "Bob.Smith@Example.ORG");
  EXPECT_EQ(readMailCommand("/mailto:a@b /mailto:c@d").compose.to, "a@b /mailto:c@d");  // from the first
}

TEST(RunnerCommand, AMailLinkIsDecodedAndItsAttachmentsIgnored) {
  const MailCommand command =
      readMailCommand("MAILTO:J%C3%BCrgen%40example.org?Subject=Hi%20there&body=Line%201%0D%0ALine+2"
                      "&attach=/etc/passwd&attachment=%2Fhome&to=ann@example.org&subject=second");
  ASSERT_EQ(command.kind, MailCommandKind::Compose);
  EXPECT_EQ(command.compose.to, "J\xC3\xBCrgen@example.org, ann@example.org");
  EXPECT_EQ(command.compose.subject, "Hi there");
  EXPECT_EQ(command.compose.body, "Line 1\r\nLine+2");
  EXPECT_EQ(readMailCommand("x mailto:a@b").kind, MailCommandKind::None);  // only at the start without "/"
}

TEST(RunnerCommand, ControlCharactersNeverReachTheAddressOrSubject) {
  const message::ComposeRequest request =
      message::decodeMailto("bob@example.org%0D%0ABcc:%20eve@example.org?subject=Hi%0D%0ABcc:%20eve%00x"
                            "&body=a%00b%0D%0Ac");
  EXPECT_EQ(request.to, "bob@example.org  Bcc: eve@example.org");
  EXPECT_EQ(request.subject, "Hi  Bcc: eve x");
  EXPECT_EQ(request.body, "ab\r\nc");
  EXPECT_EQ(message::decodeMailto("%0A%00").to, "");
}

TEST(RunnerCommand, BrokenEscapesAndFieldsStayAsTheyAre) {
  const message::ComposeRequest request = message::decodeMailto("a%zz@b%4?subject&=x&subject=100%&body=%");
  EXPECT_EQ(request.to, "a%zz@b%4");
  EXPECT_EQ(request.subject, "100%");
  EXPECT_EQ(request.body, "%");
  EXPECT_EQ(message::decodeMailto("").to, "");
  EXPECT_EQ(message::decodeMailto("?").to, "");
}

TEST(RunnerCommand, TenThousandAddressesAreAllKept) {
  std::string link;
  std::string fields = "?";
  for (int i = 0; i < 10000; ++i) {
    link += "user" + std::to_string(i) + "%40example.org,";
    fields += "to=x" + std::to_string(i) + "@example.org&";
  }
  const MailCommand command = readMailCommand("mailto:" + link + fields);
  EXPECT_TRUE(command.compose.to.starts_with("user0@example.org,user1@example.org,"));
  EXPECT_TRUE(command.compose.to.ends_with(", x9999@example.org"));
}

TEST(RunnerCommand, AMessageFileKeepsItsCaseAndLosesItsQuotes) {
  const MailCommand command = readMailCommand("  \"/home/Ann/Saved \"Mail\"/Re: Lunch.EML\"  ");
  EXPECT_EQ(command.kind, MailCommandKind::OpenFile);
  EXPECT_EQ(command.path, "/home/Ann/Saved Mail/Re: Lunch.EML");
  EXPECT_EQ(readMailCommand("/tmp/n\xC3\xA4me.eml").path, "/tmp/n\xC3\xA4me.eml");
  EXPECT_EQ(readMailCommand("/mailto:a@b.eml").kind, MailCommandKind::Compose);  // mailto wins
}

TEST(RunnerCommand, AnythingElseIsIgnored) {
  for (const std::string_view command : {"", "SHOW", "/tmp/message.txt", "mailto", "/mailto", "\xFF\xFE"}) {
    EXPECT_EQ(readMailCommand(command).kind, MailCommandKind::None) << command;
  }
  const std::string huge(1 << 20, '\x01');
  EXPECT_EQ(readMailCommand(huge).kind, MailCommandKind::None);
}

}  // namespace
}  // namespace vonel::runner
