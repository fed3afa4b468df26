// Mail links come from web pages and other programs: any text after
// "mailto:" must decode without a control character in the addressee or the
// subject, and without a NUL anywhere.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/message/mailto_link.h"
#include "core/runner/runner_command.h"

namespace {

bool oneLine(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\x7F'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view link(reinterpret_cast<const char*>(data), size);
  const vonel::message::ComposeRequest request = vonel::message::decodeMailto(link);
  if (!oneLine(request.to) || !oneLine(request.subject)) std::abort();
  if (request.body.find('\0') != std::string::npos) std::abort();
  vonel::runner::readMailCommand(link);
  return 0;
}
