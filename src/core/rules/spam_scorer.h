#pragma once
// What the check asks of the Bayes filter: the spam score of a message.
#include "core/message/message.h"

namespace vonel::rules {

class SpamScorer {
 public:
  virtual ~SpamScorer() = default;
  // From 0.01 to 0.99 into `score`; a failure leaves `score` as it stood.
  virtual void spamminess(message::Message& message, bool headersOnly, float& score) = 0;
};

}  // namespace vonel::rules
