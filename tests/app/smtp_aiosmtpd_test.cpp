// Spooled messages sent over one connection to a real SMTP server (aiosmtpd
// on loopback, started by tools/smtp-server.sh), then compared with what it stored.
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "app/smtp/smtp_connection.h"
#include "core/message/transfer_encoding.h"
#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

constexpr int kWaitMs = 30000;

std::string serverScript() { return std::string(VONEL_SOURCE_DIR) + "/tools/smtp-server.sh"; }

// The spool text as the outbox sends it: without its one-line Bcc header.
std::string withoutBcc(std::string text) {
  const std::size_t bcc = text.find("\r\nBcc: ");
  if (bcc != std::string::npos) text.erase(bcc, text.find("\r\n", bcc + 2) - bcc);
  return text;
}

std::string withoutTrailingLineEnds(std::string text) {
  while (text.ends_with("\r\n")) text.resize(text.size() - 2);
  return text;
}

struct Outgoing {
  std::string to, cc, bcc, body, attachments;
  bool html = false;
};

}  // namespace

class SmtpServerTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;
  fs::path serverDir_;
  int port_ = 0;

  std::string run(const char* action) {
    QProcess script;
    script.start("bash", {QString::fromStdString(serverScript()), action, QString::fromStdString(serverDir_.string())});
    script.waitForFinished(kWaitMs);
    return script.readAllStandardOutput().trimmed().toStdString();
  }

 private slots:
  void initTestCase() {
    serverDir_ = fs::path(dir_.path().toStdString()) / "server";
    const std::string port = run("start");
    port_ = std::atoi(port.c_str());
    QVERIFY2(port_ > 0, port.c_str());
  }

  void cleanupTestCase() { run("stop"); }

  void spooledMessagesArriveAsSpooled() {
    const fs::path home = dir_.path().toStdString();
    SystemClock clock;
    ScriptedPrompt prompt;
    AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "os", "/", home}};
    context.settings.set("ReplyAddress0", "me@example.org");
    context.settings.set("DisplayName0", "M\xe9 \"the\" Sender, Esq.");
    context.settings.set("SMTP0", "127.0.0.1");
    context.settings.set("SMTPPort0", port_);
    SmtpConnection connection(context);
    auto& session = connection.session();

    std::string binary;
    for (int i = 0; i < 40000; ++i) binary += static_cast<char>((i * 131) % 256);
    files::writeTextFile(home / "one.bin", binary);
    files::writeTextFile(home / "two.txt", "second attachment\r\n");
    const std::vector<Outgoing> messages{
        {"plain@x.org", "", "", "Plain text\r\n.starts with a dot\r\n.\r\n..\r\n" + std::string(999, 'w'), ""},
        {"eight@x.org", "", "", "Caf\xe9 cr\xe8me", ""},
        {"html@x.org", "", "", "<p>Hello</p>", "", true},
        {"a@x.org;b@x.org", "c@x.org", "hidden@x.org", "", ""},
        {"att@x.org", "", "", "See attached", (home / "one.bin").string() + ";" + (home / "two.txt").string()},
    };
    std::vector<std::string> spooled;
    for (std::size_t i = 0; i < messages.size(); ++i) {
      const Outgoing& m = messages[i];
      session.initialise(0);
      session.setRecipient(m.to);
      session.setRecipientDisplayName("Ann \"Quoted\", Jr.");
      session.setCcRecipient(m.cc);
      session.setBccRecipient(m.bcc);
      session.setSubject("Message " + std::to_string(i));
      session.setAsHtml(m.html);
      session.setAttachment(m.attachments);
      session.setMessage(m.body);
      const fs::path file = home / ("00_outbound_" + std::to_string(i) + ".eml");
      QVERIFY(session.spoolToFile(file));
      spooled.push_back(files::loadTextFile(file));
    }

    // One connection: each success sends the next, then QUIT.
    std::size_t next = 0;
    const auto sendNext = [&] {
      if (next == messages.size()) return session.disconnect();
      const Outgoing& m = messages[next];
      session.setRecipient(m.to);
      session.setCcRecipient(m.cc);
      session.setBccRecipient(m.bcc);
      session.setMessage(withoutBcc(spooled[next++]));
      session.send();
    };
    QObject::connect(&connection, &SmtpConnection::connected, &connection, sendNext);
    QObject::connect(&connection, &SmtpConnection::sendSuccessful, &connection, sendNext);
    QSignalSpy failed(&connection, &SmtpConnection::sendFailed);
    QSignalSpy disconnected(&connection, &SmtpConnection::disconnected);
    session.initialise(0);
    session.connect();
    QVERIFY(disconnected.wait(kWaitMs));
    QVERIFY2(failed.isEmpty(), failed.isEmpty() ? "" : failed.first().first().toString().toUtf8().constData());

    for (std::size_t i = 0; i < messages.size(); ++i) {
      const std::string name = "000" + std::to_string(i);
      const std::string arrived = files::loadTextFile(serverDir_ / (name + ".eml"));
      const std::string envelope = files::loadTextFile(serverDir_ / (name + ".env"));
      QVERIFY(arrived.starts_with("Date: "));
      const std::string text = arrived.substr(arrived.find("\r\n") + 2);
      QVERIFY2(text.find("\nBcc:") == std::string::npos, name.c_str());
      if (messages[i].attachments.empty()) {
        QCOMPARE(withoutTrailingLineEnds(text), withoutTrailingLineEnds(withoutBcc(spooled[i])));
      }
      for (const auto& address : text::split(messages[i].to + ";" + messages[i].cc + ";" + messages[i].bcc, ";"))
        if (!address.empty()) QVERIFY2(envelope.find(address + "\n") != std::string::npos, address.c_str());
    }
    // Each line is stuffed once on the wire, so the server takes the dots off again.
    QVERIFY(files::loadTextFile(serverDir_ / "0000.eml").find("\r\n.starts with a dot\r\n.\r\n..\r\n") !=
            std::string::npos);
    QVERIFY(spooled[1].find("Content-Transfer-Encoding: 8bit") != std::string::npos);
    QVERIFY(spooled[2].find("Content-Type: text/html;") != std::string::npos);

    // Both attachments decode to their files, byte for byte.
    const std::string arrived = files::loadTextFile(serverDir_ / "0004.eml");
    const std::pair<const char*, std::string> expected[] = {{"one.bin", binary}, {"two.txt", "second attachment\r\n"}};
    for (const auto& [fileName, bytes] : expected) {
      const std::string head = std::string("filename=\"") + fileName + "\"\r\n\r\n";
      const std::size_t start = arrived.find(head) + head.size();
      const std::size_t end = arrived.find("\r\n\r\n", start);
      const std::string base64 = text::replaceAll(arrived.substr(start, end - start), "\r\n", "");
      QCOMPARE(message::decodeMime64(base64).substr(0, bytes.size()), bytes);
      QCOMPARE(message::encodeMime64String(bytes), base64);
    }
  }
};

QTEST_GUILESS_MAIN(SmtpServerTest)
#include "smtp_aiosmtpd_test.moc"
