// A new user's first start, end to end: the wizard on a home without
// settings, the scanner, the settings dialog pointed at a real server, and
// the first scan listing what waits there.
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "app/mail_controller.h"
#include "core/files/file_text.h"
#include "support/dovecot_server.h"
#include "ui/scanner/scanner_window.h"

using namespace vonel;

namespace {

// Answers the password box as the user would, and counts the questions.
struct TypedPassword : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool& save) override {
    ++asked;
    cancelled = false;
    save = false;
    return password;
  }
  std::string password;
  int asked = 0;
};

// Runs `fill` once a modal window named `name` shows; start-up pumps events
// before its windows show, so this waits for it rather than firing at once.
void onNextModal(const QString& name, std::function<void(QWidget&)> fill) {
  auto* poll = new QTimer;
  poll->setInterval(10);
  QObject::connect(poll, &QTimer::timeout, [poll, name, fill = std::move(fill)] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || modal->objectName() != name) return;
    poll->stop();
    poll->deleteLater();
    fill(*modal);
  });
  poll->start();
}

void type(QWidget& window, const char* field, const QString& text) {
  auto* box = window.findChild<QLineEdit*>(field);
  box->clear();
  QTest::keyClicks(box, text);
}

}  // namespace

class FirstStartTest : public QObject {
  Q_OBJECT

 private slots:
  void wizardThenSettingsThenTheFirstScan() {
    testing::DovecotServer server;
    QVERIFY(server.start());
    server.deliver("1", "From: Ann <ann@example.org>\r\nTo: jo@example.org\r\nSubject: Welcome aboard\r\n\r\nHi\r\n");

    QTemporaryDir dir;
    const std::filesystem::path home = dir.path().toStdString();
    FixedClock clock{text::DateTime{2026, 11, 24, 9, 0, 0}};
    ScriptedPrompt prompt;
    AppContext context{clock, prompt, AppInfo{"Vonel", "1", "os", "/", home}};
    ScannerWindow window{context};
    TypedPassword passwords;
    passwords.password = server.password();
    MailController controller{context, window, passwords};
    window.attach(controller);

    onNextModal("frmAccountWizard", [](QWidget& wizard) {
      type(wizard, "txtName", "Jo Example");
      type(wizard, "txtEmail", "jo@example.org");
      type(wizard, "txtPOP3", "127.0.0.1");
      type(wizard, "txtSMTP", "127.0.0.1");
      type(wizard, "txtUsername", "jo");
      type(wizard, "txtAccountName", "Home");
      auto* next = wizard.findChild<QPushButton*>("cmdNext");
      while (wizard.isVisible()) next->click();
    });
    QCOMPARE(controller.startup(), StartupResult::Started);
    const std::string written = files::loadTextFile(home / "Vonel.ini");
    QVERIFY(written.find("SERVER0,127.0.0.1\r\n") != std::string::npos);
    QVERIFY(written.find("TITLE0,Home\r\n") != std::string::npos);
    QVERIFY(window.isVisible());

    // The wizard asks no port; the settings dialog points the account at the test server.
    onNextModal("frmSettings", [&server](QWidget& settings) {
      type(settings, "txtPOPPort", QString::number(server.port()));
      settings.findChild<QPushButton*>("cmdOK")->click();
    });
    QSignalSpy ended(&controller, &MailController::passEnded);
    window.showSettings();
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 1, 20000);

    QCOMPARE(passwords.asked, 1);
    window.serverMail().flush();
    QCOMPARE(window.serverMail().rowCount(), 2);
    QCOMPARE(window.serverMail().row(0).cell(ServerMailColumn::From), QString("Home - 1 message"));
    QCOMPARE(window.serverMail().row(1).cell(ServerMailColumn::Subject), QString("Welcome aboard"));
    QVERIFY(controller.exitProgram());
  }
};

QTEST_MAIN(FirstStartTest)
#include "first_start_test.moc"
