#include <gtest/gtest.h>

#include <regex>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "protocol/smtp/smtp_session.h"
#include "sender_home.h"

namespace vonel::smtp {
namespace {

using testing::SenderHome;

struct SpoolHome : SenderHome {
  std::filesystem::path out() const { return dir.path() / "00_outbound_0.eml"; }
  std::string attach(const std::string& name, const std::string& bytes) {
    files::writeTextFile(dir.path() / name, bytes);
    return (dir.path() / name).string();
  }
};

TEST(SpoolToFile, ValidationErrorsAreReportedTogetherAndNothingIsWritten) {
  SpoolHome home;
  home.sender->setEncodeType(send::EncodeType::UUEncode);
  home.sender->setAsHtml(true);
  EXPECT_FALSE(home.sender->spoolToFile(home.out()));
  EXPECT_EQ(home.listener.events,
            std::vector<std::string>{"SendFailed:Sending HTML requires MIME encoding\r\nNo Recipient E-mail Address Specified"});
  EXPECT_FALSE(files::fileExists(home.out()));
  EXPECT_TRUE(home.sender->pendingErrors().empty());
  EXPECT_TRUE(home.socket.sent.empty());
}

TEST(SpoolToFile, AttachmentThatCannotBeEncodedFailsTheSpool) {
  SpoolHome home;
  home.sender->setRecipient("to@x.org");
  const std::string path = home.attach("gone.bin", "soon gone");
  home.sender->setAttachment(path);
  std::filesystem::remove(path);
  EXPECT_FALSE(home.sender->spoolToFile(home.out()));
  ASSERT_EQ(home.listener.events.size(), 1u);
  EXPECT_TRUE(home.listener.events[0].starts_with("SendFailed:File not found: ")) << home.listener.events[0];

  // The uuencode mode has no file encoder: it fails on the first attachment.
  home.listener.events.clear();
  home.sender->setEncodeType(send::EncodeType::UUEncode);
  home.sender->setAttachment(home.attach("there.bin", "here"));
  EXPECT_FALSE(home.sender->spoolToFile(home.out()));
  EXPECT_EQ(home.listener.events, std::vector<std::string>{"SendFailed:Invalid procedure call or argument"});
  EXPECT_FALSE(files::fileExists(home.out()));
}

TEST(SpoolToFile, FolderThatCannotTakeTheFileGivesTheDiskError) {
  SpoolHome home;
  home.sender->setRecipient("to@x.org");
  EXPECT_FALSE(home.sender->spoolToFile(home.dir.path() / "no such folder" / "x.eml"));
  EXPECT_EQ(home.listener.events, std::vector<std::string>{"SendFailed:Unable to spool message. Disk full/error?"});
}

TEST(SpoolToFile, AMessageWithoutIdGetsOneOnTheAccountsDomainAndKeepsItsOwn) {
  SpoolHome home;
  home.sender->setRecipient("to@x.org");
  home.sender->setFrom("other@elsewhere.net");  // an override: the account's domain still names the id
  ASSERT_TRUE(home.sender->spoolToFile(home.out()));
  const std::string id = home.sender->messageId();
  EXPECT_TRUE(std::regex_match(id, std::regex("<20261123093015\\.[0-9a-f]{24}@example\\.org>"))) << id;
  EXPECT_NE(files::loadTextFile(home.out()).find("\r\nSubject: \r\nMessage-ID: " + id + "\r\n"), std::string::npos);

  // Each new message gets its own; one that has an id keeps it.
  home.sender->initialise(0);
  home.sender->setRecipient("to@x.org");
  ASSERT_TRUE(home.sender->spoolToFile(home.out()));
  EXPECT_NE(home.sender->messageId(), id);
  home.sender->setMessageId("<mine@x.org>");
  ASSERT_TRUE(home.sender->spoolToFile(home.out()));
  EXPECT_EQ(home.sender->messageId(), "<mine@x.org>");
  const std::string text = files::loadTextFile(home.out());
  EXPECT_NE(text.find("\r\nMessage-ID: <mine@x.org>\r\n"), std::string::npos);
  EXPECT_EQ(text.find("Message-ID:"), text.rfind("Message-ID:"));

  // Without an account address, the sender's domain; without either, localhost.
  home.context.settings.set("ReplyAddress0", "");
  home.sender->initialise(0);
  home.sender->setRecipient("to@x.org");
  home.sender->setFrom("someone@Mail.Example.COM>");
  ASSERT_TRUE(home.sender->spoolToFile(home.out()));
  EXPECT_TRUE(home.sender->messageId().ends_with("@Mail.Example.COM>")) << home.sender->messageId();
  home.sender->initialise(0);
  home.sender->setRecipient("to@x.org");
  ASSERT_TRUE(home.sender->spoolToFile(home.out()));
  EXPECT_TRUE(home.sender->messageId().ends_with("@localhost>")) << home.sender->messageId();
}

}  // namespace
}  // namespace vonel::smtp
