#pragma once
// What an OutboxSender reports; the controller receives it under these names.
#include <string>

namespace vonel {

class OutboxListener {
 public:
  virtual ~OutboxListener() = default;
  // Any step, errors included, for display.
  virtual void onSendProgress(const std::string& text) = 0;
  // Sending stopped.
  virtual void onSendFailed(const std::string& text) = 0;
  // The outbox was empty when the upload was asked for.
  virtual void onNoMailToSend() = 0;
  // No account is left to serve.
  virtual void onSendingFinished() = 0;
};

}  // namespace vonel
