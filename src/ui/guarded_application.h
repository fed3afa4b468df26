#pragma once
// The application object of the windowed program. An exception that escapes
// an event handler would end the program with the user's work in it; here it
// is logged and shown in the error report window, and the program goes on.
#include <QApplication>

namespace vonel {

class AppContext;

class GuardedApplication final : public QApplication {
  Q_OBJECT

 public:
  GuardedApplication(int& argc, char** argv);

  // Where the log and the error report window come from; before it is set,
  // an escaped exception is only written to the standard error.
  void setContext(AppContext* context) { context_ = context; }

  bool notify(QObject* receiver, QEvent* event) override;

 private:
  void onUncaught(const std::string& what);

  AppContext* context_ = nullptr;
  // An error shown while the window for another one is open is only logged:
  // one window per failure would bury the user.
  bool reporting_ = false;
};

}  // namespace vonel
