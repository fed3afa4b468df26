#pragma once
// Drives a POP3 session from a real socket and a one-second timer.
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <memory>

#include "protocol/link.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel {

class Pop3Connection final : public QObject, public protocol::Link {
  Q_OBJECT

 public:
  Pop3Connection(AppContext& context, pop3::Pop3Listener& events, rules::MessageCheck& serverFilters,
                 rules::MessageCheck& localFilters, PasswordPrompt& passwords);

  pop3::Pop3Session& session() { return session_; }

  void connect(const std::string& host, int port) override;
  void send(std::string_view bytes) override;
  void close() override;
  void setTimer(bool on) override;

 private:
  quint64 connection_ = 0;  // counts connections, to tell a stale error from a fresh one
  QTcpSocket socket_;
  QTimer timer_;
  pop3::Pop3Session session_;
};

}  // namespace vonel
