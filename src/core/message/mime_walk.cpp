#include "core/message/mime_walk.h"

#include <algorithm>
#include <vector>

#include "core/message/transfer_encoding.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kBlankLine = "\r\n\r\n";
constexpr std::string_view kWebPageName = "View email as web page.html";
// Each level searches all the text nested inside it for its next marker, so
// the work grows with depth times size. Real mail nests a handful of levels;
// a multipart deeper than this is kept as one part instead of being walked.
constexpr std::size_t kDeepestWalk = 100;

// Text from the 1-based `start` up to the next CR LF at or after `searchFrom`,
// or to the end without one.
std::string_view restOfLine(std::string_view text, std::size_t start, std::size_t searchFrom) {
  const std::size_t lineEnd = text::find(text, "\r\n", searchFrom);
  return text.substr(std::min(start - 1, text.size()), lineEnd ? lineEnd - start : std::string_view::npos);
}

std::string beforeSemicolon(std::string_view value) {
  return text::trim(value.substr(0, value.find(';')));
}

struct SectionWalk {
  std::string_view body;
  std::string marker;
  std::size_t markerAt;  // 1-based
};

// Depth-first over the sections with an explicit stack, so that deeply
// nested input can't exhaust the call stack.
class MimeWalker {
 public:
  explicit MimeWalker(MimeContent& content) : content_(content) {}

  void run(std::string_view text) {
    decodePart(text);
    while (!walks_.empty()) {
      SectionWalk& walk = walks_.back();
      // Steps over the marker and the line end behind it.
      const std::size_t start = walk.markerAt + walk.marker.size() + 2;
      const std::size_t next = text::find(walk.body, walk.marker, start);
      if (next == 0) {
        walks_.pop_back();
        continue;
      }
      // The LF before the marker is cut off, the CR stays. A marker straight
      // after the last one gives an empty section.
      const std::string_view section =
          next > start ? walk.body.substr(start - 1, next - start - 1) : std::string_view();
      walk.markerAt = next;
      decodePart(section);
    }
  }

 private:
  void decodePart(std::string_view text) {
    const std::size_t blankLine = text::find(text, kBlankLine);
    const std::string_view header = text.substr(0, blankLine + 3);
    std::string_view body = text.substr(std::min(blankLine + 3, text.size()));
    if (body.starts_with(kBlankLine)) body.remove_prefix(kBlankLine.size());

    std::string type = extractContentType(header);
    std::string encoding = extractContentEncoding(header);
    if (type.empty() && !encoding.empty()) type = "text/plain";

    if (text::startsWithNoCase(type, "multipart/") && walks_.size() < kDeepestWalk) {
      std::string marker = "--" + extractBoundaryString(header);
      const std::size_t first = text::find(body, marker);
      if (first != 0) walks_.push_back(SectionWalk{body, std::move(marker), first});
      return;
    }

    std::string filename = extractFilename(header, type);
    std::string data(body);
    if (!filename.empty()) {
      filename = appendExtension(filename, type);
      content_.attachmentNames.push_back(filename);
    } else if (type != "message/rfc822") {
      if (encoding == "quoted-printable") {
        data = quotedPrintableDecode(data);
        encoding.clear();
      }
      if (encoding == "base64") {
        data = decodeMime64(data);
        encoding.clear();
      }
    } else {
      ++content_.attachedMessages;
      filename = "Attached_Msg " + std::to_string(content_.attachedMessages) + ".eml";
      content_.attachmentNames.push_back(filename);
    }
    addPart(std::move(type), std::move(data), std::move(filename), std::move(encoding));
  }

  void addPart(std::string type, std::string data, std::string filename, std::string encoding) {
    MimePart part;
    part.contentType = std::move(type);
    part.filename = std::move(filename);
    std::erase(encoding, '\r');
    part.encoding = std::move(encoding);
    // Trailing dashes go on purpose: they are a signature line or what is left of a boundary.
    text::trimJunkFromEnd(data);
    part.data = std::move(data);
    part.size = static_cast<std::int32_t>(part.data.size());
    content_.parts.push_back(std::move(part));
  }

  MimeContent& content_;
  std::vector<SectionWalk> walks_;
};

}  // namespace

void newDecodePart(std::string_view text, MimeContent& content) { MimeWalker(content).run(text); }

std::string extractContentType(std::string_view header) {
  const std::size_t blankLine = text::find(header, kBlankLine);
  std::size_t at = text::findNoCase(header, "content-type: ");
  at = std::max(at, text::findNoCase(header, "prev-content-type"));
  if (at == 0 || at > blankLine) return {};
  const std::size_t colon = text::find(header, ":", at);
  if (colon == 0) return {};
  return beforeSemicolon(text::lower(restOfLine(header, colon + 1, colon + 2)));
}

std::string extractContentEncoding(std::string_view header) {
  static constexpr std::string_view kName = "content-transfer-encoding:";
  const std::size_t blankLine = text::find(header, kBlankLine);
  const std::string lowered = text::lower(header);
  const std::size_t at = text::findLast(lowered, kName);
  if (at == 0 || at > blankLine) return {};
  std::string value = beforeSemicolon(restOfLine(lowered, at + kName.size(), at + kName.size()));
  std::erase(value, '"');
  return value;
}

std::string extractBoundaryString(std::string_view header) {
  static constexpr std::string_view kName = "boundary=";
  const std::size_t at = text::findNoCase(header, kName);
  if (at == 0) return {};
  std::string_view value = header.substr(at - 1 + kName.size());
  if (value.starts_with('"')) value.remove_prefix(1);
  // A ";" does not end the value: later parameters on the line are taken in.
  return text::trim(value.substr(0, value.find_first_of("\"\r")));
}

std::string extractFilename(std::string_view header, std::string_view contentType) {
  const std::string lowered = text::lower(header);
  std::size_t at = text::find(lowered, "name=");
  std::size_t valueStart = at + 5;
  if (at == 0) {
    at = text::find(lowered, "name*1=");
    valueStart = at + 7;
  }
  if (at > text::find(header, kBlankLine)) return {};
  if (at == 0) return contentType == "text/html" ? std::string(kWebPageName) : std::string();

  // A closing quote does not end the name; only ";", CR or the end of the text do.
  std::string name;
  for (std::size_t i = valueStart - 1; i < header.size(); ++i) {
    const char c = header[i];
    if (c == '"' || c == '=') continue;
    name += c;
    if (c == ';' || c == '\r') break;
  }
  std::erase_if(name, [](char c) { return c == '"' || c == '\r' || c == ';'; });
  return text::trim(text::replaceAll(name, "Attachment:", ""));
}

std::string appendExtension(std::string_view filename, std::string_view contentType) {
  std::string name(filename);
  // A name without a dot has no extension, so the type's own is always added.
  if (name.find('.') == std::string::npos) {
    if (contentType == "text/msword" || contentType == "application/msword") {
      name += ".doc";
    } else if (contentType == "image/jpeg" || contentType == "image/jpg" || contentType == "image/pjpeg") {
      name += ".jpg";
    } else if (contentType == "message/rfc822") {
      name += ".eml";
    }
  }
  return text::cleanString(name);
}

}  // namespace vonel::message
