// The scanner window on a real server: start to window, a scan listed in the
// window, the longest stall of the event loop while it runs, the list judged
// again, and the slowest frame while scrolling. Run by bench/scanner_window.sh.
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>
#include <cstdio>

#include "app/headless_windows.h"
#include "app/mail_controller.h"
#include "app/platform.h"
#include "app/terminal_password.h"
#include "ui/scanner/scanner_window.h"

using namespace vonel;

namespace {

// Ticks every 10 ms and keeps the longest gap between two ticks.
class StallProbe {
 public:
  StallProbe() {
    timer_.setInterval(10);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      longest_ = std::max(longest_, clock_.restart());
    });
  }
  void start() {
    longest_ = 0;
    clock_.start();
    timer_.start();
  }
  qint64 stop() {
    timer_.stop();
    return longest_;
  }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  qint64 longest_ = 0;
};

double milliseconds(const QElapsedTimer& timer) { return timer.nsecsElapsed() / 1e6; }

void waitForPass(MailController& controller) {
  QEventLoop loop;
  QObject::connect(&controller, &MailController::passEnded, &loop, &QEventLoop::quit);
  loop.exec();
}

// The same scan with no window at all, as `vonel --scan` runs it.
double headlessScan(AppContext& context) {
  HeadlessWindows windows;
  TerminalPasswordPrompt passwords;
  MailController controller(context, windows, passwords);
  controller.startup();
  QElapsedTimer clock;
  clock.start();
  controller.scan();
  waitForPass(controller);
  const double elapsed = milliseconds(clock);
  controller.exitProgram(ExitQuestions::Skip);
  return elapsed;
}

}  // namespace

int main(int argc, char** argv) {
  QElapsedTimer sinceStart;
  sinceStart.start();
  QApplication application(argc, argv);
  const double applicationMs = milliseconds(sinceStart);
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_scanner_window HOME\n");
    return 2;
  }
  const auto home = resolveHome(QString::fromLocal8Bit(argv[1]));
  SystemClock systemClock;
  ScriptedPrompt prompt;
  {
    AppContext context(systemClock, prompt, platformAppInfo(home), platformLocaleFacts());
    std::printf("scan without a window: %.1f ms\n", headlessScan(context));
  }
  QElapsedTimer clock;
  clock.start();
  AppContext context(systemClock, prompt, platformAppInfo(home), platformLocaleFacts());
  ScannerWindow window(context);
  TerminalPasswordPrompt passwords;
  MailController controller(context, window, passwords);
  window.attach(controller);
  controller.startup();
  QApplication::processEvents();
  std::printf("start to window: %.1f ms (and %.1f ms before it for the application object)\n", milliseconds(clock),
              applicationMs);

  // With an argument "hidden" the same scan runs with the window out of sight.
  if (argc > 2 && QString(argv[2]) == "hidden") window.hide();
  StallProbe probe;
  probe.start();
  clock.restart();
  controller.scan();
  waitForPass(controller);
  window.serverMail().flush();
  const double scan = milliseconds(clock);
  std::printf("scan listed in the window: %d rows in %.1f ms; longest event-loop stall %lld ms\n",
              window.serverMail().rowCount(), scan, static_cast<long long>(probe.stop()));

  clock.restart();
  controller.rescanCachedMail();
  window.serverMail().flush();
  QApplication::processEvents();
  std::printf("list judged again: %d rows in %.1f ms\n", window.serverMail().rowCount(), milliseconds(clock));

  auto* list = window.findChild<QTreeView*>("ListServerMail");
  window.resize(1000, 700);
  window.show();
  QApplication::processEvents();
  QScrollBar* bar = list->verticalScrollBar();
  double slowest = 0;
  int frames = 0;
  for (int value = 0; value <= bar->maximum(); value += std::max(bar->pageStep(), 1)) {
    QElapsedTimer frame;
    frame.start();
    bar->setValue(value);
    list->viewport()->repaint();
    slowest = std::max(slowest, milliseconds(frame));
    ++frames;
  }
  std::printf("scrolling: %d pages, slowest frame %.2f ms\n", frames, slowest);
  controller.exitProgram(ExitQuestions::Skip);
  return 0;
}
