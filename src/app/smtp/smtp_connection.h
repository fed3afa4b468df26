#pragma once
// Drives an SMTP session (SmtpSession) from a real socket and a
// one-second timer, and raises its events as Qt signals.
#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include "protocol/smtp/smtp_session.h"

namespace vonel {

class SmtpConnection final : public QObject, public smtp::SmtpLink, private smtp::SmtpListener {
  Q_OBJECT

 public:
  explicit SmtpConnection(AppContext& context, QObject* parent = nullptr);
  ~SmtpConnection() override;

  smtp::SmtpSession& session() { return session_; }

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

  QTcpSocket socket_;
  QTimer timer_;
  quint64 connection_ = 0;  // counts connections, to tell a stale error from a fresh one
  bool inError_ = false;    // an error arrived and the socket hasn't been closed since
  smtp::SmtpSession session_;
};

}  // namespace vonel
