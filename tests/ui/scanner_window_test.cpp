#include <QAction>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include "app/mail_controller.h"
#include "app/terminal_password.h"
#include "core/files/atomic_file.h"
#include "ui/scanner/scanner_window.h"

using namespace vonel;

namespace {

// The scanner window and its controller on a home of its own with the given settings.
struct Scanner {
  explicit Scanner(std::string_view settings) {
    files::writeTextFile(home / "Vonel.ini", settings);
  }
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1", "os", "/", home}};
  ScannerWindow window;
  TerminalPasswordPrompt passwords;
  MailController controller{context, window, passwords};
};

}  // namespace

class ScannerWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void startsWithTheListAndTheUpdateStatus() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nMAINWIDTH,9000\r\n");
    auto& window = scanner.window;
    auto& controller = scanner.controller;
    QCOMPARE(controller.startup(), StartupResult::Started);

    QVERIFY(window.isVisible());
    QVERIFY(window.findChild<QTreeWidget*>("ListServerMail"));
    QVERIFY(window.findChild<QAction*>("mnuExit"));
    QCOMPARE(window.statusBar()->currentMessage(), QString("Auto-update enabled"));
    QCOMPARE(window.geometryTwips().widthTwips / 100, 90);

    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) window.grab().save(shots + "/scanner-window.png");
    QVERIFY(controller.exitProgram());
    QVERIFY(!window.isVisible());
  }

  // A failed account's row and the status bar say why, also once the pass is over.
  void aFailureShowsInTheServersRowAndTheStatusBar() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nTITLE1,Work\r\n");
    auto& window = scanner.window;
    auto& controller = scanner.controller;
    controller.startup();
    pop3::Pop3Listener& events = controller;
    const auto* list = window.findChild<QTreeWidget*>("ListServerMail");

    events.onDoingServer("Home");
    events.onNumberMessagesFound("Home", 3);
    events.onDoingServer("Work");
    QCOMPARE(list->topLevelItem(0)->text(0), QString("Home: 3 messages"));
    QVERIFY(list->topLevelItem(0)->isFirstColumnSpanned());
    events.onPopError("Work", "-ERR [AUTH] Authentication failed.\r\n");
    pop3::Pop3Failure refused(pop3::FailureKind::LoginRefused, "-ERR [AUTH] Authentication failed.\r\n");
    refused.account = 1;
    events.onFailure(refused);
    QCOMPARE(list->topLevelItem(1)->text(0), QString("Work: login refused: -ERR [AUTH] Authentication failed."));
    const QString line("Account 1 (Work): login refused: -ERR [AUTH] Authentication failed.");
    QCOMPARE(window.statusBar()->currentMessage(), line);
    events.onFinished("Work", 0);
    QCOMPARE(window.statusBar()->currentMessage(), line);

    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
      QCoreApplication::processEvents();
      window.grab().save(shots + "/scanner-window-failure.png");
    }
    QVERIFY(controller.exitProgram());
  }
};

QTEST_MAIN(ScannerWindowTest)
#include "scanner_window_test.moc"
