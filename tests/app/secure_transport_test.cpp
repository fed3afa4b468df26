// TLS under the real sessions, against Dovecot and aiosmtpd on loopback with
// certificates openssl makes for the run: what a secure scan lists, what a
// secure upload delivers, and that an untrusted certificate, a refused STLS
// or a wrong password stops the session before a credential goes out.
#include <QProcess>
#include <QProcessEnvironment>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include "app/pop3/pop3_connection.h"
#include "app/qtext.h"
#include "app/smtp/outbox_sender.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/message/transfer_encoding.h"
#include "core/send/outbox.h"
#include "support/scripted_peer.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

constexpr int kWaitMs = 15000;
const std::string kPassword = "pa55-w0rd";

QString tool(const char* name) { return QStringLiteral(VONEL_SOURCE_DIR "/tools/") + name; }

// Runs a tools/ script with extra environment; its trimmed output.
QString runTool(const char* name, const QStringList& arguments, const QStringList& environment = {}) {
  QProcess process;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  for (const QString& pair : environment) env.insert(pair.section('=', 0, 0), pair.section('=', 1));
  process.setProcessEnvironment(env);
  process.start("bash", QStringList{tool(name)} + arguments);
  if (!process.waitForFinished(30000) || process.exitCode() != 0) {
    qWarning() << name << process.readAllStandardError();
    return {};
  }
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

std::string subjectOf(int i) { return "Number " + std::to_string(i); }

struct ScanRecorder : pop3::Pop3Listener {
  std::vector<std::string> subjects;
  std::vector<std::string> errors;
  bool finished = false;
  void onHeaderReceived(message::Message& m) override { subjects.push_back(m.subject); }
  void onPopError(const std::string&, const std::string& text) override { errors.push_back(text); }
  void onFinished(const std::string&, long) override { finished = true; }
};

struct NoPassword : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool&) override {
    cancelled = true;
    return {};
  }
};

struct UploadRecorder final : OutboxListener {
  std::vector<std::string> progress;
  std::vector<std::string> failures;
  std::vector<UntrustedCertificate> untrusted;
  bool ended = false;
  void onSendProgress(const std::string& text) override { progress.push_back(text); }
  void onSendFailed(const std::string& text) override {
    failures.push_back(text);
    ended = true;
  }
  void onNoMailToSend() override { ended = true; }
  void onSendingFinished() override { ended = true; }
  void onCertificateUntrusted(const UntrustedCertificate& c) override { untrusted.push_back(c); }
};

// A POP3 server that speaks TLS from the first byte with a given
// certificate, greets once the handshake is done and records whatever the
// client sends after it.
class TlsPeer : public QTcpServer {
 public:
  TlsPeer(const QString& certificate, const QString& key)
      : certificate_(QSslCertificate::fromPath(certificate).value(0)) {
    QFile file(key);
    file.open(QIODevice::ReadOnly);
    key_ = QSslKey(&file, QSsl::Ec);
    listen(QHostAddress::LocalHost);
  }
  std::string received;

 protected:
  void incomingConnection(qintptr handle) override {
    auto* socket = new QSslSocket(this);
    socket->setSocketDescriptor(handle);
    socket->setLocalCertificate(certificate_);
    socket->setPrivateKey(key_);
    connect(socket, &QSslSocket::encrypted, socket, [socket] { socket->write("+OK ready\r\n"); });
    connect(socket, &QSslSocket::readyRead, socket, [this, socket] { received += socket->readAll().toStdString(); });
    socket->startServerEncryption();
  }

 private:
  QSslCertificate certificate_;
  QSslKey key_;
};

// One test home: its settings, its log, its folders.
struct Home {
  QTemporaryDir dir;
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext ctx{clock, prompt, AppInfo{"Vonel", "1", "os", "/", dir.path().toStdString()}};
  Home() {
    ctx.folders.outboxFolderPath = fs::path(dir.path().toStdString()) / "Outbox";
    ctx.folders.sentFolderPath = fs::path(dir.path().toStdString()) / "Sent Items";
    fs::create_directories(ctx.folders.outboxFolderPath);
    fs::create_directories(ctx.folders.sentFolderPath);
    ctx.settings.set("MAILTIMEOUT", 5);
  }
};

}  // namespace

class SecureTransportTest : public QObject {
  Q_OBJECT

  QTemporaryDir work_;
  QString certificates_;
  std::vector<QString> pop3Servers_;
  std::vector<QString> smtpServers_;
  std::vector<std::string> captured_;  // every text a session reported
  std::vector<QString> homes_;

  QString cert(const char* name) const { return certificates_ + "/" + name; }

  // A Dovecot with `count` messages and the given certificate: its plain and TLS ports.
  std::pair<int, int> startDovecot(const QString& name, const char* certificate, int count = 50) {
    const QString folder = work_.path() + "/" + name;
    const QString port = runTool("pop3-server.sh", {"start", folder, "jo", toQString(kPassword)},
                                 {"POP3_TLS_CERT=" + cert(certificate) + ".pem", "POP3_TLS_KEY=" + cert(certificate) + ".key"});
    pop3Servers_.push_back(folder);
    const fs::path maildir = fs::path(folder.toStdString()) / "mail/jo/Maildir/new";
    for (int i = 1; i <= count; ++i) {
      const fs::path file = maildir / ("m" + std::to_string(i));
      if (fs::exists(file)) continue;
      // Headers of some length, so that the walk's replies span many TLS records.
      files::writeTextFile(file, "From: s@example.org\r\nSubject: " + subjectOf(i) + "\r\nX-Padding: " +
                                     std::string(static_cast<std::size_t>(i % 7) * 700, 'p') + "\r\n\r\nBody\r\n");
      fs::permissions(file, fs::perms::all);
    }
    const std::string tlsPort = files::loadTextFile(fs::path(folder.toStdString()) / "pop3s-port");
    return {port.toInt(), std::stoi(tlsPort)};
  }

  QString dovecotLog(const QString& name) const {
    return toQString(files::loadTextFile(fs::path((work_.path() + "/" + name).toStdString()) / "dovecot.log"));
  }

  // An aiosmtpd for user jo: its port and its folder.
  std::pair<int, QString> startSmtp(const QString& name, const char* mode, const char* certificate,
                                    const QString& exclude = {}) {
    const QString folder = work_.path() + "/" + name;
    const QString port = runTool("smtp-server.sh", {"start", folder},
                                 {QString("SMTP_TLS_MODE=") + mode, "SMTP_TLS_CERT=" + cert(certificate) + ".pem",
                                  "SMTP_TLS_KEY=" + cert(certificate) + ".key", "SMTP_AUTH_USER=jo",
                                  "SMTP_AUTH_PASSWORD=" + toQString(kPassword), "SMTP_AUTH_EXCLUDE=" + exclude});
    smtpServers_.push_back(folder);
    return {port.toInt(), folder};
  }

  ScanRecorder scan(int port, TransportSecurity security, const std::function<void(Home&)>& prepare = {}) {
    Home home;
    homes_.push_back(home.dir.path());
    home.dir.setAutoRemove(false);
    home.ctx.settings.set("SERVER0", "127.0.0.1");
    home.ctx.settings.set("POPPORT0", port);
    home.ctx.settings.set("POPSECURITY0", static_cast<int>(security));
    home.ctx.settings.set("UNAME0", "jo");
    home.ctx.settings.set("PWD0", kPassword);
    if (prepare) prepare(home);
    ScanRecorder recorder;
    rules::PassEverything check;
    NoPassword passwords;
    Pop3Connection connection(home.ctx, recorder, check, check, passwords);
    QObject::connect(&connection.channel(), &SecureChannel::certificateUntrusted, &connection,
                     [&](const UntrustedCertificate& c) { recorder.errors.push_back("untrusted " + c.fingerprint); });
    connection.session().getHeaders(0, false, true);
    [&] { QTRY_VERIFY_WITH_TIMEOUT(recorder.finished, kWaitMs); }();
    captured_.insert(captured_.end(), recorder.errors.begin(), recorder.errors.end());
    return recorder;
  }

  struct Upload {
    UploadRecorder events;
    std::string sentFolder;
  };
  // Spools one message with dot lines on account 0 and sends the outbox.
  std::unique_ptr<Upload> upload(int port, TransportSecurity security, bool standard, const std::string& password,
                                 const CertificatePin& pin = {}) {
    auto result = std::make_unique<Upload>();
    Home home;
    homes_.push_back(home.dir.path());
    home.dir.setAutoRemove(false);
    SettingsStore& s = home.ctx.settings;
    s.set("REPLYADDRESS0", "me@example.org");
    s.set("SMTP0", "127.0.0.1");
    s.set("SMTPPORT0", port);
    s.set("SMTPSECURITY0", static_cast<int>(security));
    s.set("SMTPSTANDARD0", standard);
    s.set("SMTPAuth0", true);
    s.set("SMTPUNAME0", "jo");
    s.set("SMTPPWD0", password);
    storeCertificatePin(s, 0, MailService::Smtp, pin);
    OutboxSender sender(home.ctx, result->events);
    message::Message message;
    message.fromAccount = 0;
    message.from = "me@example.org";
    message.setToEmail("you@example.org");
    message.subject = "Dots";
    message.setMessageBody("First\r\n.x\r\n..y\r\n.\r\nLast");
    sender.spoolMessage(message, "", "");
    sender.sendOutbox();
    [&] { QTRY_VERIFY_WITH_TIMEOUT(result->events.ended, kWaitMs); }();
    for (const auto* list : {&result->events.progress, &result->events.failures}) {
      captured_.insert(captured_.end(), list->begin(), list->end());
    }
    result->sentFolder = home.ctx.folders.sentFolderPath.string();
    return result;
  }

  static std::string deliveredBody(const QString& folder) {
    const std::string text = files::loadTextFile(fs::path(folder.toStdString()) / "0000.eml");
    const std::size_t blank = text.find("\r\n\r\n");
    return blank == std::string::npos ? std::string() : text.substr(blank + 4);
  }

  static bool contains(const std::vector<std::string>& texts, const std::string& part) {
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& t) { return t.find(part) != std::string::npos; });
  }

 private slots:
  void initTestCase() {
    certificates_ = work_.path() + "/certificates";
    QVERIFY(runTool("test-certificates.sh", {certificates_}).isEmpty());
    QVERIFY(fs::exists((certificates_ + "/trusted.pem").toStdString()));
    qputenv("VONEL_EXTRA_CA", (certificates_ + "/ca.pem").toUtf8());
  }

  void cleanupTestCase() {
    // Stopped side by side: each takes its time to wind down.
    std::vector<std::unique_ptr<QProcess>> stops;
    const auto stop = [&](const char* name, const QString& folder) {
      stops.push_back(std::make_unique<QProcess>());
      stops.back()->start("bash", {tool(name), "stop", folder});
    };
    for (const QString& folder : pop3Servers_) stop("pop3-server.sh", folder);
    for (const QString& folder : smtpServers_) stop("smtp-server.sh", folder);
    for (auto& process : stops) process->waitForFinished(30000);
    for (const QString& home : homes_) QDir(home).removeRecursively();
  }

  // With the header walk's commands sent ahead, as Dovecot allows.
  void aSecureScanListsWhatThePlainScanLists() {
    const auto [plainPort, tlsPort] = startDovecot("trusted", "trusted", 400);
    const ScanRecorder plain = scan(plainPort, TransportSecurity::Plain);
    QCOMPARE(plain.subjects.size(), std::size_t{400});
    const ScanRecorder tls = scan(tlsPort, TransportSecurity::Tls);
    QVERIFY2(tls.errors.empty(), tls.errors.empty() ? "" : tls.errors.front().c_str());
    QCOMPARE(tls.subjects, plain.subjects);
    const ScanRecorder upgraded = scan(plainPort, TransportSecurity::Upgrade);
    QVERIFY(upgraded.errors.empty());
    QCOMPARE(upgraded.subjects, plain.subjects);
  }

  void aSelfSignedServerGetsNoLoginUntilTrustedAndAgainWhenItChanges() {
    const auto [plainPort, tlsPort] = startDovecot("self", "self");
    const ScanRecorder refused = scan(tlsPort, TransportSecurity::Tls);
    QVERIFY(refused.subjects.empty());
    QVERIFY(contains(refused.errors, "The certificate of 127.0.0.1 is not trusted: "));
    QVERIFY(contains(refused.errors, " SHA-256 "));
    const ScanRecorder refusedAfterStls = scan(plainPort, TransportSecurity::Upgrade);
    QVERIFY(contains(refusedAfterStls.errors, "The certificate of 127.0.0.1 is not trusted: "));
    QVERIFY(!dovecotLog("self").contains("Login: user=<jo>"));

    const std::string untrusted = refused.errors.front().substr(std::string("untrusted ").size());
    const auto trust = [&](Home& home) {
      storeCertificatePin(home.ctx.settings, 0, MailService::Pop3, {"127.0.0.1", untrusted});
    };
    QCOMPARE(scan(tlsPort, TransportSecurity::Tls, trust).subjects.size(), std::size_t{50});
    QCOMPARE(scan(plainPort, TransportSecurity::Upgrade, trust).subjects.size(), std::size_t{50});

    // Another certificate on the same host asks again.
    TlsPeer changedServer(cert("self2") + ".pem", cert("self2") + ".key");
    const ScanRecorder changed = scan(changedServer.serverPort(), TransportSecurity::Tls, trust);
    QVERIFY(changed.subjects.empty());
    QVERIFY(contains(changed.errors, "is not trusted"));
    QVERIFY(changedServer.received.empty());
  }

  void badCertificatesAreRefusedBeforeAnythingIsSent() {
    for (const char* certificate : {"expired", "future", "other-host", "self"}) {
      TlsPeer server(cert(certificate) + ".pem", cert(certificate) + ".key");
      const ScanRecorder refused = scan(server.serverPort(), TransportSecurity::Tls);
      QVERIFY2(contains(refused.errors, "The certificate of 127.0.0.1 is not trusted: "), certificate);
      QVERIFY2(server.received.empty(), certificate);
    }
    // The test authority's own certificate for this host passes.
    TlsPeer trusted(cert("trusted") + ".pem", cert("trusted") + ".key");
    scan(trusted.serverPort(), TransportSecurity::Tls);
    QVERIFY(trusted.received.starts_with("USER jo\r\n"));
  }

  void aPeerRefusingStlsGetsNoUser() {
    testing::ScriptedPeer peer;
    peer.setGreeting(testing::whole("+OK ready\r\n"));
    peer.on("STLS", {testing::whole("-ERR not here\r\n")});
    peer.on("", {testing::whole("+OK\r\n")});
    const ScanRecorder refused = scan(peer.port(), TransportSecurity::Upgrade);
    QCOMPARE(peer.commands, std::vector<std::string>{"STLS"});
    QVERIFY(contains(refused.errors, "-ERR not here"));

    // A plain server on a port the account takes for TLS: the handshake fails, nothing is sent.
    testing::ScriptedPeer plain;
    plain.setGreeting(testing::whole("+OK plain\r\n"));
    const ScanRecorder mismatch = scan(plain.port(), TransportSecurity::Tls);
    QVERIFY(plain.commands.empty());
    QCOMPARE(mismatch.errors.size(), std::size_t{1});
  }

  void standardUploadsDeliverTheTextOverTlsAndStartTls() {
    const auto [tlsPort, tlsFolder] = startSmtp("smtps", "implicit", "trusted");
    const auto [startTlsPort, startTlsFolder] = startSmtp("submission", "starttls", "trusted", "PLAIN");
    const auto viaTls = upload(tlsPort, TransportSecurity::Tls, true, kPassword);
    QVERIFY2(viaTls->events.failures.empty(), viaTls->events.failures.empty() ? "" : viaTls->events.failures[0].c_str());
    const auto viaStartTls = upload(startTlsPort, TransportSecurity::Upgrade, false, kPassword);
    QVERIFY(viaStartTls->events.failures.empty());
    QCOMPARE(files::loadTextFile(fs::path(tlsFolder.toStdString()) / "auth-attempts"), std::string("1 PLAIN\n"));
    QCOMPARE(files::loadTextFile(fs::path(startTlsFolder.toStdString()) / "auth-attempts"), std::string("1 LOGIN\n"));
    const std::string body = deliveredBody(tlsFolder);
    // The spool's blank line opens the body.
    QCOMPARE(body, std::string("\r\nFirst\r\n.x\r\n..y\r\n.\r\nLast\r\n"));
    QCOMPARE(deliveredBody(startTlsFolder), body);
  }

  void refusedLoginsAndUntrustedServersFailTheUpload() {
    const auto [port, folder] = startSmtp("smtps-auth", "implicit", "trusted");
    const auto wrong = upload(port, TransportSecurity::Tls, true, "not-the-password");

    QVERIFY(contains(wrong->events.failures, "5.7.8 Authentication credentials invalid"));
    // The 250-only dialogue stops at the server's 334.
    const auto twoFiftyOnly = upload(port, TransportSecurity::Tls, false, kPassword);
    // aiosmtpd's LOGIN prompt, "User Name" in base64, reported as the failure.
    QVERIFY(contains(twoFiftyOnly->events.failures, "VXNlciBOYW1lAA=="));
    QVERIFY(!fs::exists(fs::path(folder.toStdString()) / "0000.eml"));

    const auto [selfPort, selfFolder] = startSmtp("smtps-self", "implicit", "self");
    const auto untrusted = upload(selfPort, TransportSecurity::Tls, true, kPassword);
    QVERIFY(contains(untrusted->events.failures, "The certificate of 127.0.0.1 is not trusted: "));
    QCOMPARE(untrusted->events.untrusted.size(), std::size_t{1});
    QVERIFY(!fs::exists(fs::path(selfFolder.toStdString()) / "auth-attempts"));
    const auto trusted = upload(selfPort, TransportSecurity::Tls, true, kPassword,
                                {"127.0.0.1", untrusted->events.untrusted.front().fingerprint});
    QVERIFY(trusted->events.failures.empty());
    QVERIFY(fs::exists(fs::path(selfFolder.toStdString()) / "0000.eml"));
  }

  // Last: nothing any session wrote or reported holds the password in any form.
  void thePasswordIsNowhere() {
    const std::vector<std::string> forms{kPassword, message::encodeMime64String(kPassword),
                                         message::encodeMime64String(std::string(1, '\0') + "jo" + '\0' + kPassword)};
    for (const std::string& form : forms) {
      QVERIFY2(!contains(captured_, form), form.c_str());
      for (const QString& home : homes_) {
        for (const auto& entry : fs::recursive_directory_iterator(home.toStdString())) {
          if (!entry.is_regular_file()) continue;
          const std::string text = files::loadTextFile(entry.path());
          // The settings file holds the password scrambled, never in the clear.
          QVERIFY2(text.find(form) == std::string::npos, entry.path().c_str());
        }
      }
    }
  }
};

QTEST_GUILESS_MAIN(SecureTransportTest)
#include "secure_transport_test.moc"
