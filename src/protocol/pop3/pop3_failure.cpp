#include "protocol/pop3/pop3_failure.h"

#include "core/log/app_error.h"

namespace vonel::pop3 {

FailureKind storeFailure(int errorNumber) {
  return errorNumber == error_number::kDiskFull ? FailureKind::DiskFull : FailureKind::NotStored;
}

Pop3Failure socketFailure(protocol::SocketError error, std::string_view description, int idleSeconds) {
  using protocol::SocketError;
  Pop3Failure failure(FailureKind::ConnectionFailed, std::string(description));
  failure.socketError = error;
  switch (error) {
    case SocketError::HostNotFound:
    case SocketError::NoAddressForName: failure.kind = FailureKind::HostNotFound; break;
    case SocketError::ConnectionRefused: failure.kind = FailureKind::ConnectionRefused; break;
    case SocketError::NetworkUnreachable:
    case SocketError::HostUnreachable: failure.kind = FailureKind::NetworkUnreachable; break;
    case SocketError::ConnectionAborted: failure.kind = FailureKind::ConnectionLost; break;
    case SocketError::TimedOut:
      failure.kind = FailureKind::TimedOut;
      failure.seconds = idleSeconds;
      break;
    default: break;
  }
  return failure;
}

}  // namespace vonel::pop3
