#include "ui/scanner/splash_window.h"

#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

#include "ui/pictures.h"

namespace vonel {
namespace {

constexpr int kPictureSize = 96;

}  // namespace

SplashWindow::SplashWindow(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint), picture_(new QLabel(this)), status_(new QLabel(this)) {
  setObjectName("frmSplash");
  setWindowTitle("Vonel");
  setAttribute(Qt::WA_StyledBackground);
  setStyleSheet("#frmSplash { background: #ffffff; border: 1px solid #20406f; }"
                "#lblTitle { color: #20406f; }"
                "#lblStatus { color: #404040; }");

  picture_->setObjectName("Picture1");
  picture_->setAccessibleName("Vonel");
  picture_->setAlignment(Qt::AlignCenter);
  auto* title = new QLabel("Vonel", this);
  title->setObjectName("lblTitle");
  title->setAlignment(Qt::AlignCenter);
  QFont titleFont = title->font();
  titleFont.setPointSizeF(titleFont.pointSizeF() * 2);
  titleFont.setBold(true);
  title->setFont(titleFont);
  status_->setObjectName("lblStatus");
  status_->setAlignment(Qt::AlignCenter);
  // Long enough for the longest stage ("Could not start reminders") without the window jumping.
  status_->setMinimumWidth(status_->fontMetrics().horizontalAdvance(QString(40, QChar('x'))));

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(32, 24, 32, 20);
  layout->setSpacing(10);
  layout->addWidget(picture_);
  layout->addWidget(title);
  layout->addWidget(status_);
}

void SplashWindow::showStatus(const QString& text) {
  status_->setText(text);
  status_->repaint();
}

void SplashWindow::showEvent(QShowEvent* event) {
  // Drawn for the screen it shows on, so it is sharp at any scale.
  picture_->setPixmap(pictures::rendered("vonel", QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  centreOnScreen();
  QWidget::showEvent(event);
}

void SplashWindow::centreOnScreen() {
  adjustSize();
  const QRect area = screen()->availableGeometry();
  move(area.center() - rect().center());
}

}  // namespace vonel
