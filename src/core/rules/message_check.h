#pragma once
// The rule check as the sessions see it: it writes its verdict into the
// message it is given (Deleted, BlockedSender, Ignored, FilterReason, ...).
#include "core/message/message.h"

namespace vonel::rules {

class MessageCheck {
 public:
  virtual ~MessageCheck() = default;
  virtual void CheckMessage(message::clsMessage& message, bool useBayes) = 0;
};

// A check with no rules: every message passes.
class PassEverything final : public MessageCheck {
 public:
  void CheckMessage(message::clsMessage&, bool) override {}
};

}  // namespace vonel::rules
