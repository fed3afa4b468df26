#include "app/pop3/pop3_connection.h"

#include "app/qtext.h"
#include "app/socket_errors.h"

namespace vonel {

Pop3Connection::Pop3Connection(AppContext& context, pop3::Pop3Listener& events, rules::MessageCheck& serverFilters,
                               rules::MessageCheck& localFilters, PasswordPrompt& passwords)
    : ctx_(context), session_(context, *this, events, serverFilters, localFilters, passwords) {
  timer_.setInterval(1000);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { session_.onTick(); });
  QObject::connect(&socket_, &QTcpSocket::connected, this, [this] {
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    gate_.onConnected();
  });
  QObject::connect(&socket_, &QSslSocket::encrypted, this, [this] { gate_.onEncrypted(); });
  QObject::connect(&socket_, &QTcpSocket::readyRead, this, &Pop3Connection::onReadyRead);
  // Handed on from the event loop, so that a handler that starts the next
  // session doesn't reconnect inside the socket's own signal; an error of a
  // connection that has been replaced meanwhile is dropped.
  QObject::connect(&socket_, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
    if (gate_.handshaking()) {
      QTimer::singleShot(0, this, [this, text = channel_.failureText(), connection = connection_] {
        if (connection == connection_) gate_.onTlsFailed(text);
      });
      return;
    }
    const protocol::SocketError socketError = toSocketError(error);
    const std::string text = fromQString(socket_.errorString());
    QTimer::singleShot(0, this, [this, socketError, text, connection = connection_] {
      if (connection == connection_) session_.onSocketError(socketError, text);
    });
  });
}

// Flushing a TLS socket also reads: a flush while a chunk is handled may
// announce the next chunk from inside it. That one waits its turn, so the
// session sees the bytes in their order.
void Pop3Connection::onReadyRead() {
  if (reading_) {
    moreToRead_ = true;
    return;
  }
  reading_ = true;
  do {
    moreToRead_ = false;
    const QByteArray bytes = socket_.readAll();
    if (!bytes.isEmpty()) gate_.onData(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
  } while (moreToRead_ || socket_.bytesAvailable() > 0);
  reading_ = false;
}

void Pop3Connection::connect(const std::string& host, int port) {
  ++connection_;
  const Account account = readAccount(ctx_.settings, session_.account(), AccountReader::Session);
  gate_.begin(account.popSecurity);
  channel_.open(account, host, port);
}

// Until the channel is as secure as the account asks, nothing of the session goes out.
void Pop3Connection::send(std::string_view bytes) {
  if (gate_.open()) writeToServer(bytes);
}

void Pop3Connection::deliverToSession(std::string_view bytes) { session_.onData(bytes); }

void Pop3Connection::writeToServer(std::string_view bytes) {
  socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
  // Every command waits for its reply: hand it to the system now rather than
  // on the next turn of the loop. A TLS socket sends from the loop anyway,
  // with whatever else was written in this turn, in fewer records.
  if (!socket_.isEncrypted()) socket_.flush();
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
