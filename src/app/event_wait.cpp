#include "app/event_wait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace vonel {

void processEventsOnce() { QCoreApplication::processEvents(); }

void waitWhileEventsRun(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace vonel
