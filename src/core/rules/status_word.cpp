#include "core/rules/status_word.h"

namespace vonel::rules {

std::string StatusWord(const message::clsMessage& m) {
  if (m.Deleted) return m.BlockedSender || m.BlockedRecip ? "BLOCK" : "FAIL";
  if (m.Ignored) return "IGNORE";
  if (m.Suspicious) return "SPAM?";
  return "PASS";
}

}  // namespace vonel::rules
