#include <QTemporaryDir>
#include <QSignalSpy>
#include <QtTest>

#include "app/frm_main.h"
#include "app/terminal_password.h"
#include "app/headless_windows.h"
#include "core/services/file_subs.h"
#include "core/text/strings.h"

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

  void theAutoScanCountsTicksFromTheEndOfThePass() {
    Home home("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\nDELAY,2\r\n");
    home.controller->Startup();
    frmMain& main = *home.controller;
    main.StopMailTimer();
    QCOMPARE(home.windows.timerStatus, std::string("Timer stopped"));
    main.StartMailTimer();
    QCOMPARE(main.ScanDelay, 2);
    QCOMPARE(home.windows.timerStatus, std::string("Next scan: 2"));
    main.TimerAutoScan.setInterval(5);
    QSignalSpy passes(&main, &frmMain::passEnded);
    QVERIFY(passes.wait(2000));  // no account has a server: the pass ends at once
    QCOMPARE(passes.at(0).at(0).toString(), QString("Process complete"));
    QVERIFY(main.TimerAutoScan.isActive());  // and the count starts again
    QCOMPARE(main.ScanTicks, 0);

    Home off("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\n");
    off.controller->Startup();
    off.controller->StartMailTimer();
    QCOMPARE(off.windows.timerStatus, std::string("Auto scan Disabled"));
    QSignalSpy none(off.controller.get(), &frmMain::passEnded);
    off.controller->TimerAutoScan.setInterval(5);
    QVERIFY(!none.wait(100));
  }

  void scannedHeadersAreKeyedCountedAndListed() {
    Home home("REPLYADDRESS0,a@b\r\nExclusive0_1,me@example.org\r\n");
    home.controller->Startup();
    long listed = 0;
    home.windows.onServerMessage = [&](const message::clsMessage&, long, const std::string&) { ++listed; };
    pop3::GetMailEvents& events = *home.controller;
    for (int i = 0; i < 3; ++i) {
      message::clsMessage m;
      m.MessageID = "<same@x>";
      events.HeaderReceived(m);
    }
    message::clsMessage anonymous;
    anonymous.Sender = "s@x";
    events.HeaderReceived(anonymous);
    message::clsMessage elsewhere;  // account 1 lists only mail to its exclusive address
    elsewhere.FromAccount = 1;
    elsewhere.setTo_Email("other@example.org");
    events.HeaderReceived(elsewhere);
    const message::clsMessages& kept = home.controller->Messages;
    QVERIFY(kept.Contains("<same@x>") && kept.Contains("<same@x>1") && kept.Contains("<same@x>11"));
    QVERIFY(kept.Contains("3.28800.s@x"));  // row count, seconds since midnight, sender
    QCOMPARE(home.controller->MessagesListed, 5L);
    QCOMPARE(home.controller->AccountMessages[1], 1L);
    QCOMPARE(listed, 4L);
  }

  void downloadedMailIsStoredByItsVerdict() {
    Home home;
    home.controller->Startup();
    pop3::GetMailEvents& events = *home.controller;
    const auto root = home.context->folders.MessageFolderPath;
    bool allKept = true;
    const auto receive = [&](const std::string& subject, const std::string& folder = "") -> std::filesystem::path {
      message::clsMessage m(&home.context->log, &home.clock);
      m.CreateFromText("Subject: " + subject + "\r\n\r\nbody\r\n", false);
      m.DestFolder = folder;
      m.AttachmentsFolder = (home.path() / "missing").string();
      allKept = events.MessageReceived(m) && allKept;
      return m.Filename();
    };
    const std::string fifty(50, 'a');
    QCOMPARE(receive(fifty).filename().string(), text::upper(fifty) + " (080000-261123).EML");
    QCOMPARE(receive(fifty + "b").filename().string(), std::string(35, 'A') + " (080000-261123).EML");
    const auto deep = receive("Filed", "\\Work\\2026\\");
    QCOMPARE(deep.parent_path(), root / "Work" / "2026");
    QCOMPARE(files::LoadTextFile(root / "Work" / "2026" / "Unread.Tag"), std::string("1"));
    QVERIFY(home.log().find("Filter calls for save all attachments, but folder") != std::string::npos);

    // A store root that can't be made gives way to the program's folder for the run.
    files::WriteTextFile(home.path() / "blocker", "");
    home.context->folders.MessageFolderPath = home.path() / "blocker" / "Messages";
    const auto moved = receive("Rescued", "\\Lists\\");
    QCOMPARE(moved.parent_path(), home.path() / "Messages" / "Lists");
    QVERIFY(home.prompt.lastQuestion.starts_with("Cannot find mail folder: "));
    QVERIFY(allKept);
  }

  void fetchedMessagesServeTheirPurpose() {
    Home home;
    home.controller->Startup();
    pop3::GetMailEvents& events = *home.controller;
    message::clsMessage m;
    m.CreateFromText("Subject: Asked for\r\n\r\nbody\r\n", false);
    home.controller->FetchSpecificMessage(FetchPurpose::Download, 0, 1);  // no server: only the purpose is kept
    events.SpecificMessage(m);
    const auto inbox = home.context->folders.InboxFolderPath;
    QVERIFY(files::FileExists(inbox / "DOWNLOAD (080000-261123).EML"));

    home.controller->FetchSpecificMessage(FetchPurpose::ViewSource, 0, 1);
    events.SpecificMessage(m);
    const auto source = home.context->folders.MessageFolderPath / "TEMP (080000-261123).EML";
    QCOMPARE(files::LoadTextFile(source), m.Messagetext());  // left for the viewer
    Home again;
    std::filesystem::create_directories(again.path() / "Messages");
    files::WriteTextFile(again.path() / "Messages" / "TEMP (1).EML", "x");
    again.controller->Startup();
    QVERIFY(!files::FileExists(again.path() / "Messages" / "TEMP (1).EML"));  // until the next start
  }

  // A refused connection only shows a box; the silence time-out ends the
  // pass. The tray flashes meanwhile.
  void aRefusedServerTimesOutAndIsNamedForTheList() {
    Home home("REPLYADDRESS0,a@b\r\nTITLE0,Jo\r\nSERVER0, 127.0.0.1 \r\nPOPPORT0,1\r\nMailTimeout,2\r\n");
    home.controller->Startup();
    QCOMPARE(home.windows.trayTip, std::string("Vonel - Jo - 0 message(s)"));
    QSignalSpy passes(home.controller.get(), &frmMain::passEnded);
    home.controller->mnuScan_Click();
    QTest::qWait(700);
    QCOMPARE(home.windows.trayPicture, TrayPicture::SmallS);
    QVERIFY(passes.wait(10000));
    QCOMPARE(passes.at(0).at(0).toString(), QString("Finished getting mail"));
    QVERIFY(home.prompt.lastQuestion.starts_with("Error while connecting to server:\r\n[10061] "));
    QCOMPARE(home.controller->ServerNames[0], std::string("127.0.0.1"));
    QVERIFY(!home.controller->CheckingMail);
    QVERIFY(!home.controller->TimerIconFlash.isActive());
    QCOMPARE(home.windows.trayPicture, TrayPicture::LargeS);
    QCOMPARE(home.windows.trayTip, std::string("Vonel - Jo - 0 message(s)"));
    QCOMPARE(home.windows.statusText, std::string("Done"));

    pop3::GetMailEvents& events = *home.controller;
    events.NoConnection();
    QCOMPARE(home.windows.trayPicture, TrayPicture::Error);
    QCOMPARE(home.windows.statusText, std::string("No Internet Connection"));
  }

  void erasingAnAccountAsksFirst() {
    Home home("REPLYADDRESS3,a@b\r\nTITLE3,Work\r\nSERVER3,\r\n");
    home.controller->Startup();
    QSignalSpy passes(home.controller.get(), &frmMain::passEnded);
    home.prompt.queue(Answer::No);
    home.controller->DeleteAllFromAccount(3);
    QCOMPARE(home.prompt.lastQuestion, std::string("You're about to erase all mail, good and bad, from server\r\n"
                                                   "'Work' ()\r\nAre you absolutely certain you want to do this?"));
    QCOMPARE(passes.count(), 0);
    home.prompt.queue(Answer::Yes);
    home.controller->DeleteAllFromAccount(3);
    QCOMPARE(passes.count(), 1);  // an account without a server ends its pass at once
    QVERIFY(home.controller->ClearMode);
    QCOMPARE(passes.at(0).at(0).toString(), QString("Finished getting mail"));
  }
};

QTEST_GUILESS_MAIN(FrmMainTest)
#include "frm_main_test.moc"
