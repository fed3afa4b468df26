#include <QDesktopServices>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "core/files/file_text.h"
#include "ui/errors/error_report_window.h"
#include "ui/log/log_window.h"

using namespace vonel;

namespace {

struct Home {
  Home() { qputenv("TMPDIR", temp.path().toLocal8Bit()); }
  QTemporaryDir dir;
  QTemporaryDir temp;  // the report file goes here, not into the shared temporary folder
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", home}};
};

QString shown(const QWidget& window, const char* name) {
  return window.findChild<QPlainTextEdit*>(name)->toPlainText();
}

QPushButton* button(const QWidget& window, const char* name) { return window.findChild<QPushButton*>(name); }

QString caption(const QPushButton* push) { return push->text().remove('&'); }

void saveShot(QWidget& window, const QString& name) {
  const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
  if (shots.isEmpty()) return;
  QCoreApplication::processEvents();
  window.grab().save(shots + "/" + name);
}

}  // namespace

// Takes the mail links the window hands to the system.
class MailHandler : public QObject {
  Q_OBJECT

 public:
  QList<QUrl> opened;

 public slots:
  void open(const QUrl& url) { opened << url; }
};

class ErrorReportWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void showsTheErrorAndTheLogUnderTheirCaptions() {
    Home home;
    home.context.log.logEvent("Startup", true);
    home.context.log.addAction("Scanning Home");  // still queued: the window writes it first
    ErrorReportWindow window(home.context);
    window.showError("53 - File not found in Load of Store", "while reading Inbox");
    window.show();

    QCOMPARE(window.objectName(), QString("fSHAREDErrorRpt"));
    QCOMPARE(window.findChild<QLabel*>("lblTitle")->text(), QString("An error has ocurred:"));
    QCOMPARE(shown(window, "txtError"), QString("53 - File not found in Load of Store\nwhile reading Inbox"));
    QVERIFY(shown(window, "txtLog").startsWith("1 08:05:09, Log file created \n"));
    QVERIFY(shown(window, "txtLog").endsWith("1 08:05:09, Startup\n1 08:05:09, Scanning Home\n"));
    QCOMPARE(caption(button(window, "cmdEmail")), QString("Submit Error Report"));
    QCOMPARE(window.findChild<QLabel*>("lblPreviewNote")->text(),
             QString("You will get a chance to preview the report before sending."));
    QVERIFY(!window.findChild<QPlainTextEdit*>("txtUserMessage")->isVisible());
    for (const char* name : {"cmdEmail", "cmdViewReport", "cmdViewLog", "cmdShowComments", "cmdExit", "cmdHelp"}) {
      QVERIFY2(button(window, name) && button(window, name)->text().contains('&'), name);
    }
    for (const auto* edit : window.findChildren<QPlainTextEdit*>()) QVERIFY(!edit->accessibleName().isEmpty());
    saveShot(window, "error-report-window.png");

    QTest::mouseClick(button(window, "cmdShowComments"), Qt::LeftButton);
    QVERIFY(window.findChild<QPlainTextEdit*>("txtUserMessage")->isVisible());
    QTest::mouseClick(button(window, "cmdExit"), Qt::LeftButton);
    QVERIFY(!window.isVisible());
  }

  void saysSoWhenThereIsNoLogFile() {
    Home home;
    ErrorReportWindow window(home.context);
    QCOMPARE(shown(window, "txtLog"), QString("No log file"));
    QVERIFY(window.reportText().find("\r\n\r\nNo log file\r\n----") != std::string::npos);
  }

  // Without a configured mailbox there is nowhere to submit to.
  void submitsOnlyWithABugReportAddress() {
    Home home;
    QVERIFY(!button(ErrorReportWindow(home.context), "cmdEmail")->isEnabled());
    home.context.settings.set("BugReportAddress", "bugs2026@example.org");
    QVERIFY(button(ErrorReportWindow(home.context), "cmdEmail")->isEnabled());
  }

  void viewReportShowsTheReportAndWritesFullLog() {
    Home home;
    home.context.settings.set("BugReportAddress", "bugs2026@example.org");
    home.context.log.logEvent("Startup", true);
    ErrorReportWindow window(home.context);
    window.showError("Overflow", {});
    window.show();
    QTest::mouseClick(button(window, "cmdShowComments"), Qt::LeftButton);
    QTest::keyClicks(window.findChild<QPlainTextEdit*>("txtUserMessage"), "I pressed F5 twice.");
    QTest::mouseClick(button(window, "cmdViewReport"), Qt::LeftButton);

    const std::string report = window.reportText();
    QVERIFY(report.starts_with("Error Report: Vonel 1.2.3, TestOS 7\r\n\r\nOverflow\r\n\r\nI pressed F5 twice.\r\n\r\n"));
    QVERIFY(report.find(" and paste the following text into it.") != std::string::npos);
    const QString file = QDir(home.temp.path()).filePath("FullLog.txt");
    QCOMPARE(ErrorReportWindow::reportFile(), file);
    QCOMPARE(files::loadTextFile(file.toStdString()), report);
    auto* view = window.findChild<QPlainTextEdit*>("txtReport");
    QVERIFY(view && view->isVisible());
    QCOMPARE(fromQString(view->toPlainText()), fromQString(toQString(report).replace("\r\n", "\n")));
    saveShot(*view->window(), "error-report-view.png");
  }

  void submitOpensAMailLinkWithTheReportEscaped() {
    Home home;
    home.context.settings.set("BugReportAddress", "bugs2026@example.org");
    MailHandler handler;
    QDesktopServices::setUrlHandler("mailto", &handler, "open");
    ErrorReportWindow window(home.context);
    window.showError("Bad name %3F & more", {});
    QTest::mouseClick(button(window, "cmdEmail"), Qt::LeftButton);
    QDesktopServices::unsetUrlHandler("mailto");

    QCOMPARE(handler.opened.size(), 1);
    const QByteArray link = handler.opened.first().toEncoded();
    QVERIFY2(link.startsWith("mailto:bugs2026@example.org?subject=Bug%20Report%20(Vonel%20-%201.2.3)&body=User:%20"),
             link.constData());
    QVERIFY(link.contains("Bad%20name%20%253F%20%26%20more"));
    QVERIFY(link.contains("%20(Please%20click%20Attach%20and%20add%20the%20file%20"));
    QVERIFY(!link.contains("attachment"));
    QVERIFY(QFile::exists(ErrorReportWindow::reportFile()));
  }

  void viewLogOpensTheLogWindowOverTheReport() {
    Home home;
    home.context.log.logEvent("Startup", true);
    ErrorReportWindow window(home.context);
    window.show();
    QTest::mouseClick(button(window, "cmdViewLog"), Qt::LeftButton);
    auto* log = window.findChild<LogWindow*>("frmLog");
    QVERIFY(log && log->isVisible());
    QCOMPARE(log->windowTitle(), QString("Log file as of 08:05:09"));
  }
};

QTEST_MAIN(ErrorReportWindowTest)
#include "error_report_window_test.moc"
