#pragma once
// Drives an SMTP session (SmtpSession) from a real socket and a
// one-second timer, and raises its events as Qt signals. An account that
// asks for the standard dialogue, or for STARTTLS, which only that one
// holds, is served by StandardSmtpSession over the same message fields.
#include <QObject>
#include <QSslSocket>
#include <QTimer>

#include "app/secure_channel.h"
#include "protocol/smtp/smtp_session.h"
#include "protocol/smtp/standard_smtp_session.h"

namespace vonel {

class SmtpConnection final : public QObject,
                             public smtp::SmtpLink,
                             private smtp::SmtpListener,
                             private protocol::TlsUpgrade {
  Q_OBJECT

 public:
  explicit SmtpConnection(AppContext& context, QObject* parent = nullptr);
  ~SmtpConnection() override;

  smtp::SmtpSession& session() { return session_; }
  SecureChannel& channel() { return channel_; }

  // Picks the dialogue and the security of the account whose mail goes next.
  void useAccount(int account);
  // The session's connect, send and disconnect, on the account's dialogue.
  void openSession();
  void sendMessage();
  void closeSession();

  void connect(const std::string& host, int port) override;
  void send(std::string_view bytes) override;
  void close() override;
  void setTimer(bool on) override;
  smtp::SocketState state() const override;

 signals:
  void connected();
  void errorConnecting();
  void disconnected();
  void sendSuccessful();
  void sendFailed(const QString& errors);
  void messageRefused(const QString& reply);
  void status(const QString& text);
  void progress(int percentage);

 private:
  void onConnected() override { emit connected(); }
  void onErrorConnecting() override { emit errorConnecting(); }
  void onDisconnected() override { emit disconnected(); }
  void onSendSuccessful() override { emit sendSuccessful(); }
  void onSendFailed(const std::string& errors) override;
  void onMessageRefused(const std::string& reply) override;
  void onStatus(const std::string& text) override;
  void onProgress(std::int32_t percentage) override { emit progress(percentage); }
  void startTls() override;

  AppContext& ctx_;
  QSslSocket socket_;
  QTimer timer_;
  quint64 connection_ = 0;  // counts connections, to tell a stale error from a fresh one
  bool inError_ = false;    // an error arrived and the socket hasn't been closed since
  bool handshaking_ = false;
  SecureChannel channel_{socket_, MailService::Smtp};
  Account account_;
  bool standard_ = false;
  smtp::SmtpSession session_;
  smtp::StandardSmtpSession standardSession_;
};

}  // namespace vonel
