#include <QTemporaryDir>
#include <QtTest>

#include "app/frm_main.h"
#include "app/terminal_password.h"
#include "app/headless_windows.h"
#include "core/services/file_subs.h"

using namespace vonel;

namespace {

// A home folder with its own context, windows and controller.
struct Home {
  QTemporaryDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  ScriptedPrompt prompt;
  std::unique_ptr<AppContext> context;
  HeadlessWindows windows;
  TerminalPasswordPrompt passwords;
  std::unique_ptr<frmMain> controller;

  explicit Home(const std::string& settings = "REPLYADDRESS0,me@example.org\r\n") {
    if (!settings.empty()) files::WriteTextFile(path() / "Vonel.ini", settings);
    context = std::make_unique<AppContext>(clock, prompt, AppInfo{"Vonel", "9.9", "os", "/", path()});
    controller = std::make_unique<frmMain>(*context, windows, passwords);
  }
  std::filesystem::path path() const { return dir.path().toStdString(); }
  std::string read(const char* name) const { return files::LoadTextFile(path() / name); }
  std::string log() {
    context->log.WriteActionsToLog();
    return read("log.txt");
  }
};

}  // namespace

class FrmMainTest : public QObject {
  Q_OBJECT

 private slots:
  void withoutSettingsNothingStarts() {
    Home home("");
    QCOMPARE(home.controller->Startup(), StartupResult::NoAccount);
    QVERIFY(!files::FolderExists(home.path() / "Messages"));
    QVERIFY(home.read("log.txt").find("Vonel version 9.9 startup.") != std::string::npos);
  }

  void oldStoreRootMovesToThePathsFile() {
    Home home;
    const std::string store = (home.path() / "Store").string();
    files::WriteTextFile(home.path() / "Vonel.ini",
                         "MESSAGEFOLDER," + store + "\r\nDATAFOLDER,/x\r\nSPAMFOLDER,/y\r\nKEEP,1\r\n");
    QCOMPARE(home.controller->Startup(), StartupResult::Started);
    QCOMPARE(home.read("Paths.ini"), "MESSAGEFOLDER," + store + "\r\n");
    QCOMPARE(home.context->folders.MessageFolderPath, std::filesystem::path(store));
    QCOMPARE(home.context->folders.DataFolderPath, home.path());
    QVERIFY(!home.context->Settings.IsSettingPresent("DataFolder"));
    QVERIFY(home.context->Settings.IsSettingPresent("KEEP"));
  }

  void aPathsFileThatHasTheRootWins() {
    Home home;
    const std::string store = (home.path() / "New").string();
    files::WriteTextFile(home.path() / "Paths.ini", "MESSAGEFOLDER," + store + "\r\n");
    files::WriteTextFile(home.path() / "Vonel.ini", "MESSAGEFOLDER," + (home.path() / "Old").string() + "\r\n");
    home.controller->Startup();
    QCOMPARE(home.context->folders.MessageFolderPath, std::filesystem::path(store));
    QVERIFY(home.context->Settings.IsSettingPresent("MessageFolder"));
    QVERIFY(!files::FolderExists(home.path() / "Old"));
  }

  void theOldSignatureBecomesAFile() {
    Home home("REPLYADDRESS0,me@example.org\r\nSIGNATURE,Jo\x01" "Example Ltd\r\n");
    home.controller->Startup();
    QCOMPARE(home.read("Sigs/Sig1.txt"), std::string("Jo\r\nExample Ltd"));
    QVERIFY(!home.context->Settings.IsSettingPresent("SIGNATURE"));
  }

  void anUnfinishedDownloadIsRemovedAtStart() {
    Home home;
    std::filesystem::create_directories(home.path() / "Messages");
    files::WriteTextFile(home.path() / "Messages" / "mail_3600.tmp", "+OK\r\npartial");
    files::WriteTextFile(home.path() / "Messages" / "keep.tmp", "x");
    home.controller->Startup();
    QVERIFY(!files::FileExists(home.path() / "Messages" / "mail_3600.tmp"));
    QVERIFY(files::FileExists(home.path() / "Messages" / "keep.tmp"));
  }

  void theFirstPassIsArmedFromTheTimer() {
    Home scan("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\n");
    scan.controller->Startup();
    QVERIFY(scan.controller->TimerAutoScan.isActive());
    QCOMPARE(scan.controller->TimerAutoScan.interval(), 200);
    QVERIFY(!scan.controller->RetrieveNext);

    Home retrieve("REPLYADDRESS0,a@b\r\nRETRIEVEONSTART,-1\r\n");
    retrieve.controller->Startup();
    QVERIFY(retrieve.controller->TimerAutoScan.isActive());
    QVERIFY(retrieve.controller->RetrieveNext);

    Home idle;
    idle.controller->Startup();
    QVERIFY(!idle.controller->TimerAutoScan.isActive());
    QVERIFY(idle.controller->TimerDelayedStart.isActive());
  }

  void startMinimisedComparesTheTextWithOne() {
    Home one("REPLYADDRESS0,a@b\r\nSTARTMIN,1\r\n");
    one.controller->Startup();
    QVERIFY(one.windows.hidden);
    Home padded("REPLYADDRESS0,a@b\r\nSTARTMIN, 1 \r\n");
    padded.controller->Startup();
    QVERIFY(!padded.windows.hidden);
  }

  void theTrayTipNamesTheFirstAccount() {
    Home titled("REPLYADDRESS2,a@b\r\nTITLE2,Work\r\n");
    titled.controller->Startup();
    QVERIFY(titled.log().find("Displaying tray icon") != std::string::npos);
    Home none("AUDIO,1\r\n");
    none.controller->Startup();
    QVERIFY(none.controller->SoundOn);
  }

  void aWindowLargerThanTheScreenIsMaximised() {
    Home home("REPLYADDRESS0,a@b\r\nMAINWIDTH,99999999\r\nMAINHEIGHT,99999999\r\n");
    home.controller->Startup();
    QCOMPARE(home.windows.geometry.state, 2);
    Home wide("REPLYADDRESS0,a@b\r\nMAINWIDTH,99999999\r\nMAINHEIGHT,5000\r\n");
    wide.controller->Startup();
    QCOMPARE(wide.windows.geometry.state, 0);
    QCOMPARE(wide.windows.geometry.heightTwips, 5000);
  }

  void mailInTheOutboxAsksBeforeQuitting() {
    Home home;
    home.controller->Startup();
    files::WriteTextFile(home.context->folders.OutboxFolderPath / "00_outbound_1.EML", "x");
    home.prompt.queue(Answer::No);
    QVERIFY(!home.controller->ExitProg());
    QCOMPARE(home.prompt.lastQuestion,
             std::string("You still have mail in your outbox. Are you sure you want to quit?"));
    QVERIFY(home.log().find("Saving settings") == std::string::npos);

    home.prompt.queue(Answer::Yes);
    QVERIFY(home.controller->ExitProg());
    const std::string log = home.read("log.txt");
    QVERIFY(log.find("Finished Shutdown of 9.9") != std::string::npos);
    QVERIFY(home.read("Vonel.ini").find("MAINWINDOWSTATE, 0 ") != std::string::npos);
  }
};

QTEST_GUILESS_MAIN(FrmMainTest)
#include "frm_main_test.moc"
