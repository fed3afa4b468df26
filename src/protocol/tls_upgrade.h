#pragma once
// What a session needs of its connection to turn a plain conversation into
// an encrypted one (STLS, STARTTLS). The connection reports the end of the
// handshake back to the session that asked.
namespace vonel::protocol {

class TlsUpgrade {
 public:
  virtual ~TlsUpgrade() = default;
  // Starts the handshake over the open connection; nothing more may be
  // written in plain text.
  virtual void startTls() = 0;
};

}  // namespace vonel::protocol
