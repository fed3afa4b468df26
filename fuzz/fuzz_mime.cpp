// Any bytes as a message body: the MIME walk, every transfer decoder, the
// choice of the text to show, and the names attachments would be saved under.
// A saved name that could leave its folder, or a base64 round trip that
// differs, stops the run.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/message/attachment_files.h"
#include "core/message/message.h"
#include "core/message/mime_walk.h"
#include "core/message/plain_text.h"
#include "core/message/transfer_encoding.h"

namespace {

using namespace vonel::message;

void checkSafeName(std::string_view name) {
  const std::string safe = safeAttachmentName(name);
  if (safe.empty() || safe == "." || safe == ".." || safe.find_first_of("/\\:") != std::string::npos) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);

  MimeContent content;
  newDecodePart(text, content);
  for (const MimePart& part : content.parts) {
    (void)decodedPartBytes(part.data, part.encoding);
    (void)extractHtmlPartText(part);
    checkSafeName(part.filename);
  }
  checkSafeName(text);

  (void)quotedPrintableDecode(text);
  (void)decodeMime64(text);
  (void)decodeQuotedPrintableBytes(text);
  if (decodeBase64Bytes(encodeMime64String(text)) != text) std::abort();

  Message message;
  message.createFromText(text, false);
  (void)extractPlainMessage(message, true);
  return 0;
}
