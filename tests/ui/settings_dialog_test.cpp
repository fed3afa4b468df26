#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "app/headless_windows.h"
#include "app/mail_controller.h"
#include "app/terminal_password.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/settings/scramble.h"
#include "core/text/strings.h"
#include "ui/settings/settings_dialog.h"

using namespace vonel;

namespace {

// A home as start-up leaves it: both settings files read, the folders made.
struct Home {
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
  ScriptedPrompt prompt;
  std::unique_ptr<AppContext> context;

  explicit Home(const std::string& settings) {
    files::writeTextFile(home / "Vonel.ini", settings);
    context = std::make_unique<AppContext>(clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", home});
    context->pathSettings.loadSettings(context->pathsFile());
    context->settings.loadSettings(context->settingsFile());
    context->folders.readMessageFolder();
    context->folders.readFilterFolder();
    context->folders.readDataFolder();
  }
  std::string settingsFile() const { return files::loadTextFile(home / "Vonel.ini"); }
  std::string root() const { return home.string(); }
};

const std::string kSettings = "REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nSERVER0,pop.example.org\r\nUNAME0,me\r\n"
                              "PWD0," + encrypt("secret") + "\r\nCHECK0,-1 \r\nSCANONSTART, 1 \r\nDELAY, 300 \r\n"
                              "MAINWIDTH, 7668 \r\nSTARTMIN,0\r\n";

template <typename T>
T* box(const SettingsDialog& dialog, const char* name) {
  T* found = dialog.findChild<T*>(name);
  if (!found) qFatal("no control %s", name);
  return found;
}

QLineEdit* edit(const SettingsDialog& dialog, const char* name) { return box<QLineEdit>(dialog, name); }

void setAges(const SettingsDialog& dialog, const char* a, const char* b, const char* c) {
  edit(dialog, "txtAge_0")->setText(a);
  edit(dialog, "txtAge_1")->setText(b);
  edit(dialog, "txtAge_2")->setText(c);
}

// OK by its button, as a user presses it.
bool pressOk(SettingsDialog& dialog) {
  dialog.show();
  box<QAbstractButton>(dialog, "cmdOK")->click();
  return dialog.result() == QDialog::Accepted && !dialog.isVisible();
}

class CountingWindows : public HeadlessWindows {
 public:
  void setupMenus() override { ++menusSetUp; }
  int menusSetUp = 0;
};

}  // namespace

class SettingsDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void showsTheSettingsAndEveryAccount() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    QCOMPARE(dialog.objectName(), QString("frmSettings"));
    auto* accounts = box<QComboBox>(dialog, "cmbAccount");
    QCOMPARE(accounts->count(), 20);
    QCOMPARE(accounts->itemText(0), QString("1 - Home"));
    QCOMPARE(accounts->itemText(19), QString("20 - Account 20"));
    QCOMPARE(edit(dialog, "txtServer")->text(), QString("pop.example.org"));
    QCOMPARE(edit(dialog, "txtPassword")->text(), QString("secret"));
    QCOMPARE(edit(dialog, "txtPOPPort")->text(), QString("110"));
    QVERIFY(box<QCheckBox>(dialog, "chkUseServer")->isChecked());
    QVERIFY(!box<QCheckBox>(dialog, "chkStopAtLast")->isChecked());  // never written
    QCOMPARE(edit(dialog, "txtSeconds")->text(), QString("300"));
    QCOMPARE(edit(dialog, "txtMessageStore")->text(), QString::fromStdString(home.root() + "/Messages"));
    QVERIFY(box<QPlainTextEdit>(dialog, "txtSignature")->toPlainText().isEmpty());
    QCOMPARE(box<QListWidget>(dialog, "lstLanguages")->currentItem()->text(), QString("English"));
    QVERIFY(box<QRadioButton>(dialog, "optWindow_0")->isChecked());

    // Every control has a name on the accessibility bus.
    for (QWidget* control : dialog.findChildren<QWidget*>()) {
      const bool named = qobject_cast<QLineEdit*>(control) || qobject_cast<QComboBox*>(control) ||
                         qobject_cast<QListWidget*>(control);
      // An editable combo box's own line edit speaks through the combo box.
      if (named && !qobject_cast<QComboBox*>(control->parentWidget())) {
        QVERIFY2(!control->accessibleName().isEmpty(), qPrintable(control->objectName()));
      }
      const bool captioned = qobject_cast<QCheckBox*>(control) || qobject_cast<QRadioButton*>(control) ||
                             qobject_cast<QPushButton*>(control);
      if (captioned) QVERIFY2(!qobject_cast<QAbstractButton*>(control)->text().isEmpty(), qPrintable(control->objectName()));
    }
  }

  void aPickedAccountKeepsTheEditsOfTheLastOne() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    auto* accounts = box<QComboBox>(dialog, "cmbAccount");
    accounts->setCurrentIndex(2);
    QTest::keyClicks(edit(dialog, "txtTitle"), "Work");
    QCOMPARE(accounts->itemText(2), QString("3 - Account 3Work"));
    edit(dialog, "txtReplyAddress")->setText("work@example.org");
    box<QCheckBox>(dialog, "chkSMTPAuth")->setChecked(true);
    QVERIFY(edit(dialog, "txtSMTPUser")->isEnabled());
    accounts->setCurrentIndex(0);
    QVERIFY(!edit(dialog, "txtSMTPUser")->isEnabled());
    QCOMPARE(edit(dialog, "txtTitle")->text(), QString("Home"));
    accounts->setCurrentIndex(2);
    QCOMPARE(edit(dialog, "txtReplyAddress")->text(), QString("work@example.org"));
    QVERIFY(pressOk(dialog));
    const std::string file = home.settingsFile();
    QVERIFY(file.find("TITLE2,Account 3Work\r\n") != std::string::npos);
    QVERIFY(file.find("SMTPAUTH2, 1 \r\nSMTPUNAME2,\r\n") != std::string::npos);
  }

  void scanAndDownloadAtStartExcludeEachOther() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    auto* scan = box<QCheckBox>(dialog, "chkScanOnStartup");
    auto* retrieve = box<QCheckBox>(dialog, "chkRetrieveOnStartup");
    QVERIFY(scan->isChecked());
    retrieve->setChecked(true);
    QVERIFY(!scan->isChecked());
    scan->setChecked(true);
    QVERIFY(!retrieve->isChecked());
  }

  void onlyTheFirstFailedCheckIsShown() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    edit(dialog, "txtReplyAddress")->setText("nobody");
    setAges(dialog, "14", "30", "1");
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.questions, 1);
    QCOMPARE(home.prompt.lastQuestion, std::string("Please enter a valid email for the reply address"));

    edit(dialog, "txtReplyAddress")->setText("me@example.org");
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.lastQuestion, std::string("Age 1 is less than Age 2"));
    setAges(dialog, "30", "1", "14");
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.lastQuestion, std::string("Age 2 is less than Age 3"));
    setAges(dialog, "30", "14", "1");
    edit(dialog, "txtTimeout")->setText("1000");
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.lastQuestion, std::string("Timeout must be 0 to 999 seconds"));
    QCOMPARE(home.settingsFile(), kSettings);

    edit(dialog, "txtTimeout")->setText("999");
    QVERIFY(pressOk(dialog));
    QCOMPARE(home.prompt.questions, 4);
    QVERIFY(home.settingsFile().find("\r\nMAILTIMEOUT,999\r\n") != std::string::npos);
  }

  void aStoreThatCantBeMadeKeepsTheDialogOpen() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    edit(dialog, "txtMessageStore")->setText("/dev/null/Mail");  // a mount that isn't there
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.lastQuestion, std::string("Please specify a valid path to your message store folder"));
    edit(dialog, "txtMessageStore")->clear();
    QVERIFY(!pressOk(dialog));
    QCOMPARE(home.prompt.lastQuestion, std::string("Please specify a message store location."));
    QCOMPARE(home.settingsFile(), kSettings);
  }

  void badFoldersAreResetAndTheDialogCloses() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    edit(dialog, "txtMessageStore")->setText(QString::fromStdString(home.root() + "/Store/"));
    edit(dialog, "txtSpamArchive")->setText("/dev/null/spam");
    edit(dialog, "txtFilterFolder")->setText("/dev/null/filters");
    edit(dialog, "txtDataFolder")->setText("/dev/null/data");
    QVERIFY(pressOk(dialog));
    QCOMPARE(home.prompt.questions, 3);
    QCOMPARE(home.prompt.lastQuestion, "Invalid data path. Resetting to " + home.root());
    QCOMPARE(home.context->folders.messageFolderPath, home.home / "Store");
    QVERIFY(std::filesystem::is_directory(home.home / "Store" / "Inbox"));
    QCOMPARE(files::loadTextFile(home.home / "Paths.ini"),
             "MESSAGEFOLDER," + home.root() + "/Store\r\nFILTERFOLDER," + home.root() + "\r\nDATAFOLDER," +
                 home.root() + "\r\n");
    QVERIFY(home.settingsFile().find("\r\nSPAMFOLDER," + home.root() + "/Store/SpamBayes\r\n") != std::string::npos);
  }

  void okWithNoChangeWritesTheGoldenFile() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    QVERIFY(pressOk(dialog));
    const std::string golden = files::loadTextFile(std::filesystem::path(VONEL_SOURCE_DIR) / "tests/data/settings/Vonel.ini");
    QCOMPARE(text::replaceAll(home.settingsFile(), home.root(), "@HOME@"), golden);
    // The language is set, but reaches the disk only with the next save.
    QCOMPARE(home.context->settings.get("langID").text(), std::string("English"));
    QVERIFY(golden.find("LANGID") == std::string::npos);
  }

  void cancelLeavesTheFileAsItWas() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    dialog.show();
    edit(dialog, "txtTitle")->setText("Changed");
    box<QCheckBox>(dialog, "chkAudio")->setChecked(true);
    edit(dialog, "txtMessageStore")->setText(QString::fromStdString(home.root() + "/Other"));
    box<QAbstractButton>(dialog, "cmdCancel")->click();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(home.settingsFile(), kSettings);
    QVERIFY(!home.context->settings.isSettingPresent("AUDIO"));
    QVERIFY(!std::filesystem::exists(home.home / "Paths.ini"));
  }

  // The default signature lives in "sig.txt" of the store root, with the program's line ends.
  void theSignatureIsKeptInTheStoreRoot() {
    Home home(kSettings);
    const auto file = home.home / "Messages" / "sig.txt";
    {
      SettingsDialog dialog(*home.context);
      QVERIFY(pressOk(dialog));
      QVERIFY(!std::filesystem::exists(file));
    }
    SettingsDialog dialog(*home.context);
    box<QPlainTextEdit>(dialog, "txtSignature")->setPlainText("Jo\nExample Ltd");
    QVERIFY(pressOk(dialog));
    QCOMPARE(files::loadTextFile(file), std::string("Jo\r\nExample Ltd"));
    SettingsDialog again(*home.context);
    QCOMPARE(box<QPlainTextEdit>(again, "txtSignature")->toPlainText(), QString("Jo\nExample Ltd"));
  }

  // Sending scan commands ahead is on unless the user switches it off.
  void pipeliningIsWrittenOnceSwitchedOff() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    auto* pipelining = box<QCheckBox>(dialog, "chkPipelining");
    QVERIFY(pipelining->isChecked());
    pipelining->setChecked(false);
    QVERIFY(pressOk(dialog));
    QVERIFY(home.settingsFile().find("\r\nPOPPIPELINING0,") != std::string::npos);
    QVERIFY(home.settingsFile().find("\r\nPOPPIPELINING1,") == std::string::npos);
    QVERIFY(!readAccount(home.context->settings, 0, AccountReader::Session).pipelining);
  }

  // Choosing a security fills a port nobody typed, warns while a password
  // would go in plain text, and writes only the keys that left their defaults.
  void securityControlsFillPortsWarnAndWriteTheirKeys() {
    Home home(kSettings + "SMTPCERT0,smtp.example.org AB:CD\r\n");
    SettingsDialog dialog(*home.context);
    dialog.show();
    auto* popSecurity = box<QComboBox>(dialog, "cmbPOPSecurity");
    auto* smtpSecurity = box<QComboBox>(dialog, "cmbSMTPSecurity");
    auto* warning = box<QLabel>(dialog, "lblPlainWarning");
    auto* forget = box<QPushButton>(dialog, "cmdForgetCertificate");
    QCOMPARE(popSecurity->itemText(2), QString("STLS"));
    QCOMPARE(smtpSecurity->itemText(2), QString("STARTTLS"));
    QVERIFY(warning->isVisible());  // the POP3 password goes in plain text
    QVERIFY(forget->isEnabled());

    // Picked from the keyboard as a user picks it.
    popSecurity->setFocus();
    QTest::keyClick(popSecurity, Qt::Key_Down);
    QCOMPARE(popSecurity->currentText(), QString("TLS"));
    QCOMPARE(edit(dialog, "txtPOPPort")->text(), QString("995"));
    QVERIFY(!warning->isVisible());
    smtpSecurity->setFocus();
    QTest::keyClick(smtpSecurity, Qt::Key_Down);
    QTest::keyClick(smtpSecurity, Qt::Key_Down);
    QCOMPARE(edit(dialog, "txtSMTPPort")->text(), QString("587"));
    QVERIFY(box<QCheckBox>(dialog, "chkSMTPStandard")->isChecked());
    // A port the user typed stays.
    edit(dialog, "txtSMTPPort")->setText("2525");
    QTest::keyClick(smtpSecurity, Qt::Key_Up);
    QCOMPARE(edit(dialog, "txtSMTPPort")->text(), QString("2525"));
    QTest::keyClick(smtpSecurity, Qt::Key_Down);
    box<QCheckBox>(dialog, "chkSMTPAuth")->setChecked(true);
    QVERIFY(!warning->isVisible());
    forget->click();
    QVERIFY(!forget->isEnabled());
    QVERIFY(pressOk(dialog));

    const Account a = readAccount(home.context->settings, 0, AccountReader::Session);
    QCOMPARE(a.popSecurity, TransportSecurity::Tls);
    QCOMPARE(a.popPort, 995);
    QCOMPARE(a.smtpSecurity, TransportSecurity::Upgrade);
    QVERIFY(a.smtpStandard);
    const std::string file = home.settingsFile();
    QVERIFY(file.find("SMTPCERT0") == std::string::npos);
    QVERIFY(file.find("POPSECURITY1") == std::string::npos);
    QVERIFY(file.find("SMTPSTANDARD1") == std::string::npos);
  }

  void screenshotOfTheAccountTab() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Home home(kSettings + "SMTP0,smtp.example.org\r\nSMTPAuth0,1\r\nSMTPSECURITY0,2\r\nSMTPSTANDARD0,1\r\n"
                          "POPCERT0,pop.example.org AB:CD\r\n");
    SettingsDialog dialog(*home.context);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.grab().save(shots + "/tls-account-tab.png");
    box<QComboBox>(dialog, "cmbSMTPSecurity")->setCurrentIndex(0);
    box<QComboBox>(dialog, "cmbSMTPSecurity")->activated(0);
    dialog.grab().save(shots + "/tls-account-tab-plain-warning.png");
  }

  void startMinimisedIsTheOneBoxKeptAsText() {
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    box<QCheckBox>(dialog, "chkStartMinimised")->setChecked(true);
    box<QCheckBox>(dialog, "chkAudio")->setChecked(true);
    edit(dialog, "txtDisplayName")->setText(QString("Jo\nSmith") + QChar(0) + "!");
    QVERIFY(pressOk(dialog));
    const std::string file = home.settingsFile();
    QVERIFY(file.find("\r\nSTARTMIN,1\r\n") != std::string::npos);
    QVERIFY(file.find("\r\nAUDIO, 1 \r\n") != std::string::npos);
    QVERIFY(file.find("\r\nDISPLAYNAME0,JoSmith!\r\n") != std::string::npos);
  }

  void theControllerRestsWhileTheDialogIsOpen() {
    // No server, so the pass after OK ends without going anywhere.
    Home home("REPLYADDRESS0,me@example.org\r\nSCANONSTART, 1 \r\nDELAY, 300 \r\n");
    CountingWindows windows;
    TerminalPasswordPrompt passwords;
    MailController controller(*home.context, windows, passwords);
    QCOMPARE(controller.startup(), StartupResult::Started);
    controller.autoScan().restart();
    QVERIFY(controller.openSettingsAllowed());

    // Cancel: the auto scan counts again.
    QTimer::singleShot(0, [&] {
      QVERIFY(!controller.autoScan().isActive());
      QApplication::activeModalWidget()->close();
    });
    QVERIFY(!showSettingsDialog(*home.context, controller, nullptr));
    QVERIFY(controller.autoScan().isActive());
    const int menus = windows.menusSetUp;

    // OK with ScanOnStart set: a pass at once, over every account.
    QSignalSpy ended(&controller, &MailController::passEnded);
    QTimer::singleShot(0, [] { qobject_cast<QDialog*>(QApplication::activeModalWidget())->accept(); });
    QVERIFY(showSettingsDialog(*home.context, controller, nullptr));
    QCOMPARE(windows.menusSetUp, menus + 1);
    QVERIFY(ended.count() == 1 || ended.wait(5000));
    QCOMPARE(ended.first().first().toString(), QString("Process complete"));
  }

  void screenshotsOfEachTab() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR not set");
    Home home(kSettings);
    SettingsDialog dialog(*home.context);
    dialog.show();
    auto* tabs = box<QTabWidget>(dialog, "tabSettings");
    for (int i = 0; i < tabs->count(); ++i) {
      tabs->setCurrentIndex(i);
      QCoreApplication::processEvents();
      dialog.grab().save(shots + "/settings-" + tabs->widget(i)->objectName() + ".png");
    }
  }
};

QTEST_MAIN(SettingsDialogTest)
#include "settings_dialog_test.moc"
