// Any bytes as a message: parse it both ways, serialise it, and run the
// operations that rewrite the raw text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/log/app_error.h"
#include "core/message/message.h"
#include "core/time/clock.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vonel::FixedClock clock(vonel::text::DateTime{2026, 1, 2, 3, 4, 5});
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (const bool headerOnly : {true, false}) {
    vonel::message::Message message(nullptr, &clock);
    message.createFromText(text, headerOnly);
    message.read = !headerOnly;
    message.highPriority = headerOnly;
    message.setTags(message.subject);
    const std::string raw = message.rawMessage();
    message.createFromText(raw, headerOnly);
    message.tagAsSpam();
    message.removeReceiveDate();
    (void)message.tagsPresent(message.from);
    try {
      (void)message.sendDateInZone(-60);
    } catch (const vonel::AppError&) {
      // An unreadable date is reported to the caller; nothing more to check.
    }
  }
  return 0;
}
