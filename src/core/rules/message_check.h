#pragma once
// The rule check as the sessions see it: it writes its verdict into the
// message it is given (Deleted, blockedSender, Ignored, filterReason, ...).
#include "core/message/message.h"

namespace vonel::rules {

class MessageCheck {
 public:
  virtual ~MessageCheck() = default;
  virtual void checkMessage(message::Message& message, bool useBayes) = 0;
};

// A check with no rules: every message passes.
class PassEverything final : public MessageCheck {
 public:
  void checkMessage(message::Message&, bool) override {}
};

}  // namespace vonel::rules
