// Frames come from whatever connects to the running copy's socket: any bytes,
// in any pieces, must end in a command, a refusal or a wait, and the same
// bytes must give the same answer however they are split.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/runner/runner_frame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  vonel::runner::FrameReader whole;
  whole.feed(bytes);
  vonel::runner::FrameReader pieces;
  const std::size_t step = size == 0 ? 1 : 1 + data[0] % 7;
  for (std::size_t at = 0; at < size; at += step) pieces.feed(bytes.substr(at, step));
  if (whole.state() != pieces.state()) std::abort();
  if (whole.state() == vonel::runner::FrameState::Complete) {
    const std::string& command = whole.command();
    if (command != pieces.command() || !vonel::runner::isCommandText(command)) std::abort();
    if (vonel::runner::encodeFrame(command) != bytes) std::abort();
  }
  return 0;
}
