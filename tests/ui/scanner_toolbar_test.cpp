#include <QMenu>
#include <QPainter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include "app/account_menu_entries.h"
#include "core/files/atomic_file.h"
#include "ui/pictures.h"
#include "ui/scanner/scanner_toolbar.h"

using namespace vonel;

namespace {

// The accounts of a settings file as the toolbar's menus get them.
struct AccountsOf {
  explicit AccountsOf(std::string_view settingsFile) {
    const std::filesystem::path file = std::filesystem::path(dir.path().toStdString()) / "Vonel.ini";
    files::writeTextFile(file, settingsFile);
    settings.loadSettings(file);
  }
  std::vector<AccountMenuEntry> entries() const { return accountMenuEntries(settings); }

  QTemporaryDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  ScriptedPrompt prompt;
  Log log{clock, AppInfo{"Vonel", "1", "os", "/", dir.path().toStdString()}};
  SettingsStore settings{log, prompt};
};

// Each entry of a menu as "objectName=text", separators as "|text".
QStringList entries(const QMenu* menu) {
  QStringList out;
  for (const QAction* action : menu->actions()) {
    out << (action->isSeparator() ? "|" + action->text() : action->objectName() + "=" + action->text());
  }
  return out;
}

QMenu* menuOf(const ScannerToolbar& toolbar, const char* key) { return toolbar.findChild<QMenu*>(QString(key) + "Menu"); }

bool samePicture(const QIcon& icon, const QString& picture) {
  return icon.pixmap(24).toImage() == pictures::icon(picture).pixmap(24).toImage();
}

}  // namespace

class ScannerToolbarTest : public QObject {
  Q_OBJECT

 private slots:
  void accountsAreNamedByTitleElseByNumberAndUserName() {
    AccountsOf accounts(
        "REPLYADDRESS0,me@example.org\r\nTITLE0,Caf\xE9\r\n"
        "TITLE1,Unused\r\nUNAME1,nobody\r\n"
        "REPLYADDRESS2,bob@example.org\r\nUNAME2,bob\r\n"
        "REPLYADDRESS3,anon@example.org\r\n"
        "REPLYADDRESS4,carol@example.org\r\nTITLE4,   \r\nUNAME4,carol\r\n"
        "REPLYADDRESS19,last@example.org\r\nTITLE19,Last\r\n");
    const std::vector<AccountMenuEntry> entries = accounts.entries();
    QCOMPARE(entries.size(), 5u);
    const std::vector<std::pair<int, std::string>> expected{
        {0, "Caf\xE9"}, {2, "Account 3 bob"}, {3, "Account 4"}, {4, "Account 5 carol"}, {19, "Last"}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
      QCOMPARE(entries[i].index, expected[i].first);
      QCOMPARE(entries[i].name, expected[i].second);
    }
    QVERIFY(AccountsOf("TITLE0,Home\r\n").entries().empty());
  }

  void buttonsCarryTheirKeysCaptionsAndVisibility() {
    ScannerToolbar toolbar;
    toolbar.resize(2000, toolbar.sizeHint().height());  // no button in the overflow
    toolbar.show();
    QCOMPARE(toolbar.objectName(), QString("Toolbar1"));
    for (const char* key : {"sendrcvdel", "cms", "brd", "newmail", "upanddown", "mailer", "scan", "delete", "filters",
                            "settings", "help", "stop", "close", "contacts"}) {
      const QToolButton* button = toolbar.findChild<QToolButton*>(key);
      QVERIFY2(button && toolbar.button(key) == button, key);
      QVERIFY2(!button->text().isEmpty() && button->accessibleName() == button->text(), key);
      QVERIFY2(!button->icon().pixmap(24).isNull(), key);  // the picture is in the resources
      QCOMPARE(button->isVisible(), QByteArray(key) != "brd" && QByteArray(key) != "cms");
    }
    QCOMPARE(toolbar.button("upanddown")->text(), QString("Send/Receive"));
    QCOMPARE(toolbar.button("nosuchkey"), nullptr);

    // The toolbar lays its buttons out again on its next turn of the event loop.
    toolbar.showTicketButton(true);
    QTRY_VERIFY(toolbar.button("cms")->isVisible());
    toolbar.showTicketButton(false);
    QTRY_VERIFY(!toolbar.button("cms")->isVisible());

    toolbar.setWindowAvailable("contacts", false);
    QVERIFY(!toolbar.button("contacts")->isEnabled());
    toolbar.setWindowAvailable("contacts", true);
    QVERIFY(toolbar.button("contacts")->isEnabled());
  }

  void aRunningPassSwapsSendReceiveForStop() {
    ScannerToolbar toolbar;
    QToolButton* upAndDown = toolbar.button("upanddown");
    QVERIFY(samePicture(upAndDown->icon(), "sendreceive"));
    QVERIFY(!toolbar.button("stop")->isEnabled());
    const QString idleDescription = upAndDown->accessibleDescription();

    toolbar.showPassRunning(true);
    QVERIFY(samePicture(upAndDown->icon(), "stop"));
    QVERIFY(toolbar.button("stop")->isEnabled());
    QVERIFY(upAndDown->accessibleDescription() != idleDescription);
    QCOMPARE(upAndDown->text(), QString("Send/Receive"));

    toolbar.showPassRunning(false);
    QVERIFY(samePicture(upAndDown->icon(), "sendreceive"));
    QCOMPARE(upAndDown->accessibleDescription(), idleDescription);
  }

  void accountMenusFollowTheTableAndARebuildReplacesThem() {
    ScannerToolbar toolbar;
    QVERIFY(!toolbar.button("scan")->menu());  // no accounts, no arrow
    QCOMPARE(entries(menuOf(toolbar, "upanddown")),
             QStringList({"upload=Send Outbox", "download=Download Only",
                          "updownwithclear=Download, Delete Spam and Send"}));

    toolbar.setupAccountMenus({{0, "Home"}, {3, "Account 4"}});
    QCOMPARE(entries(menuOf(toolbar, "scan")), QStringList({"Account0=Scan: Home", "Account3=Scan: Account 4"}));
    QCOMPARE(entries(menuOf(toolbar, "delete")),
             QStringList({"Account0=Scan and Delete: Home", "Account3=Scan and Delete: Account 4", "|----",
                          "DELALL0=Delete ALL from: Home", "DELALL3=Delete ALL from: Account 4"}));
    QCOMPARE(entries(menuOf(toolbar, "sendrcvdel")),
             QStringList({"Account0=Download Mail and Delete Spam: Home",
                          "Account3=Download Mail and Delete Spam: Account 4"}));
    QCOMPARE(entries(menuOf(toolbar, "upanddown")),
             QStringList({"upload=Send Outbox", "download=Download Only",
                          "updownwithclear=Download, Delete Spam and Send", "|----", "DLM0=Download Mail from Home",
                          "DLM3=Download Mail from Account 4"}));
    QCOMPARE(toolbar.button("scan")->menu(), menuOf(toolbar, "scan"));
    QCOMPARE(toolbar.button("scan")->popupMode(), QToolButton::MenuButtonPopup);

    toolbar.setupAccountMenus({{1, "Caf\xE9"}});
    QCOMPARE(entries(menuOf(toolbar, "scan")), QStringList({QString::fromUtf8("Account1=Scan: Café")}));
    QCOMPARE(entries(menuOf(toolbar, "upanddown")).size(), 5);
    QCOMPARE(toolbar.findChildren<QAction*>("DLM0").size(), 0);

    toolbar.setupAccountMenus({});
    QVERIFY(!toolbar.button("scan")->menu());
    QCOMPARE(entries(menuOf(toolbar, "upanddown")).size(), 3);
    QCOMPARE(entries(menuOf(toolbar, "close")), QStringList({"quit=Quit"}));
    QCOMPARE(entries(menuOf(toolbar, "filters")),
             QStringList({"localfilters=Local Filters", "serverfilters=Server Filters",
                          "reinforce=Reinforce from the List"}));
    QCOMPARE(entries(menuOf(toolbar, "settings")), QStringList({"checkupdate=Check for Update"}));
  }

  void clicksAndMenuChoicesAreReportedByKey() {
    ScannerToolbar toolbar;
    toolbar.setupAccountMenus({{0, "Home"}, {3, "Work"}});
    toolbar.show();
    QSignalSpy clicked(&toolbar, &ScannerToolbar::buttonClicked);
    QSignalSpy chosen(&toolbar, &ScannerToolbar::menuEntryChosen);

    toolbar.button("newmail")->click();
    QTest::keyClick(toolbar.button("scan"), Qt::Key_Space);
    QCOMPARE(clicked.size(), 2);
    QCOMPARE(clicked[0][0].toString(), QString("newmail"));
    QCOMPARE(clicked[1][0].toString(), QString("scan"));

    toolbar.findChild<QAction*>("DELALL3")->trigger();
    menuOf(toolbar, "close")->findChild<QAction*>("quit")->trigger();
    QCOMPARE(chosen.size(), 2);
    QCOMPARE(chosen[0], QVariantList({"delete", "DELALL3"}));
    QCOMPARE(chosen[1], QVariantList({"close", "quit"}));
  }

  void theDownKeyOpensAButtonsMenu() {
    ScannerToolbar toolbar;
    toolbar.setupAccountMenus({{0, "Home"}});
    toolbar.show();
    QMenu* menu = menuOf(toolbar, "upanddown");
    bool opened = false;
    QTimer::singleShot(0, menu, [&] {
      opened = menu->isVisible();
      menu->close();
    });
    QTest::keyClick(toolbar.button("upanddown"), Qt::Key_Down);
    QVERIFY(opened);
  }

  void screenshotWithAnOpenMenu() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    ScannerToolbar toolbar;
    toolbar.setupAccountMenus({{0, "Home"}, {1, "Work - office@example.org"}, {2, "Account 3 bob"}});
    toolbar.showTicketButton(true);
    toolbar.resize(toolbar.sizeHint());
    toolbar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&toolbar));
    QMenu* menu = menuOf(toolbar, "delete");
    const QToolButton* button = toolbar.button("delete");
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    QVERIFY(QTest::qWaitForWindowExposed(menu));

    const QPixmap bar = toolbar.grab();
    const QPixmap open = menu->grab();
    const QPoint at = toolbar.mapFromGlobal(menu->pos());
    QPixmap shot(qMax(bar.width(), at.x() + open.width()), at.y() + open.height());
    shot.fill(Qt::white);
    QPainter painter(&shot);
    painter.drawPixmap(0, 0, bar);
    painter.drawPixmap(at, open);
    painter.end();
    shot.save(shots + "/toolbar-menu.png");
    menu->close();

    toolbar.showPassRunning(true);
    toolbar.setIconSize(QSize(16, 16));
    toolbar.resize(toolbar.sizeHint());
    toolbar.grab().save(shots + "/toolbar-16px-pass-running.png");
  }
};

QTEST_MAIN(ScannerToolbarTest)
#include "scanner_toolbar_test.moc"
