#pragma once
// What the SMTP session needs of a socket: a connection that also tells its state.
#include "protocol/link.h"

namespace vonel::smtp {

// Where the socket stands; every state but Closed means the socket is in use.
enum class SocketState { Closed, Resolving, Connecting, Connected, Closing, Error };

// The session asks the socket's state before it connects, writes QUIT or
// closes, so that it neither connects twice nor writes to a closed socket.
class SmtpLink : public protocol::Link {
 public:
  virtual SocketState state() const = 0;
};

}  // namespace vonel::smtp
