#pragma once
// The icon in the system tray `TrayIcon` and its menu `mnuTray`. It shows what
// it is told (TrayFlasher decides the picture and the tip) and reports the
// user's choices.
#include <QObject>
#include <QString>
#include <QSystemTrayIcon>
#include <array>
#include <memory>

#include "app/app_windows.h"

class QMenu;

namespace vonel {

class TrayIcon final : public QObject {
  Q_OBJECT

 public:
  explicit TrayIcon(QObject* parent = nullptr);
  ~TrayIcon() override;

  // False when the desktop has no tray; the window must then stay reachable itself.
  static bool available();
  void show(const QString& tip);
  void hide();
  void showPicture(TrayPicture picture, const QString& tip);
  void showBalloon(const QString& text, QSystemTrayIcon::MessageIcon icon = QSystemTrayIcon::Information);
  QMenu* menu() const { return menu_.get(); }

 signals:
  // A click or double click on the icon, or "Show".
  void showRequested();
  void scanRequested();
  void exitRequested();

 private:
  void onActivated(QSystemTrayIcon::ActivationReason reason);
  const QIcon& picture(TrayPicture picture) const { return pictures_.at(static_cast<std::size_t>(picture)); }

  // Made once: the picture swaps twice a second during a pass.
  std::array<QIcon, 3> pictures_;
  std::unique_ptr<QMenu> menu_;  // a QMenu can't be the child of a plain QObject
  QSystemTrayIcon* icon_;
};

}  // namespace vonel
