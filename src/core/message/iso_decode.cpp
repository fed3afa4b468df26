#include "core/message/iso_decode.h"

#include <array>

#include "core/message/transfer_encoding.h"
#include "core/text/cp1252.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::array<std::string_view, 3> kSingleByteCharsets = {"iso-8859", "us-ascii", "windows-125"};

bool hasSingleByteCharset(std::string_view text) {
  for (const auto charset : kSingleByteCharsets) {
    if (text::findNoCase(text, charset)) return true;
  }
  return false;
}

// Keeps what follows the first "?" (all of it when there is none).
void keepAfterQuestionMark(std::string& text) { text = text::mid(text, text::find(text, "?") + 1); }

}  // namespace

std::string isoDecode(std::string_view value) {
  std::string text(value);
  const std::size_t blank = text::find(text, " ");
  const std::string tail = blank ? text::mid(text, blank) : std::string();

  bool foundMarker = false;
  if (hasSingleByteCharset(text)) {
    if (const std::size_t b = text::findNoCase(text, "?b")) {
      text = text::left(text, b) + decodeMime64(text::mid(text, b + 3));
      foundMarker = true;
    }
  } else if (const std::size_t b = text::findNoCase(text, "?B?")) {
    text = decodeMime64(text::mid(text, b + 3));
    foundMarker = true;
  }

  text = quotedPrintableDecode(text);
  if (const std::size_t q = text::findNoCase(text, "q?")) text = text::mid(text, q + 2);
  for (const std::string_view junk : {"=?=", "?=", "=?", "?Q", "=3A"}) text::replaceAllInPlace(text, junk, "");

  for (const auto charset : kSingleByteCharsets) {
    if (text::findNoCase(text, charset)) keepAfterQuestionMark(text);
  }
  if (text::findNoCase(text, "utf-8")) {
    keepAfterQuestionMark(text);
    text = text::utf8ToCp1252(text);
  }

  for (const std::string_view junk : {"\"", "\r", "\n", "\x12", "\x10", "\x11"}) text::replaceAllInPlace(text, junk, "");
  text::cutOffNull(text);
  if (foundMarker) text += tail;
  return text::trim(text);
}

}  // namespace vonel::message
