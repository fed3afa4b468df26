#include "core/rules/status_word.h"

#include "core/rules/rule_engine.h"

namespace vonel::rules {

std::string statusWord(const message::Message& m) {
  if (m.deleted) return m.blockedSender || m.blockedRecip ? "BLOCK" : "FAIL";
  if (m.ignored) return "IGNORE";
  if (m.suspicious) return "SPAM?";
  return "PASS";
}

std::string colourName(std::int32_t value) {
  switch (value) {
    case colour::kGreen: return "green";
    case colour::kRed: return "red";
    case colour::kGrey: return "grey";
    case colour::kOrange: return "orange";
    case colour::kPurple: return "purple";
    default: return std::to_string(value);
  }
}

}  // namespace vonel::rules
