#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "app/pop3/pop3_connection.h"
#include "core/files/atomic_file.h"

using namespace vonel;

namespace {

// Records what the session reports and stops the event loop when it ends.
struct Recorder : pop3::Pop3Listener {
  std::vector<message::Message> fetched;
  std::vector<std::string> errors;
  bool finished = false;
  void onSpecificMessage(message::Message& m) override { fetched.push_back(m); }
  void onPopError(const std::string&, const std::string& text) override { errors.push_back(text); }
  void onFinished(const std::string&, long) override { finished = true; }
};

struct NoPassword : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool& save) override {
    cancelled = true;
    save = false;
    return {};
  }
};

}  // namespace

// The socket adapter against a real Dovecot on loopback.
class Pop3DovecotTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;
  QString server_;
  int port_ = 0;

  QString script() const { return QStringLiteral(VONEL_SOURCE_DIR "/tools/pop3-server.sh"); }
  std::filesystem::path maildir() const { return (server_ + "/mail/jo/Maildir").toStdString(); }

  int messagesOnServer() const {
    int count = 0;
    for (const char* sub : {"new", "cur"}) {
      for (const auto& entry : std::filesystem::directory_iterator(maildir() / sub)) count += entry.is_regular_file();
    }
    return count;
  }

  void fill(int count) {
    for (int i = 1; i <= count; ++i) {
      const auto file = maildir() / "new" / ("m" + std::to_string(i));
      files::writeTextFile(file, "From: s" + std::to_string(i) + "@example.org\r\nSubject: Number " + std::to_string(i) +
                                     "\r\n\r\nBody " + std::to_string(i) + "\r\n");
      std::filesystem::permissions(file, std::filesystem::perms::all);
    }
  }

  void runSession(const std::function<void(pop3::Pop3Session&)>& start, Recorder& recorder) {
    FixedClock clock{text::DateTime{2026, 11, 23, 12, 0, 0}};
    ScriptedPrompt prompt;
    AppContext ctx(clock, prompt, AppInfo{"Vonel", "1", "os", "/", dir_.path().toStdString()});
    ctx.settings.loadSettingsFromText("SERVER0,127.0.0.1\r\nPOPPORT0," + std::to_string(port_) +
                                          "\r\nUNAME0,jo\r\nPWD0,secret\r\nMAILTIMEOUT,5\r\n",
                                      "test");
    ctx.folders.readMessageFolder();
    rules::PassEverything check;
    NoPassword passwords;
    Pop3Connection connection(ctx, recorder, check, check, passwords);
    start(connection.session());
    QTRY_VERIFY_WITH_TIMEOUT(recorder.finished, 15000);
  }

 private slots:
  void initTestCase() {
    server_ = dir_.path() + "/dovecot";
    QProcess start;
    start.start("bash", {script(), "start", server_, "jo", "secret"});
    QVERIFY(start.waitForFinished(20000));
    QCOMPARE(start.exitCode(), 0);
    port_ = QString::fromUtf8(start.readAllStandardOutput()).trimmed().toInt();
    QVERIFY(port_ > 0);
  }

  void cleanupTestCase() { QProcess::execute("bash", {script(), "stop", server_}); }

  void oneMessageIsFetchedByNumber() {
    fill(3);
    Recorder recorder;
    runSession([](pop3::Pop3Session& session) { session.getSpecificMessage(0, 2); }, recorder);
    QCOMPARE(recorder.fetched.size(), std::size_t{1});
    QCOMPARE(recorder.fetched[0].subject, std::string("Number 2"));
    QCOMPARE(messagesOnServer(), 3);
  }

  void deleteAllEmptiesTheMailbox() {
    Recorder recorder;
    runSession([](pop3::Pop3Session& session) { session.deleteAllMail(0); }, recorder);
    QVERIFY(recorder.errors.empty());
    QCOMPARE(messagesOnServer(), 0);
  }
};

QTEST_GUILESS_MAIN(Pop3DovecotTest)
#include "pop3_dovecot_test.moc"
