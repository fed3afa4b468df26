#include "core/message/plain_text.h"

#include <algorithm>

#include "core/log/log_places.h"
#include "core/log/log_places.h"
#include "core/message/transfer_encoding.h"
#include "core/text/entities.h"
#include "core/text/markup.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kModule = log_places::kMimeModule;

// A quoted block keeps its line breaks as <BR> and gets blank lines around it.
// The text keeps its length: the widened block is cut back to the span it replaces.
void markQuotedBlocks(std::string& text) {
  std::size_t open = text::findNoCase(text, "<blockquote");
  while (open != 0) {
    const std::size_t close = text::findNoCase(text, "</blockquote", open + 1);
    if (close == 0) break;
    const std::size_t length = close - open;
    const std::string widened =
        "<BR><BR>" + text::replaceAll(std::string_view(text).substr(open - 1, length), "\r", "<BR>") + "<BR><BR>";
    text.replace(open - 1, length, std::string_view(widened).substr(0, length));
    open = text::findNoCase(text, "<blockquote", close);
  }
}

void cutBeforeNoCase(std::string& text, std::string_view marker) {
  if (const std::size_t at = text::findNoCase(text, marker)) text.resize(at - 1);
}

void cleanUp(std::string& text, bool tweaks) {
  if (tweaks) {
    cutBeforeNoCase(text, "------------------------ Yahoo! Groups Sponsor --------------------~-->");
    cutBeforeNoCase(text, "Yahoo! Groups Links");
  }
  text::replaceAllInPlace(text, "\x85", "...");
  text::replaceAllInPlace(text, "\x8B", "<");
  text::replaceAllInPlace(text, "\x97", "--");
  std::erase(text, '\0');
  if (text::trimView(text).size() > 1) text::htmlToChar(text);
}

const MimePart* firstPartOfType(const Message& message, std::string_view type) {
  for (std::size_t i = 1; i <= message.mimePartCount(); ++i) {
    if (message.mimePart(i).contentType == type) return &message.mimePart(i);
  }
  return nullptr;
}

std::string chooseText(const Message& message) {
  const std::size_t count = message.mimePartCount();
  // HTML first and plain second-to-last: both are shown, the HTML first.
  if (count >= 2 && message.mimePart(1).contentType == "text/html" &&
      message.mimePart(count - 1).contentType == "text/plain") {
    return extractHtmlPartText(message.mimePart(1)) + "\r\n" + extractDecodedPartText(message.mimePart(2));
  }
  if (const MimePart* plain = firstPartOfType(message, "text/plain"); plain && !plain->data.empty()) {
    return plain->data;
  }
  if (const MimePart* html = firstPartOfType(message, "text/html")) return extractHtmlPartText(*html);
  if (count >= 2) return {};
  std::string body(message.messageBody());
  if (text::findNoCase(body, "<html>")) return extractHtmlPartText(message.mimePart(1));
  text::trimJunkFromEnd(body);
  return body;
}

}  // namespace

std::string extractDecodedPartText(const MimePart& part) {
  std::string data = part.data;
  if (part.encoding == "quoted-printable") data = quotedPrintableDecode(data);
  if (part.encoding == "base64") data = decodeMime64(data);
  return data;
}

std::string extractHtmlPartText(const MimePart& part) {
  std::string text = extractDecodedPartText(part);
  markQuotedBlocks(text);
  for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::replaceAllInPlace(text, lineEnd, "");
  text::replaceAllNoCaseInPlace(text, "<br>", "\r\n");
  text::replaceAllNoCaseInPlace(text, "</p>", "\r\n");
  // Link targets stay visible in the text.
  for (const std::string_view link : {"<a href=\"", "<a href='", "<a href=", "</a>"}) text::replaceAllInPlace(text, link, " ");
  text::stripHtml(text);
  text::htmlToChar(text);
  text::htmlConstToChar(text);
  return text;
}

std::string extractPlainMessage(const Message& message, bool tweaks, Log* log) {
  std::string text;
  try {
    text = chooseText(message);
    cleanUp(text, tweaks);
  } catch (...) {
    if (log) logFailure(*log, AppError::from(std::current_exception()), log_places::kExtractPlainMessage, kModule);
  }
  return text;
}

std::string extractPlainMessage(const Message& message, AppContext& context) {
  return extractPlainMessage(message, context.settings.get("Tweaks", Value(false)).flag(), &context.log);
}

}  // namespace vonel::message
