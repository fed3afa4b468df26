#pragma once
// Turns the system's request to stop (SIGTERM) into a Qt signal, so the
// program can leave in order, saving what it holds, instead of dying mid-write.
#include <QObject>

class QSocketNotifier;

namespace vonel {

class TerminationSignal final : public QObject {
  Q_OBJECT

 public:
  explicit TerminationSignal(QObject* parent = nullptr);
  ~TerminationSignal() override;

 signals:
  void received();

 private:
  void onNotified();

  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace vonel
