#include "app/smtp/smtp_connection.h"

#include "app/socket_errors.h"
#include "app/qtext.h"
#include "core/message/send_date.h"

namespace vonel {

SmtpConnection::SmtpConnection(AppContext& context, QObject* parent)
    : QObject(parent), session_(context, *this, *this, message::standardZoneBias()) {
  timer_.setInterval(1000);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { session_.onTimerTick(); });
  QObject::connect(&socket_, &QTcpSocket::connected, this, [this] { session_.onSocketConnected(); });
  QObject::connect(&socket_, &QTcpSocket::disconnected, this, [this] { session_.onSocketClosed(); });
  QObject::connect(&socket_, &QTcpSocket::readyRead, this, [this] {
    const QByteArray bytes = socket_.readAll();
    session_.onDataReceived(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
  });
  QObject::connect(&socket_, &QTcpSocket::bytesWritten, this,
                   [this](qint64 bytes) { session_.onBytesWritten(static_cast<std::int64_t>(bytes)); });
  // Handed on from the event loop, so that the session may close the socket
  // outside the socket's own signal; an error of a replaced connection is dropped.
  QObject::connect(&socket_, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
    inError_ = true;
    const int number = protocol::number(toSocketError(error));
    const std::string text = fromQString(socket_.errorString());
    QTimer::singleShot(0, this, [this, number, text, connection = connection_] {
      if (connection == connection_) session_.onSocketError(number, text);
    });
  });
}

SmtpConnection::~SmtpConnection() { socket_.disconnect(this); }

void SmtpConnection::connect(const std::string& host, int port) {
  ++connection_;
  inError_ = false;
  socket_.abort();
  socket_.connectToHost(toQString(host), static_cast<quint16>(port));
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
