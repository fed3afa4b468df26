// The sandbox's SMTP server side fed whatever a local client might send, in
// random chunks. It must never crash, answer in whole lines, and only ever
// keep a message with a recipient and within the size cap.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "demo/smtp_sandbox_session.h"
#include "sandbox_chunks.h"

using namespace vonel::sandbox;

namespace {

class Checked final : public Delivery {
 public:
  bool deliver(const Envelope& envelope) override {
    if (envelope.recipients.empty() || envelope.bytes.size() > kDataLimit) std::abort();
    return true;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Checked delivery;
  SmtpSandboxSession session(delivery);
  // Past the envelope first when the first byte says so, to reach DATA.
  if (size > 0 && (data[0] & 1)) session.onData("HELO me\r\nMAIL FROM:<a@example.org>\r\nRCPT TO:<b@example.org>\r\n");
  feedSandboxChunks(session, data, size);
  return 0;
}
