#include "core/send/spool_writer.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/message/transfer_encoding.h"
#include "core/send/mail_size.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"

namespace vonel::send {
namespace {

const text::DateTime kNow{2026, 11, 23, 12, 0, 0};

// The decoder keeps the blank fill of its buffer; only the encoded bytes count.
std::string decodedBytes(const std::string& line) {
  const std::size_t padding = line.ends_with("==") ? 2 : line.ends_with("=") ? 1 : 0;
  return message::decodeMime64(line).substr(0, line.size() / 4 * 3 - padding);
}

struct SpoolCase {
  vonel::testing::TempDir dir;
  MailFields mail;
  SpoolCase() {
    mail.from = "me@example.org";
    mail.recipient = {"to@x.org"};
    mail.subject = "Hi";
    mail.message = "Body";
  }
  std::string spool() {
    files::WriteBatch lone;
    writeSpoolFile(dir.path() / "00_outbound_0.eml", mail, kNow, "1.2.3", lone);
    return files::loadTextFile(dir.path() / "00_outbound_0.eml");
  }
  std::string attach(const std::string& name, const std::string& bytes) {
    files::writeTextFile(dir.path() / name, bytes);
    mail.attachmentPaths.push_back((dir.path() / name).string());
    mail.attachmentNames.push_back(name);
    return (dir.path() / name).string();
  }
};

TEST(SpoolWriter, PlainMessageHeadersInOrderAndTheBodyAsWritten) {
  SpoolCase c;
  c.mail.fromDisplayName = "Me \"Quoted\", Myself";
  c.mail.recipient = {"a@x.org", "b@x.org", "c@x.org"};
  c.mail.recipientDisplayName = {"Ann", ""};
  c.mail.ccRecipient = {"cc@x.org"};
  c.mail.bccRecipient = {" hidden@x.org "};
  c.mail.replyToAddress = "reply@x.org";
  c.mail.inReplyTo = "<id@x.org>";
  c.mail.messageId = "<new@example.org>";
  c.mail.receipt = true;
  c.mail.message = ".\r\n..\r\n.x";
  EXPECT_EQ(c.spool(),
            "From: \"Me \"Quoted\", Myself\" <me@example.org>\r\n"
            "To: \"Ann\" <a@x.org>, \r\n    \"b@x.org\" <b@x.org>, \r\n    <c@x.org>\r\n"
            "Cc: <cc@x.org>\r\n"
            "Bcc: <hidden@x.org>\r\n"
            "Reply-to: <reply@x.org>\r\n"
            "In-Reply-To: <id@x.org>\r\n"
            "Subject: Hi\r\n"
            "Message-ID: <new@example.org>\r\n"
            "MIME-Version: 1.0\r\n"
            "X-Priority: 3\r\n"
            "X-MSMail-Priority: \r\n"
            "X-Mailer: Vonel 1.2.3\r\n"
            "Disposition-Notification-To: \"Me \"Quoted\", Myself\" <me@example.org>\r\n"
            "Content-Type: text/plain;\r\n"
            "\tcharset=\"iso-8859-1\"\r\n"
            "Content-Transfer-Encoding: 7bit\r\n"
            "\r\n\r\n"
            ".\r\n..\r\n.x\r\n"
            "\r\n");
}

TEST(SpoolWriter, HtmlEightBitAndContentBase) {
  SpoolCase c;
  c.mail.asHtml = true;
  c.mail.eightBit = true;
  c.mail.contentBase = "http://x.org/";
  const std::string text = c.spool();
  EXPECT_NE(text.find("Content-Type: text/html;\r\n"), std::string::npos);
  EXPECT_NE(text.find("Content-Transfer-Encoding: 8bit\r\nContent-Base: \"http://x.org/\"\r\n\r\n\r\n"),
            std::string::npos);
  EXPECT_EQ(text.find("boundary"), std::string::npos);
}

TEST(SpoolWriter, UUEncodeModeHasNoMimeHeaders) {
  SpoolCase c;
  c.mail.encodeType = EncodeType::UUEncode;
  EXPECT_EQ(c.spool(), "From: \"me@example.org\" <me@example.org>\r\nTo: <to@x.org>\r\nSubject: Hi\r\n\r\n\r\nBody\r\n\r\n");
}

TEST(SpoolWriter, AttachmentsAreBase64PartsThatDecodeToTheFile) {
  SpoolCase c;
  std::string binary;
  for (int i = 0; i < 30000; ++i) binary += static_cast<char>(i * 7 % 256);
  c.attach("data.bin", binary);
  c.attach("notes.TXT", "");
  const std::string text = c.spool();
  const std::string boundary = spoolBoundary(kNow);
  EXPECT_EQ(boundary, "----_=_NextPart_000_00046349.50000000");
  EXPECT_NE(text.find("Content-Type: multipart/mixed;\r\n\tboundary=\"" + boundary +
                      "\"\r\n\r\nThis is a multi-part message in MIME format.\r\n\r\n--" + boundary +
                      "\r\nContent-Type: text/plain;"),
            std::string::npos);
  const std::string partHead = "--" + boundary +
                               "\r\nContent-Type: application/octet-stream;\r\n\tname=\"data.bin\"\r\n"
                               "Content-Transfer-Encoding: base64\r\nContent-Disposition: attachment;\r\n"
                               "\tfilename=\"data.bin\"\r\n\r\n";
  const std::size_t start = text.find(partHead);
  ASSERT_NE(start, std::string::npos);
  const std::size_t end = text.find("\r\n\r\n\r\n--" + boundary, start + partHead.size());
  const std::vector<std::string> lines = text::split(text.substr(start + partHead.size(), end - start - partHead.size()), "\r\n");
  ASSERT_EQ(lines.size(), 3u);  // 11400 + 11400 + 7200 bytes
  EXPECT_EQ(lines[0].size(), 15200u);
  std::string decoded;
  for (const auto& line : lines) decoded += decodedBytes(line);
  EXPECT_EQ(decoded, binary);
  EXPECT_NE(text.find("Content-Type: text/plain;\r\n\tname=\"notes.TXT\""), std::string::npos);
  EXPECT_TRUE(text.ends_with("\tfilename=\"notes.TXT\"\r\n\r\n\r\n\r\n--" + boundary + "--\r\n\r\n"));
}

TEST(SpoolWriter, FailureLeavesNoFileAndKeepsTheOldOne) {
  SpoolCase c;
  files::writeTextFile(c.dir.path() / "00_outbound_0.eml", "old");
  c.mail.attachmentPaths = {(c.dir.path() / "vanished.bin").string()};
  c.mail.attachmentNames = {"vanished.bin"};
  EXPECT_THROW(c.spool(), AttachmentFailed);
  c.mail.encodeType = EncodeType::UUEncode;
  c.attach("present.bin", "x");
  c.mail.attachmentPaths.erase(c.mail.attachmentPaths.begin());
  c.mail.attachmentNames.erase(c.mail.attachmentNames.begin());
  EXPECT_THROW(c.spool(), AttachmentFailed);
  EXPECT_EQ(files::loadTextFile(c.dir.path() / "00_outbound_0.eml"), "old");
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(c.dir.path())) ++entries;
  EXPECT_EQ(entries, 2u);  // no temporary left behind
}

TEST(EstimateMailSize, SumsEveryDocumentedPart) {
  MailFields mail;
  mail.from = "me@x.org";                     // 8: 93 + 8, and 8 again
  mail.recipient = {"a@x.org", "bb@x.org"};   // 15+14, 15+16+6
  mail.recipientDisplayName = {"A"};          // 11+1
  mail.bccRecipient = {"c@x.org"};            // 15+7
  mail.subject = "Hi";                        // 2
  mail.message = "Body";                      // 4
  EXPECT_EQ(estimateMailSize(mail), 101 + 29 + 37 + 12 + 22 + 8 + 6 + 64);
  mail.useAuthentication = true;
  mail.username = "user";  // 25 + 8 + 4*4/3 (5)
  mail.attachmentPaths = {"f"};
  mail.attachmentFileBytes = 570;  // 760 + 42 + 20 + 2*3 + 182 + 290
  mail.attachmentNameBytes = 3;
  EXPECT_EQ(estimateMailSize(mail), 279 + 38 + 760 + 42 + 20 + 6 + 182 + 290);
}

}  // namespace
}  // namespace vonel::send
