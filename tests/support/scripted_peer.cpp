#include "support/scripted_peer.h"

#include <QHostAddress>
#include <algorithm>
#include <cctype>

namespace vonel::testing {
namespace {

// Long enough that two writes reach the client as two reads.
constexpr int kPiecePauseMs = 30;

bool startsWithNoCase(const std::string& text, const std::string& prefix) {
  return text.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
           return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
         });
}

}  // namespace

ScriptedPeer::ScriptedPeer(QObject* parent) : QObject(parent) {
  pacer_.setSingleShot(true);
  pacer_.setInterval(kPiecePauseMs);
  connect(&pacer_, &QTimer::timeout, this, &ScriptedPeer::sendNextPiece);
  connect(&server_, &QTcpServer::newConnection, this, &ScriptedPeer::accept);
  server_.listen(QHostAddress::LocalHost, 0);
}

void ScriptedPeer::on(std::string prefix, std::vector<Reply> replies) {
  rules_.push_back(Rule{std::move(prefix), std::deque<Reply>(replies.begin(), replies.end())});
}

void ScriptedPeer::collectDataAfter(std::string prefix, std::string terminator, Reply reply) {
  dataPrefix_ = std::move(prefix);
  dataTerminator_ = std::move(terminator);
  dataReply_ = std::move(reply);
}

void ScriptedPeer::accept() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    ++connections;
    if (client_) client_->deleteLater();
    client_ = socket;
    buffer_.clear();
    inData_ = false;
    outgoing_.clear();
    connect(socket, &QTcpSocket::readyRead, this, &ScriptedPeer::readClient);
    play(greeting_);
  }
}

void ScriptedPeer::readClient() {
  const QByteArray bytes = client_->readAll();
  buffer_.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  for (;;) {
    if (inData_) {
      const std::size_t end = buffer_.find(dataTerminator_);
      if (end == std::string::npos) return;
      dataBlocks.push_back(buffer_.substr(0, end + dataTerminator_.size()));
      buffer_.erase(0, end + dataTerminator_.size());
      inData_ = false;
      play(dataReply_);
      continue;
    }
    const std::size_t end = buffer_.find("\r\n");
    if (end == std::string::npos) return;
    const std::string line = buffer_.substr(0, end);
    buffer_.erase(0, end + 2);
    handleCommand(line);
  }
}

void ScriptedPeer::handleCommand(const std::string& line) {
  commands.push_back(line);
  emit commandReceived();
  for (Rule& rule : rules_) {
    if (!startsWithNoCase(line, rule.prefix)) continue;
    const Reply reply = rule.replies.front();
    if (rule.replies.size() > 1) rule.replies.pop_front();
    play(reply);
    break;
  }
  if (!dataPrefix_.empty() && startsWithNoCase(line, dataPrefix_)) inData_ = true;
}

void ScriptedPeer::play(const Reply& reply) {
  outgoing_.insert(outgoing_.end(), reply.pieces.begin(), reply.pieces.end());
  closeWhenSent_ = closeWhenSent_ || reply.thenClose;
  if (!pacer_.isActive()) sendNextPiece();
}

void ScriptedPeer::sendNextPiece() {
  if (!client_) return;
  if (!outgoing_.empty()) {
    const std::string piece = outgoing_.front();
    outgoing_.pop_front();
    client_->write(piece.data(), static_cast<qint64>(piece.size()));
    client_->flush();
  }
  if (!outgoing_.empty()) {
    pacer_.start();
  } else if (closeWhenSent_) {
    closeWhenSent_ = false;
    client_->disconnectFromHost();
  }
}

}  // namespace vonel::testing
