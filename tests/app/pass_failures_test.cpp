#include <QTemporaryDir>
#include <QtTest>

#include "app/pass_failures.h"
#include "core/context/app_context.h"

using namespace vonel;
using pop3::FailureKind;
using pop3::Pop3Failure;

namespace {

Pop3Failure failure(FailureKind kind, int account, const std::string& detail = {}) {
  Pop3Failure f(kind, detail);
  f.account = account;
  return f;
}

}  // namespace

class PassFailuresTest : public QObject {
  Q_OBJECT

 private slots:
  void aFullDiskSaysWhatWasStoredAndDeleted() {
    PassFailures failures;
    for (int i = 0; i < 1444; ++i) failures.countStored(3);
    failures.add(failure(FailureKind::DiskFull, 3, "Disk full: /store/Inbox/X.EML"));
    failures.add(failure(FailureKind::DiskFull, 3));
    QCOMPARE(failures.cause(3), std::string("disk full: 1,444 messages stored, nothing deleted on the server"));
    failures.countDeleted(3, 1);
    QCOMPARE(failures.cause(3), std::string("disk full: 1,444 messages stored, 1 deleted on the server"));

    failures.clear();
    QVERIFY(failures.empty());
    failures.countStored(4);
    failures.add(failure(FailureKind::NotStored, 4, "Path not found: /x"));
    failures.add(failure(FailureKind::NotStored, 4, "Path not found: /y"));
    QCOMPARE(failures.cause(4), std::string("could not store 2 messages, left on the server: Path not found: /x"));
  }

  void eachKindReadsAsOneShortLine() {
    PassFailures failures;
    failures.add(failure(FailureKind::HostNotFound, 0, "Host not found"));
    Pop3Failure silence = failure(FailureKind::TimedOut, 1);
    silence.seconds = 60;
    failures.add(silence);
    failures.add(failure(FailureKind::ServerRefused, 2, "-ERR\tno\r\nmore\r\n"));
    failures.add(failure(FailureKind::ConnectionLost, 5));  // before the count was known
    Pop3Failure lost = failure(FailureKind::ConnectionLost, 6);
    lost.messageCount = 1;
    failures.add(lost);
    failures.add(failure(FailureKind::BadReply, 7, std::string(5000, 'x')));
    failures.add(failure(FailureKind::LoginRefused, kAccountCount, "out of range"));

    QTemporaryDir home;
    FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
    ScriptedPrompt prompt;
    AppContext context(clock, prompt, AppInfo{"Vonel", "1", "os", "/", home.path().toStdString()});
    SettingsStore& settings = context.settings;
    settings.set("TITLE1", Value("Work"));
    const std::vector<std::string> lines = failures.lines(settings);
    QCOMPARE(lines.size(), std::size_t{6});
    QCOMPARE(lines[0], std::string("Account 0: host not found"));
    QCOMPARE(lines[1], std::string("Account 1 (Work): timed out after 60 s"));
    QCOMPARE(lines[2], std::string("Account 2: server refused: -ERR no  more"));
    QCOMPARE(lines[3], std::string("Account 5: connection lost"));
    QCOMPARE(lines[4], std::string("Account 6: connection lost after 0 of 1 message"));
    QCOMPARE(lines[5], "Account 7: bad reply from the server: " + std::string(200, 'x') + "...");
    QCOMPARE(failures.summary(settings), lines[0] + "; " + lines[1] + "; " + lines[2] + "; " + lines[3] + "; " +
                                             lines[4] + "; " + lines[5]);
  }
};

QTEST_GUILESS_MAIN(PassFailuresTest)
#include "pass_failures_test.moc"
