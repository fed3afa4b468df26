// The standard SMTP reply reader fed random bytes in random chunks: it must
// neither crash nor hang, hand out only whole replies whose codes it read
// from three digits, and keep what it holds within its bounds.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "protocol/smtp/smtp_reply_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vonel::smtp::SmtpReplyReader;
  SmtpReplyReader reader;
  std::size_t at = 0;
  while (at < size) {
    // The first byte of each step says how many of the following bytes form the chunk.
    const std::size_t chunk = std::min<std::size_t>(data[at] + 1u, size - at - 1);
    ++at;
    reader.add(std::string_view(reinterpret_cast<const char*>(data + at), chunk));
    at += chunk;
    while (reader.hasReply()) {
      const vonel::smtp::SmtpReply reply = reader.take();
      if (reply.code < 0 || reply.code > 999) std::abort();
      if (reply.lines.empty() || reply.lines.size() > SmtpReplyReader::kMostKeptLines) std::abort();
      for (const auto& line : reply.lines) {
        if (line.size() > SmtpReplyReader::kLongestKeptLine || line.find('\n') != std::string::npos) std::abort();
      }
      (void)reply.whole();
      (void)reply.text();
    }
  }
  return 0;
}
