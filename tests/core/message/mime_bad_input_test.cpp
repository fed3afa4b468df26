// Broken and oversized MIME: the documented result where there is one, else
// the best readable result, and never a crash or a hang.
#include <gtest/gtest.h>

#include "core/message/attachment_files.h"
#include "core/message/message.h"
#include "core/message/plain_text.h"
#include "core/message/transfer_encoding.h"

namespace vonel::message {
namespace {

Message parsed(std::string body, std::string_view boundary = "b") {
  Message message;
  message.createFromText(
      "Subject: s\r\nContent-Type: multipart/mixed; boundary=\"" + std::string(boundary) + "\"\r\n\r\n" + body, false);
  return message;
}

TEST(BrokenMultipart, WithoutAnyMarkerNoPartAndTheBodyIsShown) {
  const auto m = parsed("just text, the boundary never comes\r\n");
  EXPECT_EQ(m.mimePartCount(), 0u);
  EXPECT_EQ(extractPlainMessage(m, false), "just text, the boundary never comes");
}

TEST(BrokenMultipart, ACutOffLastSectionIsDroppedAndTheRestKept) {
  const auto m = parsed(
      "--b\r\nContent-Type: text/plain\r\n\r\nfirst\r\n"
      "--b\r\nContent-Type: image/png; name=\"p.png\"\r\nContent-Transfer-Encoding: base64\r\n\r\niVBORw0KGgoAAAANSU");
  ASSERT_EQ(m.mimePartCount(), 1u);
  EXPECT_EQ(extractPlainMessage(m, false), "first");
}

TEST(BrokenMultipart, RepeatedMarkersGiveEmptyPartsThatAreSkipped) {
  const auto m = parsed("--b\r\n--b\r\n--b\r\nContent-Type: text/plain\r\n\r\ntext\r\n--b--\r\n--b--\r\n");
  ASSERT_EQ(m.mimePartCount(), 4u);
  EXPECT_EQ(m.mimePart(1).contentType, "");
  EXPECT_EQ(m.mimePart(3).contentType, "text/plain");
  EXPECT_EQ(extractPlainMessage(m, false), "text");
}

TEST(BrokenMultipart, AMarkerInsideAttachmentDataSplitsIt) {
  const auto m = parsed(
      "--b\r\nContent-Type: application/zip; name=\"a.zip\"\r\nContent-Transfer-Encoding: base64\r\n\r\n"
      "UEsDBA==\r\n--b\r\nAAAA\r\n--b--\r\n");
  ASSERT_EQ(m.mimePartCount(), 2u);
  EXPECT_EQ(decodedPartBytes(m.mimePart(1).data, m.mimePart(1).encoding), "PK\x03\x04");
  EXPECT_EQ(m.attachmentFilenames(), "a.zip * ");
}

TEST(BadEncodings, InvalidBase64AndQuotedPrintableDecodeWhatTheyCan) {
  EXPECT_EQ(decodeBase64Bytes("SGV*sb\r\nG8!=garbage"), "Hello");
  EXPECT_EQ(decodeBase64Bytes("S"), "");
  EXPECT_EQ(decodeBase64Bytes("***"), "");
  EXPECT_EQ(decodeQuotedPrintableBytes("=ZZ=4=4g=\t \r\nx="), "=ZZ=4=4gx");
}

TEST(LargeInput, AThousandPartsAreAllListed) {
  std::string body;
  for (int i = 0; i < 1000; ++i) {
    body += "--b\r\nContent-Type: application/octet-stream; name=\"f" + std::to_string(i) +
            ".bin\"\r\nContent-Transfer-Encoding: base64\r\n\r\nAAEC\r\n";
  }
  const auto m = parsed(body + "--b--\r\n");
  ASSERT_EQ(m.mimePartCount(), 1000u);
  ASSERT_EQ(m.attachmentNames().size(), 1000u);
  EXPECT_EQ(m.mimePart(1000).filename, "f999.bin");
}

TEST(LargeInput, AFiftyMegabyteAttachmentDecodesExactly) {
  std::string bytes(37'500'000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 131) >> 3);
  std::string encoded = encodeMime64String(bytes);
  std::string lines;
  lines.reserve(encoded.size() / 76 * 78 + 80);
  for (std::size_t i = 0; i < encoded.size(); i += 76) lines.append(encoded, i, 76).append("\r\n");
  encoded.clear();
  const auto m = parsed("--b\r\nContent-Type: text/plain\r\n\r\nsee attached\r\n"
                        "--b\r\nContent-Type: application/octet-stream; name=\"big.bin\"\r\n"
                        "Content-Transfer-Encoding: base64\r\n\r\n" + lines + "--b--\r\n");
  ASSERT_EQ(m.mimePartCount(), 2u);
  EXPECT_TRUE(decodedPartBytes(m.mimePart(2).data, "base64") == bytes);
  EXPECT_EQ(extractPlainMessage(m, false), "see attached");
}

}  // namespace
}  // namespace vonel::message
