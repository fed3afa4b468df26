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
  virtual void onStatus(const std::string& text) = 0;
  virtual void onProgress(std::int32_t percentage) = 0;
};

}  // namespace vonel::smtp
