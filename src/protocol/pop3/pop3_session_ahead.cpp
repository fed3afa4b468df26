// The header walk with its TOPs sent ahead, for a server that announces
// PIPELINING: one round trip for the mailbox instead of one per message.
// Each reply is judged as the walk without pipelining judges it, in message
// order; what a user sees differs only in time.
#include "core/text/strings.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel::pop3 {
namespace {

// "PIPELINING" as the first word of a capability line.
bool announcesPipelining(std::string_view line) {
  const std::size_t end = line.find_first_of(" \r\n");
  return text::equalsNoCase(line.substr(0, end), "PIPELINING");
}

}  // namespace

void Pop3Session::sendCapaOrList() {
  if (!askCapa_) {
    sendList();
    return;
  }
  capa_ = {};
  sendCommand(Pop3State::AwaitCapaLines, "CAPA");
}

void Pop3Session::sendList() {
  state_ = Pop3State::AwaitListLines;
  logAction("Sending LIST command");
  send("LIST");
}

// The capability list is read line by line and not kept: only whether it
// names PIPELINING counts. A refusal means the walk without pipelining.
void Pop3Session::onCapaLines(const std::string& packet) {
  if (!capa_.statusSeen && (packet.empty() || packet.front() != '+')) {
    sendList();
    return;
  }
  reply_.inMultiLine = true;  // its lines stay out of the log, as a list's do
  capa_.bytes += packet.size();
  for (std::size_t at = 0; at < packet.size();) {
    const std::size_t lineFeed = packet.find('\n', at);
    const std::size_t next = lineFeed == std::string::npos ? packet.size() : lineFeed + 1;
    const std::string_view line = std::string_view(packet).substr(at, next - at);
    at = next;
    if (!capa_.statusSeen) {
      capa_.statusSeen = true;
    } else if (line == ".\r\n") {
      pipelining_ = capa_.pipelining;
      sendList();
      return;
    } else if (announcesPipelining(line)) {
      capa_.pipelining = true;
    }
  }
  if (capa_.bytes > kLongestGatheredReply) endWithError(FailureKind::BadReply, "Reply too long");
}

void Pop3Session::startAheadWalk() {
  state_ = Pop3State::AwaitAheadReplies;
  aheadReplies_.reset();
  nextTop_ = reply_.currentMessage;
  aheadStopped_ = false;
  refillOrHandOver();
  flushAhead();
}

// Returns the bytes of `chunk` taken; the rest belongs to the walk's end.
std::size_t Pop3Session::onAheadReplies(std::string_view chunk) {
  idleSeconds_ = 0;
  link_.setTimer(true);
  lastPacket_.assign(chunk);
  const std::uint64_t session = sessionNumber_;
  const ReplyMatcher::Result result =
      aheadReplies_.take(chunk, [this](const MatchedReply& reply) { return onAheadReply(reply); });
  if (session != sessionNumber_) return chunk.size();
  flushAhead();
  switch (result.outcome) {
    case ReplyMatcher::Outcome::Overlong:
      endWithError(FailureKind::BadReply, "Reply too long", partingMidWalk());
      return chunk.size();
    case ReplyMatcher::Outcome::Unexpected:
      return chunk.size();  // nothing is in flight once the walk has stopped
    case ReplyMatcher::Outcome::Taken:
    case ReplyMatcher::Outcome::Stopped:
      break;
  }
  return result.used;
}

// False once the walk is over, as its end has taken over or the session ended.
bool Pop3Session::onAheadReply(const MatchedReply& reply) {
  try {
    return reply.command == SentAhead::Top ? onAheadTopReply(reply) : onAheadDeleReply(reply);
  } catch (...) {
    logArrivalError(std::current_exception());
    // Where the walk without pipelining stalls, this one stops: the time-out ends it.
    aheadStopped_ = true;
    return true;
  }
}

// A TOP refused inside the range stops the walk where the walk without
// pipelining stops: what comes behind it is read and dropped, and the
// time-out ends the session.
bool Pop3Session::onAheadTopReply(const MatchedReply& reply) {
  if (aheadStopped_) return true;
  if (!reply.positive) {
    aheadStopped_ = true;
    return true;
  }
  const long n = reply.number;
  if (judgeHeader(std::string(reply.text)) == HeaderStep::Delete) sendAhead(SentAhead::Dele, n);
  return refillOrHandOver();
}

// A DELE's "+OK" counts, even behind a refused TOP: the DELE went out for a
// message before it.
bool Pop3Session::onAheadDeleReply(const MatchedReply& reply) {
  const std::string status(reply.text);
  logAction(title() + ": " + status);
  if (reply.positive) {
    const bool goOn = refillOrHandOver();
    events_.onDeletedSpam(1);
    return goOn;
  }
  // The last message's refusal ends the walk quietly, as a reply past the last message does.
  if (reply.number >= reply_.messageCount) {
    sendQuit();
    reply_.inMultiLine = false;
    return false;
  }
  endWithError(FailureKind::ServerRefused, status, partingMidWalk());
  return false;
}

// A DELE still in flight would be carried out by QUIT, where the walk
// without pipelining had stopped before sending it: then nothing is committed.
Pop3Session::Parting Pop3Session::partingMidWalk() const {
  return aheadReplies_.deleInFlight() ? Parting::HangUp : Parting::Quit;
}

// Sends TOPs while the bound leaves room. Once every reply is in, the walk
// ends as without pipelining: QUIT, or on past the last message one TOP at a
// time until the server refuses.
bool Pop3Session::refillOrHandOver() {
  if (aheadStopped_) return true;
  while (nextTop_ <= reply_.messageCount && aheadReplies_.roomForTop()) sendAhead(SentAhead::Top, nextTop_++);
  if (!aheadReplies_.idle()) return true;
  requestNextHeader(true);
  return false;
}

void Pop3Session::sendAhead(SentAhead command, long number) {
  aheadBatch_ += (command == SentAhead::Top ? "TOP " : "DELE ") + std::to_string(number) +
                 (command == SentAhead::Top ? " 1\r\n" : "\r\n");
  aheadReplies_.expect(command, number);
}

// Commands written during one chunk go out in one write.
void Pop3Session::flushAhead() {
  if (aheadBatch_.empty()) return;
  link_.send(aheadBatch_);
  aheadBatch_.clear();
}

}  // namespace vonel::pop3
