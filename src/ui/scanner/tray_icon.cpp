#include "ui/scanner/tray_icon.h"

#include <QMenu>

#include "ui/pictures.h"

namespace vonel {
namespace {

QString pictureName(TrayPicture picture) {
  switch (picture) {
    case TrayPicture::LargeS: return QStringLiteral("tray_large_s");
    case TrayPicture::SmallS: return QStringLiteral("tray_small_s");
    case TrayPicture::Error: return QStringLiteral("tray_error");
  }
  return {};
}

}  // namespace

TrayIcon::TrayIcon(QObject* parent)
    : QObject(parent),
      pictures_{pictures::icon(pictureName(TrayPicture::LargeS)), pictures::icon(pictureName(TrayPicture::SmallS)),
                pictures::icon(pictureName(TrayPicture::Error))},
      menu_(std::make_unique<QMenu>()),
      icon_(new QSystemTrayIcon(picture(TrayPicture::LargeS), this)) {
  icon_->setObjectName("TrayIcon");
  menu_->setObjectName("mnuTray");
  menu_->setAccessibleName("Vonel");
  auto addEntry = [this](const char* name, const QString& caption, void (TrayIcon::*signal)()) {
    QAction* action = menu_->addAction(caption);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, signal);
  };
  addEntry("mnuShow", "Show", &TrayIcon::showRequested);
  addEntry("mnuScan", "Scan", &TrayIcon::scanRequested);
  menu_->addSeparator();
  addEntry("mnuExit", "Exit", &TrayIcon::exitRequested);
  icon_->setContextMenu(menu_.get());
  connect(icon_, &QSystemTrayIcon::activated, this, &TrayIcon::onActivated);
}

TrayIcon::~TrayIcon() { icon_->setContextMenu(nullptr); }

bool TrayIcon::available() { return QSystemTrayIcon::isSystemTrayAvailable(); }

void TrayIcon::show(const QString& tip) {
  icon_->setToolTip(tip);
  icon_->show();
}

void TrayIcon::hide() { icon_->hide(); }

void TrayIcon::showPicture(TrayPicture picture, const QString& tip) {
  icon_->setIcon(this->picture(picture));
  icon_->setToolTip(tip);
}

void TrayIcon::showBalloon(const QString& text, QSystemTrayIcon::MessageIcon icon) {
  icon_->showMessage(QStringLiteral("Vonel"), text, icon);
}

void TrayIcon::onActivated(QSystemTrayIcon::ActivationReason reason) {
  if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) emit showRequested();
}

}  // namespace vonel
