#include "protocol/pop3/pop3_reply_matcher.h"

#include <algorithm>

#include "protocol/pop3/pop3_reply_text.h"

namespace vonel::pop3 {
namespace {

// What a header reply is taken to weigh before any has come: on the high
// side, so that the first window stays small until the mean is known.
constexpr std::size_t kFirstHeaderGuess = 8192;

}  // namespace

ReplyMatcher::ReplyMatcher(PipelineBound bound, std::size_t longestReply)
    : bound_(bound), longestReply_(longestReply) {}

void ReplyMatcher::reset() {
  queue_.clear();
  topsInFlight_ = 0;
  topReplies_ = 0;
  topReplyBytes_ = 0;
  partial_.clear();
  partialScan_ = {};
}

bool ReplyMatcher::roomForTop() const {
  if (queue_.size() >= bound_.commands) return false;
  const std::size_t perReply = topReplies_ == 0 ? kFirstHeaderGuess : topReplyBytes_ / topReplies_;
  // One header in flight, however large, keeps the walk going.
  return topsInFlight_ == 0 || (topsInFlight_ + 1) * perReply <= bound_.bytes;
}

void ReplyMatcher::expect(SentAhead command, long number) {
  queue_.push_back({command, number});
  if (command == SentAhead::Top) ++topsInFlight_;
}

bool ReplyMatcher::deleInFlight() const {
  return std::any_of(queue_.begin(), queue_.end(), [](const Entry& e) { return e.command == SentAhead::Dele; });
}

std::size_t ReplyMatcher::replyLength(std::string_view bytes, Scan& scan) const {
  if (scan.statusEnd == std::string_view::npos) {
    const std::size_t lineFeed = bytes.find('\n', scan.searched);
    if (lineFeed == std::string_view::npos) {
      scan.searched = bytes.size();
      return 0;
    }
    scan.statusEnd = lineFeed;
    scan.searched = lineFeed;
  }
  if (queue_.front().command == SentAhead::Dele || bytes.front() != '+') return scan.statusEnd + 1;
  // The status line's own LF may begin the terminator: "+OK" CR LF "." CR LF is an empty header.
  const std::size_t end = bytes.find(kTerminator, scan.searched);
  if (end == std::string_view::npos) {
    scan.searched = std::max(scan.statusEnd, bytes.size() - std::min(bytes.size(), kTerminator.size() - 1));
    return 0;
  }
  return end + kTerminator.size();
}

bool ReplyMatcher::deliver(std::string_view reply, std::size_t statusEnd,
                           const std::function<bool(const MatchedReply&)>& onReply) {
  const Entry entry = queue_.front();
  queue_.pop_front();
  const bool positive = reply.front() == '+';
  MatchedReply matched{entry.command, entry.number, positive, reply.substr(0, statusEnd + 1)};
  if (entry.command == SentAhead::Top) {
    --topsInFlight_;
    if (positive) {
      ++topReplies_;
      topReplyBytes_ += reply.size();
      // From behind the first CR LF up to the terminator's "." line, whose LF ends the last line:
      // the header text the walk without pipelining cuts from the same reply.
      const std::size_t start = reply.find("\r\n") + 2;
      const std::size_t end = reply.size() - (kTerminator.size() - 1);
      matched.text = start <= end ? reply.substr(start, end - start) : std::string_view();
    }
  }
  return onReply(matched);
}

ReplyMatcher::Result ReplyMatcher::take(std::string_view chunk,
                                        const std::function<bool(const MatchedReply&)>& onReply) {
  std::size_t at = 0;
  if (!partial_.empty()) {
    const std::size_t before = partial_.size();
    partial_.append(chunk);
    const std::size_t length = replyLength(partial_, partialScan_);
    if (length == 0) {
      if (partial_.size() > longestReply_) return {Outcome::Overlong, chunk.size()};
      return {Outcome::Taken, chunk.size()};
    }
    at = length - before;
    // The reply is handed on from a copy: partial_ is free for the next one the moment it is cut.
    const std::string reply = partial_.substr(0, length);
    const std::size_t statusEnd = partialScan_.statusEnd;
    partial_.clear();
    partialScan_ = {};
    if (!deliver(reply, statusEnd, onReply)) return {Outcome::Stopped, at};
  }
  while (at < chunk.size()) {
    if (queue_.empty()) return {Outcome::Unexpected, at};
    const std::string_view rest = chunk.substr(at);
    Scan scan;
    const std::size_t length = replyLength(rest, scan);
    if (length == 0) {
      if (rest.size() > longestReply_) return {Outcome::Overlong, chunk.size()};
      partial_.assign(rest);
      partialScan_ = scan;
      return {Outcome::Taken, chunk.size()};
    }
    at += length;
    if (!deliver(rest.substr(0, length), scan.statusEnd, onReply)) return {Outcome::Stopped, at};
  }
  return {Outcome::Taken, at};
}

}  // namespace vonel::pop3
