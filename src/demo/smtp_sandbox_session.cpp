#include "demo/smtp_sandbox_session.h"

#include "core/text/strings.h"
#include "demo/command_words.h"
#include "demo/pop3_sandbox_session.h"

namespace vonel::sandbox {

namespace {

constexpr std::string_view kOk = "250 OK\r\n";
constexpr std::string_view kSequence = "503 Bad sequence of commands\r\n";

// The address of "FROM:<a@b>" or "TO: <a@b> SIZE=1", without its brackets.
std::string pathOf(std::string_view argument, std::string_view keyword) {
  if (!text::startsWithNoCase(argument, keyword)) return {};
  std::string_view rest = text::trimView(argument.substr(keyword.size()));
  if (rest.starts_with('<')) {
    const std::size_t close = rest.find('>');
    return close == std::string_view::npos ? std::string() : std::string(rest.substr(1, close - 1));
  }
  return std::string(rest.substr(0, rest.find(' ')));
}

}  // namespace

std::string SmtpSandboxSession::onData(std::string_view bytes) {
  std::string replies;
  reader_.append(bytes);
  while (state_ != State::Finished) {
    const auto line = reader_.next();
    if (!line) break;
    if (state_ == State::Data) {
      replies += onDataLine(*line);
    } else {
      replies += line->kind == LineKind::TooLong ? std::string("500 Line too long\r\n") : onCommand(line->text);
    }
  }
  return replies;
}

std::string SmtpSandboxSession::onCommand(std::string_view line) {
  const CommandWords words = splitCommand(line);
  if (words.verb == "HELO" || words.verb == "EHLO") {
    if (words.argument.empty()) return "501 Say who you are\r\n";
    greeted_ = true;
    reset();
    return "250 sandbox.example.net\r\n";
  }
  if (words.verb == "QUIT") {
    state_ = State::Finished;
    return "221 Bye\r\n";
  }
  if (words.verb == "RSET" || words.verb == "NOOP") {
    if (words.verb == "RSET") reset();
    return std::string(kOk);
  }
  if (words.verb == "MAIL") {
    if (!greeted_ || hasSender_) return std::string(kSequence);
    if (!text::startsWithNoCase(words.argument, "FROM:")) return "501 Syntax: MAIL FROM:<address>\r\n";
    envelope_.sender = pathOf(words.argument, "FROM:");
    hasSender_ = true;
    return std::string(kOk);
  }
  if (words.verb == "RCPT") {
    if (!hasSender_) return std::string(kSequence);
    std::string recipient = pathOf(words.argument, "TO:");
    if (recipient.find('@') == std::string::npos) return "501 Syntax: RCPT TO:<address>\r\n";
    envelope_.recipients.push_back(std::move(recipient));
    return std::string(kOk);
  }
  if (words.verb == "DATA") {
    if (envelope_.recipients.empty()) return std::string(kSequence);
    state_ = State::Data;
    reader_.setLimit(kDataLimit);
    return "354 End data with <CR><LF>.<CR><LF>\r\n";
  }
  return "500 Command not recognised\r\n";
}

std::string SmtpSandboxSession::onDataLine(const ReadLine& line) {
  if (line.kind == LineKind::Complete && line.text == ".") {
    state_ = State::Command;
    reader_.setLimit(kCommandLineLimit);
    std::string reply;
    if (tooBig_) {
      reply = "552 Message exceeds 10 MB\r\n";
    } else {
      reply = delivery_.deliver(envelope_) ? "250 OK message kept\r\n" : "451 Could not keep the message\r\n";
    }
    reset();
    return reply;
  }
  const std::string_view text = line.kind == LineKind::TooLong ? std::string_view() : std::string_view(line.text);
  const std::string_view unstuffed = text.starts_with('.') ? text.substr(1) : text;
  if (line.kind == LineKind::TooLong || envelope_.bytes.size() + unstuffed.size() + 2 > kDataLimit) {
    tooBig_ = true;
    envelope_.bytes.clear();
  }
  if (!tooBig_) {
    envelope_.bytes += unstuffed;
    envelope_.bytes += "\r\n";
  }
  return {};
}

void SmtpSandboxSession::reset() {
  hasSender_ = false;
  tooBig_ = false;
  envelope_ = {};
}

}  // namespace vonel::sandbox
