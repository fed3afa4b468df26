#pragma once
// Feeds a sandbox session the fuzzer's bytes in chunks whose lengths the
// bytes choose, and stops the run when a reply isn't whole lines: the
// connection only ever carries complete answers.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

template <typename Session>
void feedSandboxChunks(Session& session, const std::uint8_t* data, std::size_t size) {
  std::size_t at = 1;
  while (at < size && !session.finished()) {
    const std::size_t length = std::min<std::size_t>(data[at] % 64 + 1, size - at - 1);
    const std::string reply = session.onData(std::string_view(reinterpret_cast<const char*>(data + at + 1), length));
    if (!reply.empty() && !reply.ends_with("\r\n")) std::abort();
    at += length + 1;
  }
}
