#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "app/smtp/smtp_connection.h"
#include "core/context/app_context.h"
#include "support/scripted_peer.h"

using namespace vonel;
using testing::Reply;
using testing::ScriptedPeer;
using testing::whole;

namespace {

constexpr int kWaitMs = 10000;

// A home with an account whose server is the scripted peer.
struct SmtpHome {
  QTemporaryDir dir;
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "os", "/", dir.path().toStdString()}};
  ScriptedPeer peer;
  std::unique_ptr<SmtpConnection> connection;
  std::unique_ptr<QSignalSpy> failed;

  explicit SmtpHome(bool authenticate = false) {
    context.settings.set("ReplyAddress0", "me@example.org");
    context.settings.set("SMTP0", "127.0.0.1");
    context.settings.set("SMTPPort0", static_cast<int>(peer.port()));
    context.settings.set("Uname0", "user");
    context.settings.set("UseAuthentication", authenticate);
    connection = std::make_unique<SmtpConnection>(context);
    failed = std::make_unique<QSignalSpy>(connection.get(), &SmtpConnection::sendFailed);
    session().initialise(0);
    session().setPassword("secret");
    peer.setGreeting(whole("220 scripted ESMTP\r\n"));
    peer.collectDataAfter("DATA", "\r\n.\r\n", whole("250 queued\r\n"));
    peer.on("DATA", {whole("354 go ahead\r\n")});
    peer.on("QUIT", {Reply{{"221 bye\r\n"}, true}});
  }
  smtp::SmtpSession& session() { return connection->session(); }
  void sendOnConnect() {
    QObject::connect(connection.get(), &SmtpConnection::connected, connection.get(), [this] { session().send(); });
  }
  QString failure() const { return failed->isEmpty() ? QString() : failed->first().first().toString(); }
};

}  // namespace

class SmtpConnectionTest : public QObject {
  Q_OBJECT

 private slots:
  void plainSessionDeliversTheTextAndQuits() {
    SmtpHome home;
    home.peer.on("", {whole("250 ok\r\n")});
    home.sendOnConnect();
    home.session().setRecipient("to@x.org");
    home.session().setCcRecipient("cc@x.org");
    home.session().setMessage("Subject: hi\r\n\r\n.line");
    QSignalSpy done(home.connection.get(), &SmtpConnection::disconnected);
    QSignalSpy sent(home.connection.get(), &SmtpConnection::sendSuccessful);
    home.session().send();
    QVERIFY(done.wait(kWaitMs));
    QCOMPARE(sent.count(), 1);
    QCOMPARE(home.peer.commands, (std::vector<std::string>{"HELO example.org", "MAIL FROM: <me@example.org>",
                                                          "RCPT TO: <to@x.org>", "RCPT TO: <cc@x.org>", "DATA",
                                                          "QUIT"}));
    QCOMPARE(home.peer.dataBlocks.size(), std::size_t{1});
    const std::string& data = home.peer.dataBlocks.front();
    QVERIFY(data.starts_with("Date: "));
    QVERIFY(data.ends_with("\r\nSubject: hi\r\n\r\n..line\r\n\r\n.\r\n"));
  }

  void ehloSplitOverChunksDrivesTheLogin() {
    SmtpHome home(true);
    home.sendOnConnect();
    // The second EHLO line arrives while the session waits on AUTH LOGIN and
    // is taken as its answer; the server's real reply to AUTH never comes.
    home.peer.on("EHLO", {Reply{{"250-scripted\r\n", "250 AUTH LOGIN PLAIN\r\n"}}});
    home.peer.on("AUTH", {Reply{}});
    home.peer.on("", {whole("250 ok\r\n")});
    home.session().setRecipient("to@x.org");
    home.session().setMessage("x");
    QSignalSpy sent(home.connection.get(), &SmtpConnection::sendSuccessful);
    home.session().send();
    QVERIFY(sent.wait(kWaitMs));
    QCOMPARE(home.peer.commands.at(0), std::string("EHLO example.org"));
    QCOMPARE(home.peer.commands.at(1), std::string("AUTH LOGIN"));
    QCOMPARE(home.peer.commands.at(2), std::string("dXNlcg=="));
    QCOMPARE(home.peer.commands.at(3), std::string("c2VjcmV0"));
  }

  void twoTwentyAfterHelloIsIgnored() {
    SmtpHome home;
    home.peer.on("HELO", {Reply{{"220 still here\r\n", "250 ok\r\n"}}});
    QSignalSpy connected(home.connection.get(), &SmtpConnection::connected);
    home.session().connect();
    QVERIFY(connected.wait(kWaitMs));
    QVERIFY(home.failed->isEmpty());
  }

  void tooManyRecipientsNeverConnects() {
    SmtpHome home;
    std::string list;
    for (int i = 0; i < 101; ++i) list += "r" + std::to_string(i) + "@x.org;";
    list.pop_back();
    home.session().setRecipient(list);
    home.session().send();
    QCOMPARE(home.failure(), QString("Too many recipients"));
    QTest::qWait(100);
    QCOMPARE(home.peer.connections, 0);
  }

  void silentServerTimesOut() {
    SmtpHome home;
    home.peer.setGreeting(Reply{});
    home.session().setMessageTimeout(2);
    home.session().setRecipient("to@x.org");
    home.session().send();
    QVERIFY(home.failed->wait(kWaitMs));
    QCOMPARE(home.failure(), QString("Timeout occurred: The SMTP Host did not respond to the request"));
  }

  void closeMidReplyFailsOnTheFragment() {
    SmtpHome home;
    home.peer.on("HELO", {whole("250 ok\r\n")});
    home.peer.on("MAIL", {Reply{{"25"}, true}});
    home.sendOnConnect();
    home.session().setRecipient("to@x.org");
    home.session().send();
    QVERIFY(home.failed->wait(kWaitMs));
    QCOMPARE(home.connection->state(), smtp::SocketState::Closed);
  }

  void refusedConnectionIsASocketError() {
    SmtpHome home;
    quint16 closedPort = 0;
    {
      QTcpServer probe;
      probe.listen(QHostAddress::LocalHost, 0);
      closedPort = probe.serverPort();
    }
    home.session().setSmtpPort(closedPort);
    home.session().setRecipient("to@x.org");
    home.session().send();
    QVERIFY(home.failed->wait(kWaitMs));
    QCOMPARE(home.failure(), QString("Connection refused"));
  }
};

QTEST_GUILESS_MAIN(SmtpConnectionTest)
#include "smtp_connection_test.moc"
