#pragma once
// Stands between a POP3 session and its connection while the connection is
// made secure, so that the session sees on 995 or after STLS exactly what it
// sees on 110. With STLS the greeting is held back, STLS goes out, and the
// greeting reaches the session once the handshake is done. A refused STLS
// or a failed handshake reaches the session as a server that refused at the
// greeting; the session's own writes are dropped until the channel is
// secure, so nothing, not even USER, goes out in plain text.
#include <cstddef>
#include <string>
#include <string_view>

#include "core/settings/transport_security.h"
#include "protocol/tls_upgrade.h"

namespace vonel::pop3 {

// The connection side of the gate.
class GatePeer : public protocol::TlsUpgrade {
 public:
  virtual void writeToServer(std::string_view bytes) = 0;
  virtual void deliverToSession(std::string_view bytes) = 0;
};

class StlsGate {
 public:
  enum class State { Open, AwaitConnection, AwaitGreeting, AwaitStlsReply, Handshaking, Refused };

  explicit StlsGate(GatePeer& peer) : peer_(peer) {}

  // A new connection of the given security is about to be made.
  void begin(TransportSecurity security);
  // The connection is up (TLS from the first byte starts its handshake now).
  void onConnected();
  void onData(std::string_view bytes);
  void onEncrypted();
  // The handshake failed; `text` is what the session shows.
  void onTlsFailed(std::string_view text);

  // Whether the session's own writes may go out.
  bool open() const { return state_ == State::Open; }
  // Whether an error of the socket now belongs to the handshake.
  bool handshaking() const { return state_ == State::Handshaking; }
  State state() const { return state_; }

 private:
  // The first line of the buffer, once it has arrived.
  bool takeLine(std::string& line);
  void refuse(std::string_view line);

  GatePeer& peer_;
  State state_ = State::Open;
  std::string pending_;
  std::string greeting_;
};

}  // namespace vonel::pop3
