#include "ui/guarded_application.h"

#include <cstdio>

#include "core/context/app_context.h"
#include "core/log/app_error.h"
#include "ui/errors/error_report_window.h"

namespace vonel {

GuardedApplication::GuardedApplication(int& argc, char** argv) : QApplication(argc, argv) {}

bool GuardedApplication::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    onUncaught(AppError::from(std::current_exception()).description());
  }
  return false;
}

void GuardedApplication::onUncaught(const std::string& what) {
  const std::string line = "Uncaught exception: " + what;
  if (context_ == nullptr) {
    std::fprintf(stderr, "vonel: %s\n", line.c_str());
    return;
  }
  context_->log.logEvent(line);
  if (reporting_) return;
  reporting_ = true;
  showErrorReportWindow(*context_, line, {}, activeWindow());
  reporting_ = false;
}

}  // namespace vonel
