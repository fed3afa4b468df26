#include "app/socket_errors.h"

namespace vonel {

protocol::SocketError toSocketError(QAbstractSocket::SocketError error) {
  using protocol::SocketError;
  switch (error) {
    case QAbstractSocket::HostNotFoundError: return SocketError::HostNotFound;
    case QAbstractSocket::SocketTimeoutError: return SocketError::TimedOut;
    case QAbstractSocket::ConnectionRefusedError: return SocketError::ConnectionRefused;
    case QAbstractSocket::NetworkError: return SocketError::NetworkUnreachable;
    case QAbstractSocket::RemoteHostClosedError: return SocketError::ConnectionAborted;
    case QAbstractSocket::SocketAddressNotAvailableError: return SocketError::AddressNotAvailable;
    case QAbstractSocket::TemporaryError: return SocketError::HostUnreachable;
    default: return static_cast<SocketError>(10000 + static_cast<int>(error));
  }
}

}  // namespace vonel
