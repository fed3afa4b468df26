#include "app/pop3/pop3_connection.h"

#include "app/qtext.h"
#include "app/socket_errors.h"

namespace vonel {

Pop3Connection::Pop3Connection(AppContext& context, pop3::Pop3Listener& events, rules::MessageCheck& serverFilters,
                               rules::MessageCheck& localFilters, PasswordPrompt& passwords)
    : session_(context, *this, events, serverFilters, localFilters, passwords) {
  timer_.setInterval(1000);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { session_.onTick(); });
  QObject::connect(&socket_, &QTcpSocket::connected, this,
                   [this] { socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1); });
  QObject::connect(&socket_, &QTcpSocket::readyRead, this, [this] {
    const QByteArray bytes = socket_.readAll();
    session_.onData(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
  });
  // Handed on from the event loop, so that a handler that starts the next
  // session doesn't reconnect inside the socket's own signal; an error of a
  // connection that has been replaced meanwhile is dropped.
  QObject::connect(&socket_, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
    const protocol::SocketError socketError = toSocketError(error);
    const std::string text = fromQString(socket_.errorString());
    QTimer::singleShot(0, this, [this, socketError, text, connection = connection_] {
      if (connection == connection_) session_.onSocketError(socketError, text);
    });
  });
}

void Pop3Connection::connect(const std::string& host, int port) {
  ++connection_;
  socket_.abort();
  socket_.connectToHost(toQString(host), static_cast<quint16>(port));
}

void Pop3Connection::send(std::string_view bytes) {
  socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
  // Every command waits for its reply: hand it to the system now rather than on the next turn of the loop.
  socket_.flush();
}

void Pop3Connection::close() {
  ++connection_;
  socket_.abort();
}

void Pop3Connection::setTimer(bool on) {
  if (on) timer_.start();
  else timer_.stop();
}

}  // namespace vonel
