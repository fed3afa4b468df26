#include <QAction>
#include <QClipboard>
#include <QElapsedTimer>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <fstream>

#include "core/context/app_context.h"
#include "ui/log/log_lines_model.h"
#include "ui/log/log_window.h"

using namespace vonel;

namespace {

struct Home {
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", home}};

  // A log of about `bytes` made the quick way, ending in a known line.
  int writeBigLog(std::size_t bytes) {
    std::ofstream out(home / "log.txt", std::ios::binary);
    std::string block;
    int lines = 0;
    for (; block.size() < 1024 * 1024; ++lines) block += "1 08:00:00, Scanning Home: message " + std::to_string(lines) + " accepted\r\n";
    for (std::size_t written = 0; written < bytes; written += block.size()) out << block;
    const int total = lines * static_cast<int>((bytes + block.size() - 1) / block.size());
    out << "1 08:05:09, the last line\r\n";
    return total + 1;
  }
};

QListView* logView(const LogWindow& window) { return window.findChild<QListView*>("txtLog"); }

// The lowest row in sight.
QString bottomLine(const LogWindow& window) {
  const QListView* view = logView(window);
  for (int y = view->viewport()->height() - 1; y >= 0; y -= 2) {
    const QModelIndex at = view->indexAt(QPoint(4, y));
    if (at.isValid() && view->visualRect(at).bottom() < view->viewport()->height()) return at.data().toString();
  }
  return {};
}

QString topLine(const LogWindow& window) { return logView(window)->indexAt(QPoint(4, 2)).data().toString(); }

}  // namespace

class LogWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void showsTheLogUnderTheTimeOfReading() {
    Home home;
    home.context.log.logEvent("Startup", true);
    home.context.log.addAction("Scanning Home");
    LogWindow window(home.context);
    window.show();

    QCOMPARE(window.objectName(), QString("frmLog"));
    QCOMPARE(window.windowTitle(), QString("Log file as of 08:05:09"));
    QCOMPARE(window.findChild<QAction*>("mnuRefresh")->text(), QString("&Refresh"));
    QListView* view = logView(window);
    QCOMPARE(view->accessibleName(), QString("Log"));
    QCOMPARE(view->model()->rowCount(), 8);
    QCOMPARE(view->model()->index(0, 0).data().toString(), QString("1 08:05:09, Log file created "));
    QCOMPARE(bottomLine(window), QString("1 08:05:09, Scanning Home"));

    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
      for (int i = 0; i < 40; ++i) home.context.log.logEvent("Scanning Home: message " + std::to_string(i) + " accepted, score 0.0123");
      home.context.log.logEvent("Error 53 (File not found) in LoadMessage of Store: /home/me/Vonel/Messages/Inbox/a-very-long-name-of-a-message-file-0001.eml");
      window.refresh();
      QCoreApplication::processEvents();
      window.grab().save(shots + "/log-window.png");
    }
  }

  void refreshReadsTheFileAgain() {
    Home home;
    home.context.log.logEvent("Startup", true);
    LogWindow window(home.context);
    window.show();
    const int rows = logView(window)->model()->rowCount();

    home.clock.set(text::DateTime{2026, 11, 23, 17, 45, 3});
    home.context.log.logEvent("Later");
    window.findChild<QAction*>("mnuRefresh")->trigger();
    QCOMPARE(window.windowTitle(), QString("Log file as of 17:45:03"));
    QCOMPARE(logView(window)->model()->rowCount(), rows + 1);
    QCOMPARE(bottomLine(window), QString("1 17:45:03, Later"));
  }

  void showsNothingWithoutALogFile() {
    Home home;
    LogWindow window(home.context);
    QCOMPARE(logView(window)->model()->rowCount(), 0);
    QCOMPARE(window.windowTitle(), QString("Log file as of 08:05:09"));
  }

  void copiesTheSelectedLines() {
    Home home;
    home.context.log.logEvent("Startup", true);
    LogWindow window(home.context);
    window.show();
    QListView* view = logView(window);
    view->setFocus();
    view->selectionModel()->select(view->model()->index(6, 0), QItemSelectionModel::Select);
    view->selectionModel()->select(view->model()->index(2, 0), QItemSelectionModel::Select);
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QString("1 08:05:09, App: Vonel\n1 08:05:09, Startup\n"));
  }

  // The newest page shows at once; the lines before it follow without moving what is shown.
  void aFiftyMegabyteLogOpensAtItsEnd() {
    Home home;
    const int lines = home.writeBigLog(50 * 1024 * 1024);
    QElapsedTimer clock;
    clock.start();
    LogWindow window(home.context);
    window.show();
    QCoreApplication::processEvents();
    qDebug("50 MB log: first page after %lld ms", static_cast<long long>(clock.elapsed()));
    QCOMPARE(bottomLine(window), QString("1 08:05:09, the last line"));

    auto* model = window.findChild<LogLinesModel*>();
    QVERIFY(model->isIndexing());
    QListView* view = logView(window);
    view->scrollTo(model->index(100, 0), QAbstractItemView::PositionAtTop);
    const QString top = topLine(window);
    QSignalSpy indexed(model, &LogLinesModel::indexed);
    QVERIFY(indexed.wait(10000));
    qDebug("50 MB log: all %d lines after %lld ms", lines, static_cast<long long>(clock.elapsed()));
    QCOMPARE(model->rowCount(), lines);
    QCOMPARE(model->index(0, 0).data().toString(), QString("1 08:00:00, Scanning Home: message 0 accepted"));
    // No line lost or doubled where the lines read late meet the first page.
    const auto number = [model](int row) {
      return model->index(row, 0).data().toString().section(' ', 5, 5).toInt();
    };
    for (int row = lines - 20000; row < lines - 2; ++row) {
      QVERIFY2(number(row + 1) == number(row) + 1 || number(row + 1) == 0, qPrintable(QString::number(row)));
    }
    QTRY_COMPARE(topLine(window), top);

    window.refresh();
    QCOMPARE(bottomLine(window), QString("1 08:05:09, the last line"));
    QVERIFY(indexed.wait(10000));
    QTRY_COMPARE(bottomLine(window), QString("1 08:05:09, the last line"));
  }
};

QTEST_MAIN(LogWindowTest)
#include "log_window_test.moc"
