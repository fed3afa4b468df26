#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QtTest>

#include "core/context/app_context.h"
#include "ui/dialog_prompt.h"
#include "ui/errors/error_report_window.h"

using namespace vonel;

class DialogPromptTest : public QObject {
  Q_OBJECT

 private slots:
  // The program's error reports reach the report window once the context is there.
  void showErrorOpensTheErrorReportWindow() {
    QTemporaryDir dir;
    FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
    DialogPrompt prompt;
    AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", dir.path().toStdString()}};
    prompt.setContext(&context);
    QString objectName;
    QString text;
    QTimer::singleShot(0, [&] {
      QWidget* window = QApplication::activeModalWidget();
      QVERIFY(window);
      objectName = window->objectName();
      text = window->findChild<QPlainTextEdit*>("txtError")->toPlainText();
      window->close();
    });
    prompt.showError("76 - Path not found in Save of Settings", "/home/me/Vonel.ini");
    QCOMPARE(objectName, QString("fSHAREDErrorRpt"));
    QCOMPARE(text, QString("76 - Path not found in Save of Settings\n/home/me/Vonel.ini"));
  }
};

QTEST_MAIN(DialogPromptTest)
#include "dialog_prompt_test.moc"
