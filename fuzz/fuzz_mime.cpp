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
  const std::string safe = SafeAttachmentName(name);
  if (safe.empty() || safe == "." || safe == ".." || safe.find_first_of("/\\:") != std::string::npos) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);

  MimeContent content;
  NewDecodePart(text, content);
  for (const clsMimeType& part : content.parts) {
    (void)DecodedPartBytes(part.Data, part.Encoding);
    (void)ExtractHtmlPartText(part);
    checkSafeName(part.Filename);
  }
  checkSafeName(text);

  (void)QuotedPrintableDecode(text);
  (void)DecodeMime64(text);
  (void)DecodeQuotedPrintableBytes(text);
  if (DecodeBase64Bytes(EncodeMime64String(text)) != text) std::abort();

  clsMessage message;
  message.CreateFromText(text, false);
  (void)ExtractPlainMessage(message, true);
  return 0;
}
