// What the store adds to a message: its tags, the spam mark, and the flag
// lines written into the header block when the message is serialised.
#include "core/message/message.h"
#include "core/message/store_header_names.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kBlankLine = "\r\n\r\n";
constexpr std::string_view kLineEnd = "\r\n";

// Puts the line last in the header block; a text without a blank line gets nothing.
void insertHeaderLine(std::string& text, std::string_view line) {
  const std::size_t blankLine = text.find(kBlankLine);
  if (blankLine == std::string::npos) return;
  text.insert(blankLine, std::string(kLineEnd).append(line));
}

// A true flag adds its line unless the line (with its line end) is already
// anywhere in the text; a false one deletes every copy, body included.
void writeFlag(std::string& text, bool flag, std::string_view line) {
  const std::string lineWithEnd = std::string(line).append(kLineEnd);
  if (flag) {
    if (text.find(lineWithEnd) == std::string::npos) insertHeaderLine(text, line);
    return;
  }
  if (text.find(line) == std::string::npos) return;  // no copy of a large message for nothing
  text::replaceAllInPlace(text, lineWithEnd, "");
  text::replaceAllInPlace(text, line, "");
}

void writeTags(std::string& text, std::string_view tags) {
  const std::string line = std::string(kTagsName).append(": ").append(tags);
  const std::size_t at = text.find(kTagsName);
  if (at == std::string::npos) {
    insertHeaderLine(text, line);
    return;
  }
  // A tags line that ends the text is rewritten to the end.
  const std::size_t lineEnd = text.find(kLineEnd, at);
  text.replace(at, lineEnd == std::string::npos ? std::string::npos : lineEnd - at, line);
}

// Drops every header line that starts with the name, with its line end.
void removeHeaderLines(std::string& header, std::string_view name) {
  for (std::size_t lineStart = 0; lineStart < header.size();) {
    const std::size_t lineEnd = header.find(kLineEnd, lineStart);
    const std::size_t next = lineEnd == std::string::npos ? header.size() : lineEnd + kLineEnd.size();
    if (header.compare(lineStart, name.size(), name) == 0) {
      header.erase(lineStart, next - lineStart);
    } else {
      lineStart = next;
    }
  }
}

}  // namespace

void Message::setTags(std::string_view tags) {
  std::string normal = text::trim(tags);
  if (normal == ",") normal.clear();
  if (normal.size() > 1 && normal.front() == ',') normal.erase(0, 1);
  tags_ = std::move(normal);
}

bool Message::tagsPresent(std::string_view list) const {
  if (list.empty()) return true;
  for (const auto& item : text::split(list, ",")) {
    if (!item.empty() && text::findNoCase(tags_, item)) return true;
  }
  return false;
}

void Message::tagAsSpam() {
  if (text::find(headers, "Subject: SPAM:")) return;
  // The whole raw text, body included; Subject and Headers stay as they were.
  replaceRawMessage(text::replaceAll(*raw_, "Subject: ", "Subject: SPAM: "));
}

std::string Message::rawMessage() const {
  // Room for the store's header lines, so that adding them never copies the message again.
  constexpr std::size_t kStoreLinesRoom = 512;
  std::string text;
  text.reserve(raw_->size() + tags_.size() + kStoreLinesRoom);
  text = *raw_;
  writeStoreHeaders(text);
  return text;
}

std::string Message::arrivedMessage() const {
  const std::size_t blankLine = raw_->find(kBlankLine);
  if (blankLine == std::string::npos) return *raw_;
  const std::size_t bodyStart = blankLine + kBlankLine.size();
  std::string text = raw_->substr(0, bodyStart);
  removeHeaderLines(text, kReceiveDateName);
  writeStoreHeaders(text);
  text.append(*raw_, bodyStart);
  return text;
}

void Message::writeStoreHeaders(std::string& text) const {
  writeFlag(text, read, "X-Message-Read: 1");
  writeFlag(text, replied, "X-Message-Replied: 1");
  if (text.find(kReceiveDateName) == std::string::npos) {
    const text::DateTime now = clock_ ? clock_->now() : SystemClock().now();
    insertHeaderLine(text, std::string(kReceiveDateName).append(": ").append(text::formatStoreDate(now)));
  }
  writeFlag(text, highPriority, "X-Message-HighPriority: 1");
  writeTags(text, tags_);
}

void Message::removeReceiveDate() {
  const std::size_t at = raw_->find(kReceiveDateName);
  if (at == std::string::npos) return;
  // The line end is looked for in the serialised text, not in the raw text
  // the line is cut from; where flag lines were inserted before it the two
  // differ, and the cut lands elsewhere. Mail stored before keeps reading back
  // the same way because of it, so it stays.
  const std::size_t lineEnd = rawMessage().find(kLineEnd, at);
  // Without a line end the rest is taken from the second character on.
  const std::size_t resumeAt = lineEnd == std::string::npos ? 1 : lineEnd + 2;
  std::string text = raw_->substr(0, at);
  if (resumeAt < raw_->size()) text.append(*raw_, resumeAt);
  replaceRawMessage(std::move(text));
}

}  // namespace vonel::message
