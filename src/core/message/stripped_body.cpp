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
ChosenText chooseText(const Message& message) {
  if (message.mimePartCount() == 0) {
    const std::string_view body = message.messageBody();
    return {body.size() > kLargestUnparsedBody ? std::string() : std::string(body), {}};
  }
  ChosenText chosen{message.mimePart(1).data, message.mimePart(1).contentType};
  for (std::size_t i = 2; i <= message.mimePartCount() && text::trimView(chosen.body).empty(); ++i) {
    const MimePart& part = message.mimePart(i);
    chosen = {part.data, part.contentType};
    if (!part.data.empty() && part.encoding == "base64") chosen.body = decodeMime64(part.data);
  }
  return chosen;
}

void decodeEntities(std::string& text) {
  text::htmlConstToChar(text);
  text::htmlToChar(text);
}

}  // namespace

void Message::createStrippedBody() {
  ChosenText chosen = chooseText(*this);
  // Whatever the part says its encoding is.
  if (chosen.body.find('=') != std::string::npos) chosen.body = quotedPrintableDecode(chosen.body);

  strippedBody = chosen.body;
  if (!strippedBody.empty()) {
    for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::replaceAllInPlace(strippedBody, lineEnd, " ");
    decodeEntities(strippedBody);
  }

  const std::string type = text::lower(chosen.type);
  if (chosen.body.empty() || (type.find("html") == std::string::npos && type.find("text") == std::string::npos)) {
    htmlStrippedBody.clear();
    return;
  }
  htmlStrippedBody = std::move(chosen.body);
  for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::replaceAllInPlace(htmlStrippedBody, lineEnd, "");
  decodeEntities(htmlStrippedBody);
  text::stripHtml(htmlStrippedBody);
}

}  // namespace vonel::message
