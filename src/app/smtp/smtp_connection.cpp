#include "app/smtp/smtp_connection.h"

#include <utility>

#include "app/socket_errors.h"
#include "app/qtext.h"
#include "core/message/send_date.h"

namespace vonel {

SmtpConnection::SmtpConnection(AppContext& context, QObject* parent)
    : QObject(parent),
      ctx_(context),
      session_(context, *this, *this, message::standardZoneBias()),
      standardSession_(context, *this, *this, *this, session_) {
  // Each socket event goes to the dialogue the account uses.
  timer_.setInterval(1000);
  QObject::connect(&timer_, &QTimer::timeout, this,
                   [this] { standard_ ? standardSession_.onTimerTick() : session_.onTimerTick(); });
  QObject::connect(&socket_, &QTcpSocket::connected, this, [this] {
    // Each command waits for its reply: none may sit out a delayed acknowledgement.
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    handshaking_ = channel_.security() == TransportSecurity::Tls;
    standard_ ? standardSession_.onSocketConnected() : session_.onSocketConnected();
  });
  QObject::connect(&socket_, &QTcpSocket::disconnected, this,
                   [this] { standard_ ? standardSession_.onSocketClosed() : session_.onSocketClosed(); });
  QObject::connect(&socket_, &QSslSocket::encrypted, this, [this] {
    const bool upgraded = handshaking_ && channel_.security() == TransportSecurity::Upgrade;
    handshaking_ = false;
    if (upgraded && standard_) standardSession_.onTlsEstablished();
  });
  QObject::connect(&socket_, &QTcpSocket::readyRead, this, [this] {
    const QByteArray bytes = socket_.readAll();
    const std::string_view chunk(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    standard_ ? standardSession_.onDataReceived(chunk) : session_.onDataReceived(chunk);
  });
  QObject::connect(&socket_, &QTcpSocket::bytesWritten, this, [this](qint64 written) {
    const auto bytes = static_cast<std::int64_t>(written);
    standard_ ? standardSession_.onBytesWritten(bytes) : session_.onBytesWritten(bytes);
  });
  // Handed on from the event loop, so that the session may close the socket
  // outside the socket's own signal; an error of a replaced connection is dropped.
  QObject::connect(&socket_, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
    inError_ = true;
    const int number = protocol::number(toSocketError(error));
    const std::string text = handshaking_ ? channel_.failureText() : fromQString(socket_.errorString());
    const bool handshake = std::exchange(handshaking_, false);
    QTimer::singleShot(0, this, [this, number, text, handshake, connection = connection_] {
      if (connection != connection_) return;
      if (!standard_) return session_.onSocketError(number, text);
      return handshake ? standardSession_.onTlsFailed(text) : standardSession_.onSocketError(number, text);
    });
  });
}

void SmtpConnection::useAccount(int account) {
  account_ = readAccount(ctx_.settings, account, AccountReader::Session);
  standard_ = account_.smtpStandard || account_.smtpSecurity == TransportSecurity::Upgrade;
  standardSession_.setSecurity(account_.smtpSecurity);
}

void SmtpConnection::openSession() { standard_ ? standardSession_.connect() : static_cast<void>(session_.connect()); }
void SmtpConnection::sendMessage() { standard_ ? standardSession_.send() : session_.send(); }
void SmtpConnection::closeSession() { standard_ ? standardSession_.disconnect() : session_.disconnect(); }

void SmtpConnection::startTls() {
  handshaking_ = true;
  channel_.startTls();
}

SmtpConnection::~SmtpConnection() { socket_.disconnect(this); }

void SmtpConnection::connect(const std::string& host, int port) {
  ++connection_;
  inError_ = false;
  handshaking_ = false;
  channel_.open(account_, host, port);
}

void SmtpConnection::send(std::string_view bytes) { socket_.write(bytes.data(), static_cast<qint64>(bytes.size())); }

void SmtpConnection::close() {
  ++connection_;
  inError_ = false;
  socket_.abort();
}

void SmtpConnection::setTimer(bool on) {
  if (on) {
    timer_.start();
  } else {
    timer_.stop();
  }
}

smtp::SocketState SmtpConnection::state() const {
  using smtp::SocketState;
  if (inError_) return SocketState::Error;
  switch (socket_.state()) {
    case QAbstractSocket::UnconnectedState: return SocketState::Closed;
    case QAbstractSocket::HostLookupState: return SocketState::Resolving;
    case QAbstractSocket::ConnectingState: return SocketState::Connecting;
    case QAbstractSocket::ConnectedState: return SocketState::Connected;
    case QAbstractSocket::ClosingState: return SocketState::Closing;
    default: return SocketState::Connected;
  }
}

void SmtpConnection::onSendFailed(const std::string& errors) { emit sendFailed(toQString(errors)); }
void SmtpConnection::onMessageRefused(const std::string& reply) { emit messageRefused(toQString(reply)); }
void SmtpConnection::onStatus(const std::string& text) { emit status(toQString(text)); }

}  // namespace vonel
