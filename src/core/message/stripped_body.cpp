// The flattened body texts the rule check and the Bayes tokeniser read.
#include "core/message/message.h"
#include "core/message/transfer_encoding.h"
#include "core/text/entities.h"
#include "core/text/markup.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

// Unparsed bodies beyond this are not worth flattening.
constexpr std::size_t kLargestUnparsedBody = 50000;

struct ChosenText {
  std::string body;
  std::string type;
};

// The first part, or the first later part with any text; base64 is undone on the way.
ChosenText chooseText(const clsMessage& message) {
  if (message.MimePartCount() == 0) {
    const std::string_view body = message.MessageBody();
    return {body.size() > kLargestUnparsedBody ? std::string() : std::string(body), {}};
  }
  ChosenText chosen{message.MimePart(1).Data, message.MimePart(1).ContentType};
  for (std::size_t i = 2; i <= message.MimePartCount() && text::trimView(chosen.body).empty(); ++i) {
    const clsMimeType& part = message.MimePart(i);
    chosen = {part.Data, part.ContentType};
    if (!part.Data.empty() && part.Encoding == "base64") chosen.body = DecodeMime64(part.Data);
  }
  return chosen;
}

void decodeEntities(std::string& text) {
  text::HTMLConstToChar(text);
  text::HtmlToChar(text);
}

}  // namespace

void clsMessage::CreateStrippedBody() {
  ChosenText chosen = chooseText(*this);
  // Whatever the part says its encoding is.
  if (chosen.body.find('=') != std::string::npos) chosen.body = QuotedPrintableDecode(chosen.body);

  StrippedBody = chosen.body;
  if (!StrippedBody.empty()) {
    for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::ReplaceWith(StrippedBody, lineEnd, " ");
    decodeEntities(StrippedBody);
  }

  const std::string type = text::lower(chosen.type);
  if (chosen.body.empty() || (type.find("html") == std::string::npos && type.find("text") == std::string::npos)) {
    HtmlStrippedBody.clear();
    return;
  }
  HtmlStrippedBody = std::move(chosen.body);
  for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::ReplaceWith(HtmlStrippedBody, lineEnd, "");
  decodeEntities(HtmlStrippedBody);
  text::StripHtml(HtmlStrippedBody);
}

}  // namespace vonel::message
