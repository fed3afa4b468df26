// The sandbox's POP3 server side fed whatever a local client might send, in
// random chunks. It must never crash, and every reply must be whole lines:
// the connection only ever carries complete answers.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "demo/pop3_sandbox_session.h"
#include "sandbox_chunks.h"

using namespace vonel::sandbox;

namespace {

class TwoMessages final : public Maildrop {
 public:
  std::optional<std::vector<Mail>> open(std::string_view user, std::string_view password) override {
    if (user != "jo" || password != "secret") return std::nullopt;
    return std::vector<Mail>{{"a", "Subject: a\r\n\r\n.dot\r\nline\r\n"}, {"b", "Subject: b\r\n\r\n"}};
  }
  void remove(std::string_view, const std::vector<std::string>& uids) override {
    if (uids.empty() || uids.size() > 2) std::abort();
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TwoMessages drop;
  Pop3SandboxSession session(drop);
  // Logged in first when the first byte says so, to reach the mail commands.
  if (size > 0 && (data[0] & 1)) session.onData("USER jo\r\nPASS secret\r\n");
  feedSandboxChunks(session, data, size);
  return 0;
}
