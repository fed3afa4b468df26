#include "demo/sandbox_server.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <memory>

#include "demo/pop3_sandbox_session.h"
#include "demo/sandbox_mailboxes.h"
#include "demo/smtp_sandbox_session.h"

namespace vonel::sandbox {

namespace {

// Each connection to the server gets its own session over the shared mail.
template <typename Session, typename Mail>
void serve(QTcpServer& server, Mail& mail, std::chrono::milliseconds idleTime) {
  QObject::connect(&server, &QTcpServer::newConnection, &server, [&server, &mail, idleTime] {
    while (QTcpSocket* socket = server.nextPendingConnection()) {
      auto session = std::make_shared<Session>(mail);
      auto* idle = new QTimer(socket);
      idle->setSingleShot(true);
      idle->start(idleTime);
      QObject::connect(idle, &QTimer::timeout, socket, [socket] {
        socket->abort();
        socket->deleteLater();
      });
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, session, idle, idleTime] {
        idle->start(idleTime);
        const std::string reply = session->onData(socket->readAll().toStdString());
        socket->write(reply.data(), static_cast<qint64>(reply.size()));
        if (session->finished()) socket->disconnectFromHost();
      });
      socket->write(QByteArray::fromStdString(Session::greeting()));
    }
  });
}

}  // namespace

SandboxServer::~SandboxServer() { stop(); }

bool SandboxServer::open() {
  start();
  listening_.acquire();
  if (pop3Port_ != 0 && smtpPort_ != 0) return true;
  wait();
  return false;
}

void SandboxServer::stop() {
  quit();
  wait();
}

void SandboxServer::run() {
  SandboxMailboxes mail(folder_);
  QTcpServer pop3;
  QTcpServer smtp;
  serve<Pop3SandboxSession>(pop3, static_cast<Maildrop&>(mail), idle_);
  serve<SmtpSandboxSession>(smtp, static_cast<Delivery&>(mail), idle_);
  const bool listening = pop3.listen(QHostAddress::LocalHost) && smtp.listen(QHostAddress::LocalHost);
  if (listening) {
    pop3Port_ = pop3.serverPort();
    smtpPort_ = smtp.serverPort();
  }
  listening_.release();
  if (listening) exec();
}

}  // namespace vonel::sandbox
