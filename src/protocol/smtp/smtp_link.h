#pragma once
// What the SMTP session needs of a socket, and the events it raises.
#include <cstdint>
#include <string>

#include "protocol/link.h"

namespace vonel::smtp {

// The socket's state values as the session reads them.
inline constexpr int kSocketClosed = 0;
inline constexpr int kSocketConnected = 7;
inline constexpr int kSocketError = 9;

// The session also asks its socket's state, as it always has.
class Link : public protocol::Link {
 public:
  // kSocketClosed, kSocketConnected, kSocketError, or another positive value while connecting.
  virtual int state() const = 0;
};

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
