#pragma once
// The events an SMTP session raises to its owner.
#include <cstdint>
#include <string>

namespace vonel::smtp {

class SmtpListener {
 public:
  virtual ~SmtpListener() = default;
  virtual void onConnected() = 0;
  virtual void onErrorConnecting() = 0;
  virtual void onDisconnected() = 0;
  virtual void onSendSuccessful() = 0;
  virtual void onSendFailed(const std::string& errors) = 0;
  // On a kept-open connection the server refused the message on its way
  // (MAIL FROM, a recipient, DATA or the text): `reply` is the server's whole
  // reply. The session resets the transaction and raises onConnected when
  // the next message may go, or onSendFailed when the connection can't go on.
  virtual void onMessageRefused(const std::string& reply) = 0;
  virtual void onStatus(const std::string& text) = 0;
  virtual void onProgress(std::int32_t percentage) = 0;
};

}  // namespace vonel::smtp
