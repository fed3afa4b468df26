#include "core/rules/status_word.h"

#include "core/rules/frm_filters.h"

namespace vonel::rules {

std::string StatusWord(const message::clsMessage& m) {
  if (m.Deleted) return m.BlockedSender || m.BlockedRecip ? "BLOCK" : "FAIL";
  if (m.Ignored) return "IGNORE";
  if (m.Suspicious) return "SPAM?";
  return "PASS";
}

std::string ColourName(std::int32_t value) {
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
