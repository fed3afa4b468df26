#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
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

}  // namespace
}  // namespace vonel::smtp
