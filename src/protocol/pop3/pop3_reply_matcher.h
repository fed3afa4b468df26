#pragma once
// The replies to commands sent ahead, matched to their commands by their
// place in the stream alone: a "+OK" or "-ERR" inside a header is data. A
// TOP's reply runs to its own LF "." CR LF when it starts with "+", and is
// one line otherwise; a DELE's reply is one line. A chunk may hold many
// replies and a reply many chunks.
#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

namespace vonel::pop3 {

enum class SentAhead { Top, Dele };

// How far the walk runs ahead of the server: commands in flight, and the
// reply bytes they are expected to bring (each TOP counted at the mean size
// of the header replies so far). The count keeps a stalled server from being
// flooded with commands; the bytes keep what is in flight, and so what can
// pile up in memory, near one socket buffer whatever the mailbox holds.
struct PipelineBound {
  std::size_t commands;
  std::size_t bytes;
};

// Measured with bench/scan_pipelined.sh, 6,000 headers of about 1.3 KiB at a
// 20 ms round trip: 64 in flight walk them in 2.2 s, 256 in 0.61 s, 1,024 in
// 0.20 s, where the round trips stop counting; peak memory didn't move.
// 2 MiB lets 1,024 headers of 2 KiB out, a socket buffer's worth.
inline constexpr PipelineBound kPipelineBound{1024, 2048 * 1024};

struct MatchedReply {
  SentAhead command;
  long number;
  bool positive;  // the status line starts with "+"
  // A TOP's positive reply: the lines behind the status line (behind the
  // first CR LF) as the server sent them, dot-stuffing kept, without the
  // terminating "." line.
  // Otherwise the status line with its line end.
  std::string_view text;
};

class ReplyMatcher {
 public:
  // `longestReply`: a reply that grows beyond it is no reply any more.
  ReplyMatcher(PipelineBound bound, std::size_t longestReply);

  void reset();
  // Whether another TOP fits in the bound.
  bool roomForTop() const;
  // A command that has just been sent, or is about to be, behind all others.
  void expect(SentAhead command, long number);
  std::size_t inFlight() const { return queue_.size(); }
  bool idle() const { return queue_.empty(); }
  // Whether a DELE waits for its reply; inside the handler, one behind the reply in hand.
  bool deleInFlight() const;
  // Bytes of an unfinished reply held back for the next chunk.
  std::size_t held() const { return partial_.size(); }

  enum class Outcome {
    Taken,       // every complete reply went to the handler, the rest is held
    Stopped,     // the handler asked to stop; the bytes behind its reply aren't used
    Overlong,    // a reply grew beyond the longest
    Unexpected,  // bytes came with no command in flight; they aren't used
  };
  struct Result {
    Outcome outcome;
    std::size_t used;  // bytes of the chunk taken up by replies
  };
  // Hands each reply completed by `chunk` to `onReply`, in order. The
  // handler may call expect(); it returns false to stop. The text it gets
  // lives until it returns.
  Result take(std::string_view chunk, const std::function<bool(const MatchedReply&)>& onReply);

 private:
  struct Entry {
    SentAhead command;
    long number;
  };
  // What is known of the reply at the start of some bytes.
  struct Scan {
    std::size_t statusEnd = std::string_view::npos;  // its status line's LF
    std::size_t searched = 0;                        // bytes known to hold no end
  };
  // The length of the reply at the start of `bytes`; 0 while it isn't complete.
  std::size_t replyLength(std::string_view bytes, Scan& scan) const;
  bool deliver(std::string_view reply, std::size_t statusEnd,
               const std::function<bool(const MatchedReply&)>& onReply);

  PipelineBound bound_;
  std::size_t longestReply_;
  std::deque<Entry> queue_;
  std::size_t topsInFlight_ = 0;
  std::size_t topReplies_ = 0;
  std::size_t topReplyBytes_ = 0;
  std::string partial_;  // the unfinished reply
  Scan partialScan_;
};

}  // namespace vonel::pop3
