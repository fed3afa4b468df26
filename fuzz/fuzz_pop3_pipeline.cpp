// The reply matcher of the pipelined header walk fed random replies in
// random chunks against a random queue of commands: it must neither crash
// nor hang, hand out only text inside what it was given, and keep the
// commands in flight and the bytes it holds within their bounds.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "protocol/pop3/pop3_reply_matcher.h"

namespace {

constexpr vonel::pop3::PipelineBound kBound{8, 4096};
constexpr std::size_t kLongest = 2048;

// Reads the fuzzer's bytes as a script: each step a control byte, then
// maybe some reply bytes.
class Script {
 public:
  Script(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool done() const { return at_ >= size_; }
  std::uint8_t next() { return done() ? 0 : data_[at_++]; }
  std::string_view take(std::size_t count) {
    count = std::min(count, size_ - at_);
    const std::string_view piece(reinterpret_cast<const char*>(data_ + at_), count);
    at_ += count;
    return piece;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vonel::pop3::ReplyMatcher;
  using vonel::pop3::SentAhead;
  ReplyMatcher matcher(kBound, kLongest);
  Script script(data, size);
  long number = 1;
  std::size_t replies = 0;
  while (!script.done()) {
    const std::uint8_t control = script.next();
    // Low bits: queue commands as the walk would, TOPs while there is room and DELEs after a header.
    for (int i = 0; i < (control & 3) && matcher.roomForTop(); ++i) matcher.expect(SentAhead::Top, number++);
    const std::string_view chunk = script.take(control >> 2);
    const auto result = matcher.take(chunk, [&](const vonel::pop3::MatchedReply& reply) {
      if (reply.text.size() > kLongest + chunk.size()) std::abort();
      if (reply.command == SentAhead::Top && reply.positive && (control & 0x80) != 0) {
        matcher.expect(SentAhead::Dele, reply.number);
      }
      return ++replies % 97 != 0;  // now and then the handler stops, as at the walk's end
    });
    if (result.used > chunk.size()) std::abort();
    if (result.outcome == ReplyMatcher::Outcome::Overlong) matcher.reset();
    if (matcher.inFlight() > kBound.commands || matcher.held() > kLongest) std::abort();
  }
  return 0;
}
