#include "core/message/plain_text.h"

#include <algorithm>

#include "core/message/transfer_encoding.h"
#include "core/text/entities.h"
#include "core/text/markup.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kModule = "modMime";
constexpr std::string_view kProcedure = "ExtractPlainMessage";

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
  text::ReplaceWith(text, "\x85", "...");
  text::ReplaceWith(text, "\x8B", "<");
  text::ReplaceWith(text, "\x97", "--");
  std::erase(text, '\0');
  if (text::trimView(text).size() > 1) text::HtmlToChar(text);
}

const clsMimeType* firstPartOfType(const clsMessage& message, std::string_view type) {
  for (std::size_t i = 1; i <= message.MimePartCount(); ++i) {
    if (message.MimePart(i).ContentType == type) return &message.MimePart(i);
  }
  return nullptr;
}

std::string chooseText(const clsMessage& message) {
  const std::size_t count = message.MimePartCount();
  // HTML first and plain second-to-last: both are shown, the HTML first.
  if (count >= 2 && message.MimePart(1).ContentType == "text/html" &&
      message.MimePart(count - 1).ContentType == "text/plain") {
    return ExtractHtmlPartText(message.MimePart(1)) + "\r\n" + ExtractDecodedPartText(message.MimePart(2));
  }
  if (const clsMimeType* plain = firstPartOfType(message, "text/plain"); plain && !plain->Data.empty()) {
    return plain->Data;
  }
  if (const clsMimeType* html = firstPartOfType(message, "text/html")) return ExtractHtmlPartText(*html);
  if (count >= 2) return {};
  std::string body(message.MessageBody());
  if (text::findNoCase(body, "<html>")) return ExtractHtmlPartText(message.MimePart(1));
  text::EatCrapFromEnd(body);
  return body;
}

}  // namespace

std::string ExtractDecodedPartText(const clsMimeType& part) {
  std::string data = part.Data;
  if (part.Encoding == "quoted-printable") data = QuotedPrintableDecode(data);
  if (part.Encoding == "base64") data = DecodeMime64(data);
  return data;
}

std::string ExtractHtmlPartText(const clsMimeType& part) {
  std::string text = ExtractDecodedPartText(part);
  markQuotedBlocks(text);
  for (const std::string_view lineEnd : {"\r\n", "\r", "\n"}) text::ReplaceWith(text, lineEnd, "");
  text::ReplaceWith_NC(text, "<br>", "\r\n");
  text::ReplaceWith_NC(text, "</p>", "\r\n");
  // Link targets stay visible in the text.
  for (const std::string_view link : {"<a href=\"", "<a href='", "<a href=", "</a>"}) text::ReplaceWith(text, link, " ");
  text::StripHtml(text);
  text::HtmlToChar(text);
  text::HTMLConstToChar(text);
  return text;
}

std::string ExtractPlainMessage(const clsMessage& message, bool tweaks, cSharedLogging* log) {
  std::string text;
  try {
    text = chooseText(message);
    cleanUp(text, tweaks);
  } catch (...) {
    if (log) logFailure(*log, AppError::from(std::current_exception()), kProcedure, kModule);
  }
  return text;
}

std::string ExtractPlainMessage(const clsMessage& message, AppContext& context) {
  return ExtractPlainMessage(message, context.Settings.RetrieveSetting("Tweaks", Value(false)).flag(), &context.log);
}

}  // namespace vonel::message
