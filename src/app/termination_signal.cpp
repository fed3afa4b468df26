#include "app/termination_signal.h"

#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace vonel {
namespace {

#ifdef Q_OS_UNIX
// The signal handler may only write to a descriptor; the event loop reads the other end.
int signalPipe[2] = {-1, -1};

void onTerm(int) {
  const char byte = 1;
  [[maybe_unused]] const auto written = ::write(signalPipe[0], &byte, 1);
}
#endif

}  // namespace

TerminationSignal::TerminationSignal(QObject* parent) : QObject(parent) {
#ifdef Q_OS_UNIX
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0) return;
  notifier_ = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, &TerminationSignal::onNotified);
  struct sigaction action {};
  action.sa_handler = onTerm;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGTERM, &action, nullptr);
#endif
}

TerminationSignal::~TerminationSignal() {
#ifdef Q_OS_UNIX
  if (notifier_) {
    std::signal(SIGTERM, SIG_DFL);
    ::close(signalPipe[0]);
    ::close(signalPipe[1]);
    signalPipe[0] = signalPipe[1] = -1;
  }
#endif
}

void TerminationSignal::onNotified() {
#ifdef Q_OS_UNIX
  char byte = 0;
  [[maybe_unused]] const auto got = ::read(signalPipe[1], &byte, 1);
#endif
  emit received();
}

}  // namespace vonel
