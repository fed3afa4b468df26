#pragma once
// What an OutboxSender reports; the controller receives it under these names.
#include <string>

#include "app/untrusted_certificate.h"

namespace vonel {

class OutboxListener {
 public:
  virtual ~OutboxListener() = default;
  // Any step, errors included, for display.
  virtual void onSendProgress(const std::string& text) = 0;
  // Sending stopped; or, while the upload goes on (the sender is still
  // sending), one message failed: a refused one is reported as
  // "Refused 00_outbound_3.eml ("Subject" to a@x.org): 550 5.1.1 ...; it stays in the outbox".
  virtual void onSendFailed(const std::string& text) = 0;
  // The outbox was empty when the upload was asked for.
  virtual void onNoMailToSend() = 0;
  // No account is left to serve.
  virtual void onSendingFinished() = 0;
  // The server's certificate was not trusted; the upload fails as well.
  virtual void onCertificateUntrusted(const UntrustedCertificate&) {}
};

}  // namespace vonel
