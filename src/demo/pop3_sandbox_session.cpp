#include "demo/pop3_sandbox_session.h"

#include "demo/command_words.h"

namespace vonel::sandbox {

namespace {

constexpr std::string_view kOk = "+OK\r\n";
constexpr std::string_view kUnknown = "-ERR unknown command\r\n";
constexpr std::string_view kNoSuchMessage = "-ERR no such message\r\n";

// A multi-line reply's lines, each starting with a dot doubled, and the closing dot.
void appendStuffed(std::string& reply, std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end == std::string_view::npos ? text.size() : end + 1);
    if (line.front() == '.') reply += '.';
    reply += line;
    text.remove_prefix(line.size());
  }
  if (!reply.ends_with("\r\n")) reply += "\r\n";
  reply += ".\r\n";
}

// The header, the blank line and the first `lines` lines of the body.
std::string_view topOf(std::string_view message, std::size_t lines) {
  std::size_t at = message.find("\r\n\r\n");
  if (at == std::string_view::npos) return message;
  at += 4;
  for (; lines > 0 && at < message.size(); --lines) {
    const std::size_t end = message.find('\n', at);
    at = end == std::string_view::npos ? message.size() : end + 1;
  }
  return message.substr(0, at);
}

}  // namespace

std::string Pop3SandboxSession::onData(std::string_view bytes) {
  std::string replies;
  reader_.append(bytes);
  while (state_ != State::Finished) {
    const auto line = reader_.next();
    if (!line) break;
    replies += line->kind == LineKind::TooLong ? std::string("-ERR line too long\r\n") : onCommand(line->text);
  }
  return replies;
}

std::string Pop3SandboxSession::onCommand(std::string_view line) {
  const CommandWords words = splitCommand(line);
  if (words.verb == "QUIT") return quit();
  if (state_ == State::Transaction) return onTransactionCommand(words.verb, words.argument);
  if (words.verb == "USER" && !words.argument.empty()) {
    user_ = words.argument;
    return std::string(kOk);
  }
  if (words.verb == "PASS" && !user_.empty()) {
    auto mail = maildrop_.open(user_, words.argument);
    if (!mail) {
      user_.clear();
      return "-ERR [AUTH] Authentication failed.\r\n";
    }
    for (Mail& m : *mail) entries_.push_back({std::move(m)});
    state_ = State::Transaction;
    return "+OK " + std::to_string(entries_.size()) + " messages\r\n";
  }
  return std::string(kUnknown);
}

std::string Pop3SandboxSession::onTransactionCommand(std::string_view verb, std::string_view argument) {
  if (verb == "STAT" && argument.empty()) {
    std::size_t count = 0;
    std::size_t size = 0;
    for (const Entry& e : entries_) {
      if (e.deleted) continue;
      ++count;
      size += e.mail.bytes.size();
    }
    return "+OK " + std::to_string(count) + " " + std::to_string(size) + "\r\n";
  }
  if (verb == "LIST") return listing(argument, false);
  if (verb == "UIDL") return listing(argument, true);
  if (verb == "TOP") return content(argument, true);
  if (verb == "RETR") return content(argument, false);
  if (verb == "DELE") {
    Entry* e = entry(argument);
    if (!e) return std::string(kNoSuchMessage);
    e->deleted = true;
    return std::string(kOk);
  }
  if (verb == "RSET" && argument.empty()) {
    for (Entry& e : entries_) e.deleted = false;
    return std::string(kOk);
  }
  if (verb == "NOOP" && argument.empty()) return std::string(kOk);
  return std::string(kUnknown);
}

std::string Pop3SandboxSession::quit() {
  if (state_ == State::Transaction) {
    std::vector<std::string> gone;
    for (const Entry& e : entries_) {
      if (e.deleted) gone.push_back(e.mail.uid);
    }
    if (!gone.empty()) maildrop_.remove(user_, gone);
  }
  state_ = State::Finished;
  return "+OK bye\r\n";
}

Pop3SandboxSession::Entry* Pop3SandboxSession::entry(std::string_view number) {
  const auto n = plainNumber(number);
  if (!n || *n == 0 || *n > entries_.size() || entries_[*n - 1].deleted) return nullptr;
  return &entries_[*n - 1];
}

std::string Pop3SandboxSession::listing(std::string_view argument, bool uids) {
  const auto field = [uids](const Entry& e) { return uids ? e.mail.uid : std::to_string(e.mail.bytes.size()); };
  if (!argument.empty()) {
    const Entry* e = entry(argument);
    if (!e) return std::string(kNoSuchMessage);
    return "+OK " + std::string(argument) + " " + field(*e) + "\r\n";
  }
  std::string reply = "+OK\r\n";
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!entries_[i].deleted) reply += std::to_string(i + 1) + " " + field(entries_[i]) + "\r\n";
  }
  return reply + ".\r\n";
}

std::string Pop3SandboxSession::content(std::string_view argument, bool top) {
  const std::size_t blank = argument.find(' ');
  const Entry* e = entry(top ? argument.substr(0, blank) : argument);
  if (!e) return std::string(kNoSuchMessage);
  std::string_view text = e->mail.bytes;
  if (top) {
    const auto lines = blank == std::string_view::npos ? std::nullopt : plainNumber(argument.substr(blank + 1));
    if (!lines) return "-ERR TOP needs a message and a number of lines\r\n";
    text = topOf(text, *lines);
  }
  std::string reply = "+OK " + std::to_string(e->mail.bytes.size()) + " octets\r\n";
  appendStuffed(reply, text);
  return reply;
}

}  // namespace vonel::sandbox
