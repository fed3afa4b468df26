// Any bytes as a mail merge: the part before the first NUL is the data file,
// the rest the template.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/send/mail_merge.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t split = bytes.find('\0');
  const std::string_view rows = bytes.substr(0, split);
  const std::string_view templateText = split == std::string_view::npos ? rows : bytes.substr(split + 1);
  vonel::SilentProgress progress;
  try {
    vonel::send::mergeTexts(rows, templateText, {0, "me@example.org"},
                            [](vonel::message::Message& message) { (void)message.messageBody(); }, progress);
  } catch (const vonel::send::NoEmailField&) {
  }
  return 0;
}
