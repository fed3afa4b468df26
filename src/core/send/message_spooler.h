#pragma once
// Where merged messages go: the outbox writer.
#include <string>

#include "core/message/message.h"

namespace vonel::send {

class MessageSpooler {
 public:
  virtual ~MessageSpooler() = default;
  virtual void spoolMessage(message::Message& message, const std::string& fromOverride,
                            const std::string& nameOverride) = 0;
};

}  // namespace vonel::send
