#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <tuple>

#include "app/headless_windows.h"
#include "app/runner_commands.h"
#include "app/single_instance.h"
#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/runner/runner_frame.h"

using namespace vonel;

namespace {

std::filesystem::path pathOf(const QTemporaryDir& dir) { return dir.path().toStdString(); }

QString logOf(const QTemporaryDir& dir) {
  return QString::fromStdString(files::loadTextFile(pathOf(dir) / "log.txt"));
}

// The log's lines without their numbers and times.
qsizetype countLine(const QTemporaryDir& dir, const QString& line) { return logOf(dir).count(", " + line + "\r\n"); }

// A home whose settings file spares the account wizard.
std::unique_ptr<QTemporaryDir> makeHome() {
  auto dir = std::make_unique<QTemporaryDir>();
  files::writeTextFile(pathOf(*dir) / "Vonel.ini", "REPLYADDRESS0,me@example.org\r\n");
  return dir;
}

// Windows that remember what they were asked to do.
class RecordingWindows final : public HeadlessWindows {
 public:
  void showMain() override { mainShown = true; }

  bool mailerLoaded() const override { return mailer; }
  void showMailer() override { mailerShown = true; }
  bool mainVisible() const override { return visible; }
  void openComposer(const message::ComposeRequest& request) override { composed.push_back(request); }
  void showMessageFile(const std::filesystem::path& file) override { shownFiles.push_back(file); }

  bool mailer = false;
  bool visible = true;
  bool mailerShown = false;
  bool mainShown = false;
  std::vector<message::ComposeRequest> composed;
  std::vector<std::filesystem::path> shownFiles;
};

// The running copy's side of a hand-over, in a home of its own.
struct Receiver {
  QTemporaryDir home;
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "9.9", "os", "/", pathOf(home)}};
  RecordingWindows windows;
  RunnerCommands commands{context, windows};

  std::tuple<QTemporaryDir&, RecordingWindows&, RunnerCommands&> parts() { return {home, windows, commands}; }
};

// The real program, started in a home.
class Copy {
 public:
  Copy(const QTemporaryDir& home, const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.remove("VONEL_HOME");
    process_.setProcessEnvironment(environment);
    process_.setProgram(VONEL_PROGRAM);
    process_.setArguments(QStringList{"--home", home.path()} + arguments);
    process_.start();
  }
  ~Copy() {
    if (process_.state() != QProcess::NotRunning) {
      process_.kill();
      process_.waitForFinished();
    }
  }
  QProcess& process() { return process_; }

 private:
  QProcess process_;
};

// A second start: ends by itself, well, and at once.
void handOver(const QTemporaryDir& home, const QStringList& arguments) {
  Copy second(home, arguments);
  QElapsedTimer clock;
  clock.start();
  QVERIFY(second.process().waitForFinished(5000));
  QCOMPARE(second.process().exitStatus(), QProcess::NormalExit);
  QCOMPARE(second.process().exitCode(), 0);
  qInfo("second copy %s ended after %lld ms", qPrintable(arguments.join(' ')), clock.elapsed());
}

// A first copy whose socket is open.
std::unique_ptr<Copy> startFirst(const QTemporaryDir& home) {
  auto first = std::make_unique<Copy>(home, QStringList{});
  const QString socket = SingleInstance::serverNameFor(pathOf(home));
  QElapsedTimer clock;
  clock.start();
  while (!QFileInfo::exists(socket) && clock.elapsed() < 10000) QTest::qWait(10);
  return first;
}

// What the running copy answers to `bytes`: nothing when it closes the connection.
QByteArray answerTo(const QString& server, const QByteArray& bytes) {
  QLocalSocket client;
  client.connectToServer(server);
  if (!client.waitForConnected(1000)) return "no connection";
  client.write(bytes);
  // The server runs in this thread too, so the wait lets events run.
  QElapsedTimer clock;
  clock.start();
  while (client.bytesAvailable() == 0 && client.state() != QLocalSocket::UnconnectedState &&
         clock.elapsed() < SingleInstance::kFrameTimeoutMs + 1000) {
    QTest::qWait(5);
  }
  if (client.bytesAvailable() == 0 && client.state() != QLocalSocket::UnconnectedState) return "still open";
  return client.readAll();
}

}  // namespace

class SingleInstanceTest : public QObject {
  Q_OBJECT

  // The sockets of this test's copies, killed ones' too, go with this folder.
  QTemporaryDir runtime_;

 private slots:
  void initTestCase() {
    QVERIFY(runtime_.isValid());
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime_.path()));
  }

  // Whatever connects gets a place in the slot only with a whole, proper frame.
  void onlyAWholeFrameReachesTheSlot() {
    QTemporaryDir home;
    FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
    Log log(clock, AppInfo{"Vonel", "9.9", "os", "/", pathOf(home)});
    SingleInstance instance(pathOf(home));
    QVERIFY(!instance.passToRunningCopy("SHOW", log));
    QVERIFY(instance.listen());
    QSignalSpy arrived(&instance, &SingleInstance::commandArrived);
    const QString server = instance.serverName();

    QCOMPARE(answerTo(server, QByteArray()), QByteArray());  // connects, says nothing, leaves
    QCOMPARE(answerTo(server, QByteArray("\x00\xFF\x01garbage", 10)), QByteArray());
    QCOMPARE(answerTo(server, "VONEL1 1048576\n" + QByteArray(1 << 20, 'x')), QByteArray());
    QCOMPARE(answerTo(server, "VONEL1 4\nSH\xC0\xAF"), QByteArray());
    QElapsedTimer cut;
    cut.start();
    QCOMPARE(answerTo(server, "VONEL1 10\nSHOW"), QByteArray());  // closed once its time is up
    QVERIFY(cut.elapsed() >= SingleInstance::kFrameTimeoutMs - 100);
    QCOMPARE(instance.slot(), QString("RUNNER"));

    const std::string command = "/mailto:a@b.\xC3\xA9xample";
    QCOMPARE(answerTo(server, QByteArray::fromStdString(runner::encodeFrame(command))), QByteArray("1"));
    QCOMPARE(instance.slot(), QString::fromStdString(command));
    QCOMPARE(answerTo(server, "VONEL1 4\nSHOW"), QByteArray("0"));  // busy: dropped
    QTRY_COMPARE_WITH_TIMEOUT(arrived.count(), 1, SingleInstance::kPollMs * 3);
    QCOMPARE(arrived.at(0).at(0).toString(), QString::fromStdString(command));
    QCOMPARE(instance.slot(), QString("RUNNER"));
  }

  void theWindowShownIsTheMailerOrTheMainWindow() {
    Receiver receiver;
    auto [home, windows, commands] = receiver.parts();

    commands.onCommandArrived("SHOW");
    QVERIFY(!windows.mainShown);
    windows.visible = false;
    commands.onCommandArrived("  ");
    QVERIFY(windows.mainShown);
    windows.mailer = true;
    commands.onCommandArrived("SHOW");
    QVERIFY(windows.mailerShown);
    QVERIFY(logOf(home).endsWith(", Command passed in: SHOW\r\n"
                                 "1 08:00:00, Mailer not loaded - showing main form instead\r\n"
                                 "1 08:00:00, Main window visible - doing nothing\r\n"
                                 "1 08:00:00, Command passed in:   \r\n"
                                 "1 08:00:00, Mailer not loaded - showing main form instead\r\n"
                                 "1 08:00:00, Main window NOT visible - showing it\r\n"
                                 "1 08:00:00, Command passed in: SHOW\r\n"
                                 "1 08:00:00, Mailer loaded - showing it\r\n"));
  }

  void mailLinksComposeAndMessageFilesOpen() {
    Receiver receiver;
    auto [home, windows, commands] = receiver.parts();
    const QString saved = home.filePath("Saved Mail/Lunch Plan.EML");
    QDir(home.path()).mkpath("Saved Mail");
    files::writeTextFile(saved.toStdString(), "Subject: lunch\r\n\r\nnoon\r\n");

    commands.showMail("/MAILTO:Bob@Example.org");
    commands.onCommandArrived("mailto:bob@example.org?subject=Hi%0D%0ABcc:%20eve&attach=/etc/passwd");
    commands.onCommandArrived("\"" + saved + "\"");
    commands.showMail(home.filePath("gone.eml"));
    commands.showMail("just words");

    QCOMPARE(windows.composed.size(), 2u);
    QCOMPARE(windows.composed[0].to, "Bob@Example.org");
    QCOMPARE(windows.composed[1].to, "bob@example.org");
    QCOMPARE(windows.composed[1].subject, "Hi  Bcc: eve");
    QCOMPARE(windows.shownFiles.size(), 1u);
    QCOMPARE(windows.shownFiles[0], std::filesystem::path(saved.toStdString()));
    receiver.context.log.writeActionsToLog();
    for (const QString& line : {"Opening " + saved, "Loading message " + saved, "Displaying " + saved,
                                "Opening " + home.filePath("gone.eml")}) {
      QCOMPARE(countLine(home, line), 1);
    }
    QCOMPARE(countLine(home, "Loading message " + home.filePath("gone.eml")), 0);
  }

  // The real program: each kind of second start reaches the first copy and ends.
  void secondStartsHandTheirCommandsToTheFirst() {
    const auto home = makeHome();
    const auto first = startFirst(*home);
    // Handed over while the first copy may still be starting: it waits for the timer.
    handOver(*home, {});
    QTRY_COMPARE_WITH_TIMEOUT(countLine(*home, "Command passed in: SHOW"), 1, 10000);
    QCOMPARE(countLine(*home, "Main window visible - doing nothing"), 1);

    const QString saved = home->filePath("Saved Mail/Re Lunch.EmL");
    QDir(home->path()).mkpath("Saved Mail");
    files::writeTextFile(saved.toStdString(), "Subject: lunch\r\n\r\nnoon\r\n");
    const QString linked = home->filePath("Saved Mail/linked copy.eml");
    files::writeTextFile(linked.toStdString(), "Subject: lunch\r\n\r\nnoon\r\n");
    const struct {
      QStringList arguments;
      QString passed;
      QStringList lines;
    } starts[] = {
        {{"/mailto:x@y"}, "/mailto:x@y", {}},
        {{"mailto:bob@example.org?subject=Hi"}, "mailto:bob@example.org?subject=Hi", {}},
        {{"\"" + saved + "\""}, "\"" + saved + "\"",
         {"Opening " + saved, "Loading message " + saved, "Displaying " + saved}},
        {{QUrl::fromLocalFile(linked).toString()}, linked, {"Displaying " + linked}},
        {{home->filePath("absent.eml")}, home->filePath("absent.eml"), {"Opening " + home->filePath("absent.eml")}},
    };
    for (const auto& start : starts) {
      handOver(*home, start.arguments);
      QTRY_COMPARE_WITH_TIMEOUT(countLine(*home, "Command passed in: " + start.passed), 1, 5000);
      for (const QString& line : start.lines) QTRY_COMPARE_WITH_TIMEOUT(countLine(*home, line), 1, 5000);
    }
    QCOMPARE(countLine(*home, "Loading message " + home->filePath("absent.eml")), 0);

    // Two at once: the slot takes one, the other is dropped with a line of its own.
    Copy one(*home, {"/mailto:one@example.org"});
    Copy two(*home, {"/mailto:two@example.org"});
    QVERIFY(one.process().waitForFinished(5000) && two.process().waitForFinished(5000));
    QCOMPARE(one.process().exitCode() + two.process().exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(countLine(*home, "Command passed in: /mailto:one@example.org") +
                                  countLine(*home, "Command passed in: /mailto:two@example.org"),
                              1, 5000);
    QCOMPARE(countLine(*home, "Vonel is running, but I couldn't set the msg name"), 1);
    QCOMPARE(first->process().state(), QProcess::Running);
  }

  void aKilledCopysLockIsTakenOver() {
    const auto home = makeHome();
    auto killed = startFirst(*home);
    killed->process().kill();  // SIGKILL: the lock file and the socket stay behind
    QVERIFY(killed->process().waitForFinished());
    QVERIFY(QFileInfo::exists(home->filePath("vonel.lock")));

    const auto next = startFirst(*home);
    QVERIFY(!next->process().waitForFinished(500));
    handOver(*home, {"/mailto:after@example.org"});
    QTRY_COMPARE_WITH_TIMEOUT(countLine(*home, "Command passed in: /mailto:after@example.org"), 1, 10000);
  }

  void twoHomesRunSideBySide() {
    const auto homeA = makeHome();
    const auto homeB = makeHome();
    QVERIFY(SingleInstance::serverNameFor(pathOf(*homeA)) != SingleInstance::serverNameFor(pathOf(*homeB)));
    const auto a = startFirst(*homeA);
    const auto b = startFirst(*homeB);
    QVERIFY(!b->process().waitForFinished(1000));
    QCOMPARE(a->process().state(), QProcess::Running);
  }
};

QTEST_MAIN(SingleInstanceTest)
#include "single_instance_test.moc"
