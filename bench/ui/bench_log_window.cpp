// Opens a 50 MB log in the log window and prints how long until its first
// page is painted, until every line is listed, and the longest time the
// event loop waited meanwhile; then the same for the error report window,
// which shows the log's end.
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <vector>

#include "core/context/app_context.h"
#include "ui/errors/error_report_window.h"
#include "ui/log/log_lines_model.h"
#include "ui/log/log_window.h"

namespace {

constexpr std::size_t kLogBytes = 50u * 1024 * 1024;
constexpr int kRuns = 5;

void writeLog(const std::filesystem::path& file) {
  std::string block;
  for (int i = 0; block.size() < 1024 * 1024; ++i) {
    block += "1 08:00:00, Scanning Home: message " + std::to_string(i) + " accepted, score 0.0123\r\n";
  }
  std::ofstream out(file, std::ios::binary);
  for (std::size_t written = 0; written < kLogBytes; written += block.size()) out << block;
}

// Notes the moment the watched widget is first painted.
class FirstPaint : public QObject {
 public:
  explicit FirstPaint(const QElapsedTimer& clock) : clock_(clock) {}
  qint64 at = -1;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && at < 0) at = clock_.elapsed();
    return QObject::eventFilter(watched, event);
  }

 private:
  const QElapsedTimer& clock_;
};

struct Figures {
  qint64 firstPage = 0;
  qint64 allLines = 0;
  qint64 laidOut = 0;
  qint64 longestStall = 0;
};

Figures openOnce(vonel::AppContext& context) {
  QElapsedTimer clock;
  FirstPaint paint(clock);
  clock.start();
  vonel::LogWindow window(context);
  window.centralWidget()->findChild<QWidget*>("qt_scrollarea_viewport")->installEventFilter(&paint);
  window.show();
  while (paint.at < 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

  auto* model = window.findChild<vonel::LogLinesModel*>();
  const QWidget* viewport = window.centralWidget()->findChild<QWidget*>("qt_scrollarea_viewport");
  Figures figures{paint.at, 0, 0, 0};
  QElapsedTimer probe;
  probe.start();
  QTimer tick;
  tick.setInterval(1);
  QEventLoop loop;
  QObject::connect(&tick, &QTimer::timeout, [&] {
    figures.longestStall = std::max(figures.longestStall, probe.restart());
    // The view shows its picture again once the lines read late are laid out.
    if (!model->isIndexing() && viewport->updatesEnabled()) loop.quit();
  });
  QObject::connect(model, &vonel::LogLinesModel::indexed, [&] { figures.allLines = clock.elapsed(); });
  tick.start();
  loop.exec();
  figures.laidOut = clock.elapsed();
  return figures;
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  writeLog(home / "log.txt");
  vonel::SystemClock clock;
  vonel::ScriptedPrompt prompt;
  vonel::AppContext context(clock, prompt, vonel::AppInfo{"Vonel", "bench", "", home, home});

  std::vector<qint64> firstPages;
  std::printf("log window, %zu MB log (file in the page cache)\n", kLogBytes / (1024 * 1024));
  for (int run = 1; run <= kRuns; ++run) {
    const Figures figures = openOnce(context);
    firstPages.push_back(figures.firstPage);
    std::printf("run %d: first page %lld ms, all lines listed %lld ms, laid out %lld ms, "
                "longest event-loop wait %lld ms\n",
                run, static_cast<long long>(figures.firstPage), static_cast<long long>(figures.allLines),
                static_cast<long long>(figures.laidOut), static_cast<long long>(figures.longestStall));
  }
  std::sort(firstPages.begin(), firstPages.end());
  std::printf("median first page: %lld ms\n", static_cast<long long>(firstPages[kRuns / 2]));

  for (int run = 1; run <= kRuns; ++run) {
    QElapsedTimer timer;
    FirstPaint paint(timer);
    timer.start();
    vonel::ErrorReportWindow window(context);
    window.findChild<QWidget*>("txtLog")->findChild<QWidget*>("qt_scrollarea_viewport")->installEventFilter(&paint);
    window.show();
    while (paint.at < 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("error report window, run %d: shown with the log's end after %lld ms\n", run,
                static_cast<long long>(paint.at));
  }
  return 0;
}
