// The mail window's message list on generated 50,000-message folders: a
// folder shown from its warm cache, scrolling by wheel and by Page Down,
// sorting, the memory a row costs, switching between two folders, and the
// event loop's longest stall while a folder without a cache file is read.
// Usage: bench_mailer_list [COUNT] (default 50000); runs offscreen. The store
// is made under VONEL_BENCH_DIR when set (a RAM disk makes the generation
// quick), else in the temporary folder.
#include <malloc.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "core/interaction/prompt.h"
#include "core/store/folder_listing.h"
#include "support/store_generator.h"
#include "ui/mailer/message_list_pane.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

double milliseconds(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

// Resident memory and the heap in use, in bytes.
long long residentBytes() {
  long long pages = 0;
  long long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * 4096;
}
long long heapInUse() { return static_cast<long long>(mallinfo2().uordblks); }

// Ticks every 10 ms and keeps the longest gap between two ticks.
class StallProbe {
 public:
  StallProbe() {
    timer_.setInterval(10);
    QObject::connect(&timer_, &QTimer::timeout, [this] { longest_ = std::max(longest_, clock_.restart()); });
  }
  void start() {
    longest_ = 0;
    clock_.start();
    timer_.start();
  }
  qint64 stop() {
    timer_.stop();
    return std::max(longest_, clock_.elapsed());
  }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  qint64 longest_ = 0;
};

// Walks the list from top to bottom, one step at a time, each step with its
// paint, and tells the number of steps and their times.
template <typename Step>
void walk(const char* what, MessageListView& view, Step step) {
  QScrollBar* bar = view.verticalScrollBar();
  bar->setValue(0);
  view.viewport()->repaint();
  std::vector<double> frames;
  while (bar->value() < bar->maximum() && frames.size() < 200000) {
    QElapsedTimer frame;
    frame.start();
    step();
    view.viewport()->repaint();
    frames.push_back(milliseconds(frame));
  }
  if (frames.empty()) return;
  std::sort(frames.begin(), frames.end());
  const auto at = [&](double share) {
    return frames[static_cast<std::size_t>(share * static_cast<double>(frames.size() - 1))];
  };
  std::printf(
      "%s, top to bottom: %zu steps; step with its paint: median %.2f ms, 99%% %.2f ms, slowest %.2f ms; %zu over 16 "
      "ms\n",
      what, frames.size(), at(0.5), at(0.99), frames.back(),
      static_cast<std::size_t>(std::count_if(frames.begin(), frames.end(), [](double ms) { return ms > 16; })));
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const std::size_t count = argc > 1 ? std::stoul(argv[1]) : 50000;
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const QString base = qEnvironmentVariable("VONEL_BENCH_DIR");
  QTemporaryDir dir(base.isEmpty() ? QDir::tempPath() + "/vonel-bench-XXXXXX" : base + "/vonel-bench-XXXXXX");
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, AppInfo{"Vonel", "bench", "os", "/", dir.path().toStdString()});
  context.folders.readMessageFolder();
  context.folders.readDataFolder();
  const fs::path root = context.folders.messageFolderPath;

  QElapsedTimer timer;
  timer.start();
  testing::generateStoreFolder(context, root / "Big1", {count, 1, {2026, 11, 23, 9, 0, 0}, true});
  testing::generateStoreFolder(context, root / "Big2", {count, 2, {2026, 11, 23, 9, 0, 0}, true});
  testing::generateStoreFolder(context, root / "Cold", {count, 3, {2026, 11, 23, 9, 0, 0}, false});
  std::printf("generated three folders of %zu messages (two with cache.xml) in %.0f ms\n", count, milliseconds(timer));

  {
    // The share of a first showing that is the reading of "cache.xml".
    SilentProgress quiet;
    store::FolderCache alone(context, quiet);
    timer.start();
    alone.fillCache(quiet, root / "Big2", "Big2");
    std::printf("cache.xml of %zu messages read on its own: %.1f ms\n", alone.count(), milliseconds(timer));
  }

  MessageListPane pane(context);
  pane.resize(1000, 700);
  pane.show();
  QApplication::processEvents();
  int previews = 0;
  QObject::connect(&pane, &MessageListPane::previewRequested, [&previews] { ++previews; });

  const long long heapBefore = heapInUse();
  const long long residentBefore = residentBytes();
  timer.restart();
  pane.showFolder(root / "Big1", "Big1");
  const double shown = milliseconds(timer);
  const store::FolderCache& cache = *pane.caches().find(root / "Big1");
  std::printf(
      "folder click to last row previewed: %.1f ms for %d rows; message files opened: %zu (previews asked: %d)\n",
      shown, pane.model().rowCount(), cache.headersRead() + pane.headersRead(), previews);
  std::printf("memory for cache and list: heap %.1f MB, resident %.1f MB\n", (heapInUse() - heapBefore) / 1e6,
              (residentBytes() - residentBefore) / 1e6);

  // The list alone: the cache stays, the rows go and come back.
  pane.model().clear();
  QApplication::processEvents();
  const long long heapCacheOnly = heapInUse();
  timer.restart();
  pane.relist();
  QApplication::processEvents();
  const double relisted = milliseconds(timer);
  const int rows = pane.model().rowCount();
  std::printf("listed again from the cache in memory: %.1f ms; list and view cost %.1f bytes a row beyond the cache\n",
              relisted, static_cast<double>(heapInUse() - heapCacheOnly) / rows);

  MessageListView& view = pane.view();
  const QPoint centre = view.viewport()->rect().center();
  // Ten notches an event: a quick turn of the wheel, and a walk of 50,000 rows in a bearable time.
  walk("wheel", view, [&] {
    QWheelEvent wheel(centre, view.viewport()->mapToGlobal(centre), QPoint(), QPoint(0, -1200), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
  });
  view.setCurrentIndex(pane.model().index(0, 0));
  walk("Page Down", view, [&] {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
    QApplication::sendEvent(&view, &key);
  });

  for (const auto& [column, name] : {std::pair{1, "Size"}, std::pair{3, "Subject"}, std::pair{2, "From"}}) {
    timer.restart();
    pane.model().sort(column, Qt::AscendingOrder);
    view.viewport()->repaint();
    std::printf("sort by %s: %.1f ms\n", name, milliseconds(timer));
  }

  pane.showFolder(root / "Big2", "Big2");
  pane.showFolder(root / "Big1", "Big1");
  const long long residentFirst = residentBytes();
  const long long heapFirst = heapInUse();
  double slowestSwitch = 0;
  for (int i = 0; i < 10; ++i) {
    timer.restart();
    pane.showFolder(root / (i % 2 == 0 ? "Big2" : "Big1"), i % 2 == 0 ? "Big2" : "Big1");
    slowestSwitch = std::max(slowestSwitch, milliseconds(timer));
  }
  std::printf("ten switches between two folders: slowest %.1f ms; resident memory grew %.1f MB, heap in use %.2f MB\n",
              slowestSwitch, (residentBytes() - residentFirst) / 1e6, (heapInUse() - heapFirst) / 1e6);

  // A fill and a search start with a listing of the folder, which runs in one piece.
  timer.restart();
  const std::size_t listed = store::listMessageFiles(root / "Cold").size();
  std::printf("directory listing of %zu message files: %.1f ms\n", listed, milliseconds(timer));

  StallProbe probe;
  probe.start();
  timer.restart();
  pane.showFolder(root / "Cold", "Cold");
  std::printf("folder without cache.xml: %.0f ms to list %d rows; longest event-loop gap %lld ms\n",
              milliseconds(timer), pane.model().rowCount(), static_cast<long long>(probe.stop()));

  probe.start();
  timer.restart();
  pane.findChild<QLineEdit*>("txtSearchString")->setText("invoice");
  QEventLoop wait;
  QObject::connect(&pane, &MessageListPane::finished, &wait, &QEventLoop::quit);
  wait.exec();
  std::printf(
      "search of every header for \"invoice\": %.0f ms (with the 400 ms wait) for %d rows; longest gap %lld ms\n",
      milliseconds(timer), pane.model().rowCount(), static_cast<long long>(probe.stop()));
  return 0;
}
