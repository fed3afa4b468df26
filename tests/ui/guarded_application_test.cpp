#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QtTest>
#include <stdexcept>

#include "core/context/app_context.h"
#include "core/files/file_text.h"
#include "ui/errors/error_report_window.h"
#include "ui/guarded_application.h"

using namespace vonel;

namespace {

// Throws out of its handler for user events, as a faulty slot would.
class Thrower : public QObject {
 public:
  int handled = 0;
  bool event(QEvent* event) override {
    if (event->type() == QEvent::User) throw std::runtime_error("boom " + std::to_string(++handled));
    return QObject::event(event);
  }
};

int openReportWindows() {
  int open = 0;
  for (const QWidget* widget : QApplication::topLevelWidgets()) {
    if (qobject_cast<const ErrorReportWindow*>(widget) && widget->isVisible()) ++open;
  }
  return open;
}

}  // namespace

class GuardedApplicationTest : public QObject {
  Q_OBJECT

 private slots:
  void anEscapedExceptionIsLoggedShownAndSurvived() {
    QTemporaryDir dir;
    FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
    ScriptedPrompt prompt;
    AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", dir.path().toStdString()}};
    auto* application = static_cast<GuardedApplication*>(QCoreApplication::instance());
    application->setContext(&context);
    Thrower thrower;

    QString shown;
    int windowsWhileShown = 0;
    QTimer::singleShot(0, [&] {
      QWidget* window = QApplication::activeModalWidget();
      QVERIFY(window);
      shown = window->findChild<QPlainTextEdit*>("txtError")->toPlainText();
      // A second failure while the window is open adds a log line, not a window.
      QEvent again(QEvent::User);
      QCoreApplication::sendEvent(&thrower, &again);
      windowsWhileShown = openReportWindows();
      window->close();
    });
    QEvent first(QEvent::User);
    QCoreApplication::sendEvent(&thrower, &first);
    application->setContext(nullptr);

    QCOMPARE(shown, QString("Uncaught exception: Internal error: boom 1"));
    QCOMPARE(windowsWhileShown, 1);
    QCOMPARE(openReportWindows(), 0);
    const std::string log = files::loadTextFile(context.log.currentLogFilename());
    QVERIFY(log.find("1 08:05:09, Uncaught exception: Internal error: boom 1\r\n") != std::string::npos);
    QVERIFY(log.find("1 08:05:09, Uncaught exception: Internal error: boom 2\r\n") != std::string::npos);

    // Without a context the failure goes to the standard error, and events go on.
    QEvent third(QEvent::User);
    QCoreApplication::sendEvent(&thrower, &third);
    QCOMPARE(thrower.handled, 3);
    QCOMPARE(openReportWindows(), 0);
  }
};

int main(int argc, char** argv) {
  GuardedApplication application(argc, argv);
  GuardedApplicationTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "guarded_application_test.moc"
