#pragma once
// Drives a POP3 session from a real socket and a one-second timer. The
// account's security puts TLS under the session, from the first byte or
// after STLS, and the session sees what it sees on a plain connection.
#include <QObject>
#include <QSslSocket>
#include <QTimer>
#include <memory>

#include "app/secure_channel.h"
#include "protocol/link.h"
#include "protocol/pop3/pop3_session.h"
#include "protocol/pop3/stls_gate.h"

namespace vonel {

class Pop3Connection final : public QObject, public protocol::Link, private pop3::GatePeer {
  Q_OBJECT

 public:
  Pop3Connection(AppContext& context, pop3::Pop3Listener& events, rules::MessageCheck& serverFilters,
                 rules::MessageCheck& localFilters, PasswordPrompt& passwords);

  pop3::Pop3Session& session() { return session_; }
  // Tells of a certificate the account doesn't trust.
  SecureChannel& channel() { return channel_; }

  void connect(const std::string& host, int port) override;
  void send(std::string_view bytes) override;
  void close() override;
  void setTimer(bool on) override;

 private:
  void onReadyRead();
  void writeToServer(std::string_view bytes) override;
  void deliverToSession(std::string_view bytes) override;
  void startTls() override { channel_.startTls(); }

  AppContext& ctx_;
  quint64 connection_ = 0;  // counts connections, to tell a stale error from a fresh one
  bool reading_ = false;     // a chunk is being handed to the session
  bool moreToRead_ = false;  // and another arrived meanwhile
  QSslSocket socket_;
  QTimer timer_;
  SecureChannel channel_{socket_, MailService::Pop3};
  pop3::StlsGate gate_{*this};
  pop3::Pop3Session session_;
};

}  // namespace vonel
