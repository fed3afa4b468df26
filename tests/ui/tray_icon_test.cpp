#include <QMenu>
#include <QPainter>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QtTest>

#include "ui/pictures.h"
#include "ui/scanner/tray_icon.h"

using namespace vonel;

namespace {

QSystemTrayIcon* systemIcon(const TrayIcon& tray) { return tray.findChild<QSystemTrayIcon*>("TrayIcon"); }

bool shows(const TrayIcon& tray, const QString& picture) {
  return systemIcon(tray)->icon().pixmap(22).toImage() == pictures::icon(picture).pixmap(22).toImage();
}

}  // namespace

class TrayIconTest : public QObject {
  Q_OBJECT

 private slots:
  void menuHasShowScanAndExit() {
    TrayIcon tray;
    const QMenu* menu = tray.menu();
    QCOMPARE(menu->objectName(), QString("mnuTray"));
    QCOMPARE(systemIcon(tray)->contextMenu(), menu);
    QStringList texts;
    for (const QAction* action : menu->actions()) {
      if (!action->isSeparator()) texts << action->objectName() + "=" + action->text();
    }
    QCOMPARE(texts, QStringList({"mnuShow=Show", "mnuScan=Scan", "mnuExit=Exit"}));
  }

  void menuChoicesAndClicksAreReported() {
    TrayIcon tray;
    QSignalSpy show(&tray, &TrayIcon::showRequested);
    QSignalSpy scan(&tray, &TrayIcon::scanRequested);
    QSignalSpy exit(&tray, &TrayIcon::exitRequested);
    tray.menu()->findChild<QAction*>("mnuShow")->trigger();
    tray.menu()->findChild<QAction*>("mnuScan")->trigger();
    tray.menu()->findChild<QAction*>("mnuExit")->trigger();
    QCOMPARE(show.size(), 1);
    QCOMPARE(scan.size(), 1);
    QCOMPARE(exit.size(), 1);

    emit systemIcon(tray)->activated(QSystemTrayIcon::DoubleClick);
    emit systemIcon(tray)->activated(QSystemTrayIcon::Trigger);
    emit systemIcon(tray)->activated(QSystemTrayIcon::Context);  // the menu, not the window
    emit systemIcon(tray)->activated(QSystemTrayIcon::MiddleClick);
    QCOMPARE(show.size(), 3);
  }

  void picturesAndTipAreShownAsTold() {
    TrayIcon tray;
    QVERIFY(shows(tray, "tray_large_s"));
    tray.show("Vonel by Tessarine Software");
    QCOMPARE(systemIcon(tray)->toolTip(), QString("Vonel by Tessarine Software"));

    tray.showPicture(TrayPicture::SmallS, "Vonel - Home - 2 message(s)");
    QVERIFY(shows(tray, "tray_small_s"));
    QCOMPARE(systemIcon(tray)->toolTip(), QString("Vonel - Home - 2 message(s)"));
    tray.showPicture(TrayPicture::Error, "Vonel - 0 message(s)");
    QVERIFY(shows(tray, "tray_error"));
    tray.showPicture(TrayPicture::LargeS, "Vonel - 0 message(s)");
    QVERIFY(shows(tray, "tray_large_s"));

    tray.hide();
    QVERIFY(!systemIcon(tray)->isVisible());
  }

  // Under a desktop with a tray (xvfb-run with trayer) the icon really shows.
  void showsInARealTrayAndScreenshotsItsMenu() {
    TrayIcon tray;
    qInfo() << "system tray available:" << TrayIcon::available();
    if (TrayIcon::available()) {
      tray.show("Vonel - Home");
      QVERIFY(systemIcon(tray)->isVisible());
      QVERIFY(!systemIcon(tray)->geometry().isEmpty() || QGuiApplication::platformName() != "xcb");
    }
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) return;
    tray.menu()->popup(QPoint(100, 100));
    QVERIFY(QTest::qWaitForWindowExposed(tray.menu()));
    tray.menu()->grab().save(shots + "/tray-menu.png");
    tray.menu()->close();
    if (!TrayIcon::available()) return;
    // The three pictures as the tray shows them, four times enlarged.
    QPixmap strip;
    for (const TrayPicture picture : {TrayPicture::LargeS, TrayPicture::SmallS, TrayPicture::Error}) {
      tray.showPicture(picture, "Vonel - Home - 0 message(s)");
      QTest::qWait(300);
      const QRect where = systemIcon(tray)->geometry().adjusted(-4, -4, 4, 4);
      const QPixmap one = QGuiApplication::primaryScreen()->grabWindow(0, where.x(), where.y(), where.width(), where.height());
      QPixmap joined(strip.width() + one.width(), one.height());
      QPainter painter(&joined);
      painter.drawPixmap(0, 0, strip);
      painter.drawPixmap(strip.width(), 0, one);
      painter.end();
      strip = joined;
    }
    strip.scaled(strip.size() * 4).save(shots + "/tray-icon-in-trayer.png");
  }
};

QTEST_MAIN(TrayIconTest)
#include "tray_icon_test.moc"
