#include <QLabel>
#include <QScreen>
#include <QtTest>

#include "ui/scanner/splash_window.h"

using namespace vonel;

class SplashWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void showsThePictureAndEachStageCentred() {
    SplashWindow splash;
    QCOMPARE(splash.objectName(), QString("frmSplash"));
    QVERIFY(splash.windowFlags() & Qt::FramelessWindowHint);
    splash.show();
    QVERIFY(QTest::qWaitForWindowExposed(&splash));

    const auto* picture = splash.findChild<QLabel*>("Picture1");
    QVERIFY(picture && !picture->pixmap().isNull());
    const QImage drawn = picture->pixmap().toImage();
    QCOMPARE(qAlpha(drawn.pixel(drawn.rect().center())), 255);  // the SVG was found and drawn
    // Drawn at the screen's own density, not scaled up from a smaller picture.
    QCOMPARE(picture->pixmap().devicePixelRatio(), splash.devicePixelRatioF());
    QVERIFY(!picture->accessibleName().isEmpty());

    const auto* status = splash.findChild<QLabel*>("lblStatus");
    splash.showStatus("Loading settings");
    QCOMPARE(status->text(), QString("Loading settings"));
    const QSize size = splash.size();
    splash.showStatus("Could not start reminders");
    QCOMPARE(splash.size(), size);

    const QPoint offCentre = splash.frameGeometry().center() - splash.screen()->availableGeometry().center();
    QVERIFY(offCentre.manhattanLength() <= 2);

    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
      splash.showStatus("Loading Contacts");
      splash.grab().save(shots + "/splash.png");
    }
  }
};

QTEST_MAIN(SplashWindowTest)
#include "splash_window_test.moc"
