#pragma once
// The window `frmSplash` that shows while the program starts: the program's
// picture `Picture1` and the stage it has reached, `lblStatus`.
#include <QString>
#include <QWidget>

class QLabel;

namespace vonel {

class SplashWindow final : public QWidget {
  Q_OBJECT

 public:
  explicit SplashWindow(QWidget* parent = nullptr);

  // Shows the stage and paints it now: start-up doesn't return to the event
  // loop between stages.
  void showStatus(const QString& text);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void centreOnScreen();

  QLabel* picture_;
  QLabel* status_;
};

}  // namespace vonel
