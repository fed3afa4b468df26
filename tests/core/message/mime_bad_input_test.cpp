// Broken and oversized MIME: the documented result where there is one, else
// the best readable result, and never a crash or a hang.
#include <gtest/gtest.h>

#include "core/message/attachment_files.h"
#include "core/message/message.h"
#include "core/message/plain_text.h"
#include "core/message/transfer_encoding.h"

namespace vonel::message {
namespace {

clsMessage parsed(std::string body, std::string_view boundary = "b") {
  clsMessage message;
  message.CreateFromText(
      "Subject: s\r\nContent-Type: multipart/mixed; boundary=\"" + std::string(boundary) + "\"\r\n\r\n" + body, false);
  return message;
}

TEST(BrokenMultipart, WithoutAnyMarkerNoPartAndTheBodyIsShown) {
  const auto m = parsed("just text, the boundary never comes\r\n");
  EXPECT_EQ(m.MimePartCount(), 0u);
  EXPECT_EQ(ExtractPlainMessage(m, false), "just text, the boundary never comes");
}

TEST(BrokenMultipart, ACutOffLastSectionIsDroppedAndTheRestKept) {
  const auto m = parsed(
      "--b\r\nContent-Type: text/plain\r\n\r\nfirst\r\n"
      "--b\r\nContent-Type: image/png; name=\"p.png\"\r\nContent-Transfer-Encoding: base64\r\n\r\niVBORw0KGgoAAAANSU");
  ASSERT_EQ(m.MimePartCount(), 1u);
  EXPECT_EQ(ExtractPlainMessage(m, false), "first");
}

TEST(BrokenMultipart, RepeatedMarkersGiveEmptyPartsThatAreSkipped) {
  const auto m = parsed("--b\r\n--b\r\n--b\r\nContent-Type: text/plain\r\n\r\ntext\r\n--b--\r\n--b--\r\n");
  ASSERT_EQ(m.MimePartCount(), 4u);
  EXPECT_EQ(m.MimePart(1).ContentType, "");
  EXPECT_EQ(m.MimePart(3).ContentType, "text/plain");
  EXPECT_EQ(ExtractPlainMessage(m, false), "text");
}

TEST(BrokenMultipart, AMarkerInsideAttachmentDataSplitsIt) {
  const auto m = parsed(
      "--b\r\nContent-Type: application/zip; name=\"a.zip\"\r\nContent-Transfer-Encoding: base64\r\n\r\n"
      "UEsDBA==\r\n--b\r\nAAAA\r\n--b--\r\n");
  ASSERT_EQ(m.MimePartCount(), 2u);
  EXPECT_EQ(DecodedPartBytes(m.MimePart(1).Data, m.MimePart(1).Encoding), "PK\x03\x04");
  EXPECT_EQ(m.AttachmentFilenames(), "a.zip * ");
}

TEST(BadEncodings, InvalidBase64AndQuotedPrintableDecodeWhatTheyCan) {
  EXPECT_EQ(DecodeBase64Bytes("SGV*sb\r\nG8!=garbage"), "Hello");
  EXPECT_EQ(DecodeBase64Bytes("S"), "");
  EXPECT_EQ(DecodeBase64Bytes("***"), "");
  EXPECT_EQ(DecodeQuotedPrintableBytes("=ZZ=4=4g=\t \r\nx="), "=ZZ=4=4gx");
}

TEST(LargeInput, AThousandPartsAreAllListed) {
  std::string body;
  for (int i = 0; i < 1000; ++i) {
    body += "--b\r\nContent-Type: application/octet-stream; name=\"f" + std::to_string(i) +
            ".bin\"\r\nContent-Transfer-Encoding: base64\r\n\r\nAAEC\r\n";
  }
  const auto m = parsed(body + "--b--\r\n");
  ASSERT_EQ(m.MimePartCount(), 1000u);
  ASSERT_EQ(m.AttachmentNames().size(), 1000u);
  EXPECT_EQ(m.MimePart(1000).Filename, "f999.bin");
}

TEST(LargeInput, AFiftyMegabyteAttachmentDecodesExactly) {
  std::string bytes(37'500'000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 131) >> 3);
  std::string encoded = EncodeMime64String(bytes);
  std::string lines;
  lines.reserve(encoded.size() / 76 * 78 + 80);
  for (std::size_t i = 0; i < encoded.size(); i += 76) lines.append(encoded, i, 76).append("\r\n");
  encoded.clear();
  const auto m = parsed("--b\r\nContent-Type: text/plain\r\n\r\nsee attached\r\n"
                        "--b\r\nContent-Type: application/octet-stream; name=\"big.bin\"\r\n"
                        "Content-Transfer-Encoding: base64\r\n\r\n" + lines + "--b--\r\n");
  ASSERT_EQ(m.MimePartCount(), 2u);
  EXPECT_TRUE(DecodedPartBytes(m.MimePart(2).Data, "base64") == bytes);
  EXPECT_EQ(ExtractPlainMessage(m, false), "see attached");
}

}  // namespace
}  // namespace vonel::message
