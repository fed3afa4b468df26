// The sandbox's servers over real sockets on loopback: both answer, a
// session's deletions reach the mailbox files, a silent client is dropped,
// and nothing listens once the servers stop.
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include "core/files/atomic_file.h"
#include "demo/sandbox_server.h"

using namespace vonel;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

// Sends the lines and waits until the reply holds `until`.
QByteArray talk(QTcpSocket& socket, const QByteArray& lines, const QByteArray& until) {
  if (!lines.isEmpty()) socket.write(lines);
  QByteArray reply;
  while (!reply.contains(until) && socket.waitForReadyRead(5000)) reply += socket.readAll();
  return reply;
}

}  // namespace

class SandboxServerTest : public QObject {
  Q_OBJECT

 private slots:
  void bothServersAnswerOnLoopbackAndDeletionsReachTheFiles() {
    QTemporaryDir temporary;
    const fs::path sandbox = fs::path(temporary.path().toStdString()) / "Sandbox";
    fs::create_directories(sandbox / "Home");
    files::writeTextFile(sandbox / "Home" / "0001.eml", "Subject: one\r\n\r\nbody\r\n");
    files::writeTextFile(sandbox / "Home" / "0002.eml", "Subject: two\r\n\r\nbody\r\n");
    sandbox::SandboxServer server(sandbox);
    QVERIFY(server.open());
    QVERIFY(server.pop3Port() != server.smtpPort());

    QTcpSocket pop3;
    pop3.connectToHost(QHostAddress::LocalHost, server.pop3Port());
    QVERIFY(pop3.waitForConnected(5000));
    QVERIFY(talk(pop3, {}, "\r\n").startsWith("+OK"));
    QCOMPARE(talk(pop3, "USER robin\r\nPASS harbour-home\r\nUIDL\r\n", "\r\n.\r\n"),
             QByteArray("+OK\r\n+OK 2 messages\r\n+OK\r\n1 0001\r\n2 0002\r\n.\r\n"));
    QCOMPARE(talk(pop3, "DELE 1\r\nQUIT\r\n", "bye\r\n"), QByteArray("+OK\r\n+OK bye\r\n"));
    QVERIFY(pop3.state() == QAbstractSocket::UnconnectedState || pop3.waitForDisconnected(5000));
    QVERIFY(!fs::exists(sandbox / "Home" / "0001.eml"));
    QVERIFY(fs::exists(sandbox / "Home" / "0002.eml"));

    QTcpSocket smtp;
    smtp.connectToHost(QHostAddress::LocalHost, server.smtpPort());
    QVERIFY(smtp.waitForConnected(5000));
    QVERIFY(talk(smtp, {}, "\r\n").startsWith("220 "));
    talk(smtp, "HELO me\r\nMAIL FROM:<a@example.org>\r\nRCPT TO:<robin@example.org>\r\nDATA\r\n", "354 ");
    QCOMPARE(talk(smtp, "Subject: three\r\n\r\n.\r\nQUIT\r\n", "221 Bye\r\n"),
             QByteArray("250 OK message kept\r\n221 Bye\r\n"));
    QVERIFY(fs::exists(sandbox / "Home" / "0003.eml"));

    server.stop();
    QTcpSocket late;
    late.connectToHost(QHostAddress::LocalHost, server.pop3Port());
    QVERIFY(!late.waitForConnected(2000));
  }

  void aSilentClientIsDroppedAndAQuietOneWhoTalksIsNot() {
    QTemporaryDir temporary;
    sandbox::SandboxServer server(temporary.path().toStdString(), 300ms);
    QVERIFY(server.open());
    QTcpSocket talking;
    QTcpSocket silent;
    talking.connectToHost(QHostAddress::LocalHost, server.pop3Port());
    silent.connectToHost(QHostAddress::LocalHost, server.pop3Port());
    QVERIFY(talking.waitForConnected(5000) && silent.waitForConnected(5000));
    for (int i = 0; i < 4; ++i) {
      QTest::qWait(150);
      QCOMPARE(talk(talking, "NOOP\r\n", "\r\n").right(2), QByteArray("\r\n"));
    }
    QVERIFY(silent.state() == QAbstractSocket::UnconnectedState || silent.waitForDisconnected(5000));
    QCOMPARE(talking.state(), QAbstractSocket::ConnectedState);
  }
};

QTEST_MAIN(SandboxServerTest)
#include "sandbox_server_test.moc"
