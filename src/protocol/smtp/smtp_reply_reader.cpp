#include "protocol/smtp/smtp_reply_reader.h"

#include <utility>

#include "core/text/strings.h"

namespace vonel::smtp {
namespace {

bool digit(char c) { return c >= '0' && c <= '9'; }

int codeOf(std::string_view line) {
  if (line.size() < 3 || !digit(line[0]) || !digit(line[1]) || !digit(line[2])) return 0;
  return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

// "250-" goes on; "250 ", a bare "250" and a line without a code end the reply.
bool continues(std::string_view line) { return codeOf(line) != 0 && line.size() > 3 && line[3] == '-'; }

}  // namespace

std::string_view SmtpReply::textOf(std::string_view line) { return line.size() > 4 ? line.substr(4) : std::string_view(); }

std::string SmtpReply::text() const { return lines.empty() ? std::string() : text::trim(textOf(lines.back())); }

std::string SmtpReply::whole() const {
  std::string joined;
  for (const std::string& line : lines) {
    if (!joined.empty()) joined += ' ';
    joined += line;
  }
  return text::trim(joined);
}

void SmtpReplyReader::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const std::string_view piece = bytes.substr(0, end);
    if (line_.size() < kLongestKeptLine) {
      line_.append(piece.substr(0, kLongestKeptLine - line_.size()));
    }
    if (end == std::string_view::npos) return;
    endLine();
    bytes.remove_prefix(end + 1);
  }
}

void SmtpReplyReader::endLine() {
  std::string line = std::move(line_);
  line_.clear();
  if (line.ends_with('\r')) line.pop_back();
  const bool more = continues(line);
  const int code = codeOf(line);
  if (gathering_.lines.size() < kMostKeptLines) gathering_.lines.push_back(std::move(line));
  if (more) return;
  gathering_.code = code;
  complete_.push_back(std::exchange(gathering_, {}));
}

SmtpReply SmtpReplyReader::take() {
  SmtpReply reply = std::move(complete_.front());
  complete_.pop_front();
  return reply;
}

void SmtpReplyReader::clear() {
  line_.clear();
  gathering_ = {};
  complete_.clear();
}

}  // namespace vonel::smtp
