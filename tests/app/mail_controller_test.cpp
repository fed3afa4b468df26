#include <QTemporaryDir>
#include <QSignalSpy>
#include <QtTest>

#include "app/mail_controller.h"
#include "app/terminal_password.h"
#include "app/headless_windows.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
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
  std::unique_ptr<MailController> controller;

  explicit Home(const std::string& settings = "REPLYADDRESS0,me@example.org\r\n") {
    if (!settings.empty()) files::writeTextFile(path() / "Vonel.ini", settings);
    context = std::make_unique<AppContext>(clock, prompt, AppInfo{"Vonel", "9.9", "os", "/", path()});
    controller = std::make_unique<MailController>(*context, windows, passwords);
  }
  std::filesystem::path path() const { return dir.path().toStdString(); }
  std::string read(const char* name) const { return files::loadTextFile(path() / name); }
  std::string log() {
    context->log.writeActionsToLog();
    return read("log.txt");
  }
};

}  // namespace

class MailControllerTest : public QObject {
  Q_OBJECT

 private slots:
  void withoutSettingsNothingStarts() {
    Home home("");
    QCOMPARE(home.controller->startup(), StartupResult::NoAccount);
    QVERIFY(!files::folderExists(home.path() / "Messages"));
    QVERIFY(home.read("log.txt").find("Vonel version 9.9 startup.") != std::string::npos);
  }

  void oldStoreRootMovesToThePathsFile() {
    Home home;
    const std::string store = (home.path() / "Store").string();
    files::writeTextFile(home.path() / "Vonel.ini",
                         "MESSAGEFOLDER," + store + "\r\nDATAFOLDER,/x\r\nSPAMFOLDER,/y\r\nKEEP,1\r\n");
    QCOMPARE(home.controller->startup(), StartupResult::Started);
    QCOMPARE(home.read("Paths.ini"), "MESSAGEFOLDER," + store + "\r\n");
    QCOMPARE(home.context->folders.messageFolderPath, std::filesystem::path(store));
    QCOMPARE(home.context->folders.dataFolderPath, home.path());
    QVERIFY(!home.context->settings.isSettingPresent("DataFolder"));
    QVERIFY(home.context->settings.isSettingPresent("KEEP"));
  }

  void aPathsFileThatHasTheRootWins() {
    Home home;
    const std::string store = (home.path() / "New").string();
    files::writeTextFile(home.path() / "Paths.ini", "MESSAGEFOLDER," + store + "\r\n");
    files::writeTextFile(home.path() / "Vonel.ini", "MESSAGEFOLDER," + (home.path() / "Old").string() + "\r\n");
    home.controller->startup();
    QCOMPARE(home.context->folders.messageFolderPath, std::filesystem::path(store));
    QVERIFY(home.context->settings.isSettingPresent("MessageFolder"));
    QVERIFY(!files::folderExists(home.path() / "Old"));
  }

  void theOldSignatureBecomesAFile() {
    Home home("REPLYADDRESS0,me@example.org\r\nSIGNATURE,Jo\x01" "Example Ltd\r\n");
    home.controller->startup();
    QCOMPARE(home.read("Sigs/Sig1.txt"), std::string("Jo\r\nExample Ltd"));
    QVERIFY(!home.context->settings.isSettingPresent("SIGNATURE"));
  }

  void anUnfinishedDownloadIsRemovedAtStart() {
    Home home;
    std::filesystem::create_directories(home.path() / "Messages");
    files::writeTextFile(home.path() / "Messages" / "mail_3600.tmp", "+OK\r\npartial");
    files::writeTextFile(home.path() / "Messages" / "keep.tmp", "x");
    home.controller->startup();
    QVERIFY(!files::fileExists(home.path() / "Messages" / "mail_3600.tmp"));
    QVERIFY(files::fileExists(home.path() / "Messages" / "keep.tmp"));
  }

  void theFirstPassIsArmedFromTheTimer() {
    Home scan("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\n");
    scan.controller->startup();
    QVERIFY(scan.controller->autoScan().isActive());
    QCOMPARE(scan.controller->autoScan().interval(), 200);
    QCOMPARE(scan.controller->autoScan().nextPassKind(), PassKind::Scan);

    Home retrieve("REPLYADDRESS0,a@b\r\nRETRIEVEONSTART,-1\r\n");
    retrieve.controller->startup();
    QVERIFY(retrieve.controller->autoScan().isActive());
    QCOMPARE(retrieve.controller->autoScan().nextPassKind(), PassKind::Download);

    Home idle;
    idle.controller->startup();
    QVERIFY(!idle.controller->autoScan().isActive());
    QVERIFY(idle.controller->delayedStartPending());
  }

  void startMinimisedComparesTheTextWithOne() {
    Home one("REPLYADDRESS0,a@b\r\nSTARTMIN,1\r\n");
    one.controller->startup();
    QVERIFY(one.windows.hidden);
    Home padded("REPLYADDRESS0,a@b\r\nSTARTMIN, 1 \r\n");
    padded.controller->startup();
    QVERIFY(!padded.windows.hidden);
  }

  void theTrayTipNamesTheFirstAccount() {
    Home titled("REPLYADDRESS2,a@b\r\nTITLE2,Work\r\n");
    titled.controller->startup();
    QVERIFY(titled.log().find("Displaying tray icon") != std::string::npos);
    Home none("AUDIO,1\r\n");
    none.controller->startup();
    QVERIFY(none.controller->soundOn());
  }

  void aWindowLargerThanTheScreenIsMaximised() {
    Home home("REPLYADDRESS0,a@b\r\nMAINWIDTH,99999999\r\nMAINHEIGHT,99999999\r\n");
    home.controller->startup();
    QCOMPARE(home.windows.geometry.state, WindowState::Maximised);
    Home wide("REPLYADDRESS0,a@b\r\nMAINWIDTH,99999999\r\nMAINHEIGHT,5000\r\n");
    wide.controller->startup();
    QCOMPARE(wide.windows.geometry.state, WindowState::Normal);
    QCOMPARE(wide.windows.geometry.heightTwips, 5000);
  }

  void mailInTheOutboxAsksBeforeQuitting() {
    Home home;
    home.controller->startup();
    files::writeTextFile(home.context->folders.outboxFolderPath / "00_outbound_1.EML", "x");
    home.prompt.queue(Answer::No);
    QVERIFY(!home.controller->exitProgram());
    QCOMPARE(home.prompt.lastQuestion,
             std::string("You still have mail in your outbox. Are you sure you want to quit?"));
    QVERIFY(home.log().find("Saving settings") == std::string::npos);

    home.prompt.queue(Answer::Yes);
    QVERIFY(home.controller->exitProgram());
    const std::string log = home.read("log.txt");
    QVERIFY(log.find("Finished Shutdown of 9.9") != std::string::npos);
    QVERIFY(home.read("Vonel.ini").find("MAINWINDOWSTATE, 0 ") != std::string::npos);
  }

  void theAutoScanCountsTicksFromTheEndOfThePass() {
    Home home("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\nDELAY,2\r\n");
    home.controller->startup();
    MailController& main = *home.controller;
    main.autoScan().stop();
    QCOMPARE(home.windows.timerStatus, std::string("Timer stopped"));
    main.autoScan().restart();
    QCOMPARE(main.autoScan().delay(), 2);
    QCOMPARE(home.windows.timerStatus, std::string("Next scan: 2"));
    main.autoScan().setInterval(5);
    QSignalSpy passes(&main, &MailController::passEnded);
    QVERIFY(passes.wait(2000));  // no account has a server: the pass ends at once
    QCOMPARE(passes.at(0).at(0).toString(), QString("Process complete"));
    QVERIFY(main.autoScan().isActive());  // and the count starts again
    QCOMPARE(main.autoScan().ticks(), 0);

    Home off("REPLYADDRESS0,a@b\r\nSCANONSTART,TRUE\r\n");
    off.controller->startup();
    off.controller->autoScan().restart();
    QCOMPARE(off.windows.timerStatus, std::string("Auto scan Disabled"));
    QSignalSpy none(off.controller.get(), &MailController::passEnded);
    off.controller->autoScan().setInterval(5);
    QVERIFY(!none.wait(100));
  }

  void scannedHeadersAreKeyedCountedAndListed() {
    Home home("REPLYADDRESS0,a@b\r\nExclusive0_1,me@example.org\r\n");
    home.controller->startup();
    long listed = 0;
    home.windows.onServerMessage = [&](const message::Message&, long, const std::string&) { ++listed; };
    pop3::Pop3Listener& events = *home.controller;
    for (int i = 0; i < 3; ++i) {
      message::Message m;
      m.messageId = "<same@x>";
      events.onHeaderReceived(m);
    }
    message::Message anonymous;
    anonymous.sender = "s@x";
    events.onHeaderReceived(anonymous);
    message::Message elsewhere;  // account 1 lists only mail to its exclusive address
    elsewhere.fromAccount = 1;
    elsewhere.setToEmail("other@example.org");
    events.onHeaderReceived(elsewhere);
    const message::MessageList& kept = home.controller->tally().messages;
    QVERIFY(kept.contains("<same@x>") && kept.contains("<same@x>1") && kept.contains("<same@x>11"));
    QVERIFY(kept.contains("3.28800.s@x"));  // row count, seconds since midnight, sender
    QCOMPARE(home.controller->tally().listed, 5L);
    QCOMPARE(home.controller->tally().byAccount[1], 1L);
    QCOMPARE(listed, 4L);
  }

  void downloadedMailIsStoredByItsVerdict() {
    Home home;
    home.controller->startup();
    pop3::Pop3Listener& events = *home.controller;
    const auto root = home.context->folders.messageFolderPath;
    bool allKept = true;
    const auto receive = [&](const std::string& subject, const std::string& folder = "") -> std::filesystem::path {
      message::Message m(&home.context->log, &home.clock);
      m.createFromText("Subject: " + subject + "\r\n\r\nbody\r\n", false);
      m.destFolder = folder;
      m.attachmentsFolder = (home.path() / "missing").string();
      allKept = events.onMessageReceived(m) && allKept;
      return m.filename();
    };
    const std::string fifty(50, 'a');
    QCOMPARE(receive(fifty).filename().string(), text::upper(fifty) + " (080000-261123).EML");
    QCOMPARE(receive(fifty + "b").filename().string(), std::string(35, 'A') + " (080000-261123).EML");
    const auto deep = receive("Filed", "\\Work\\2026\\");
    QCOMPARE(deep.parent_path(), root / "Work" / "2026");
    QCOMPARE(files::loadTextFile(root / "Work" / "2026" / "Unread.Tag"), std::string("1"));
    QVERIFY(home.log().find("Filter calls for save all attachments, but folder") != std::string::npos);

    // A store root that can't be made gives way to the program's folder for the run.
    files::writeTextFile(home.path() / "blocker", "");
    home.context->folders.messageFolderPath = home.path() / "blocker" / "Messages";
    const auto moved = receive("Rescued", "\\Lists\\");
    QCOMPARE(moved.parent_path(), home.path() / "Messages" / "Lists");
    QVERIFY(home.prompt.lastQuestion.starts_with("Cannot find mail folder: "));
    QVERIFY(allKept);
  }

  void aHeaderDeletedOnTheServerLeavesItsTrace() {
    Home home("TITLE0,Work\r\nREPLYADDRESS0,me@example.org\r\n");
    home.controller->startup();
    pop3::Pop3Listener& events = *home.controller;
    message::Message m(&home.context->log, &home.clock);
    m.createFromText("From: bad@spam.example\r\nSubject: Pills\r\n\r\nfirst line\r\n", true);
    m.deleted = true;
    m.filterReason = "Pills rule";
    QVERIFY(events.onScreenedDelete(m));
    const auto entry = home.context->folders.messageFolderPath / "Screened" / "pills (080000-261123).eml";
    QVERIFY(files::fileExists(entry));
    QVERIFY(home.log().find("Screened \"Pills\" from bad@spam.example on Work: deleted on server, FAIL; score 0; "
                            "Pills rule; header kept in " + entry.string()) != std::string::npos);

    // Without a place for the trace the message stays on the server.
    files::writeTextFile(home.path() / "blocker", "");
    home.context->folders.messageFolderPath = home.path() / "blocker" / "Messages";
    QVERIFY(!events.onScreenedDelete(m));
  }

  void fetchedMessagesServeTheirPurpose() {
    Home home;
    home.controller->startup();
    pop3::Pop3Listener& events = *home.controller;
    message::Message m;
    m.createFromText("Subject: Asked for\r\n\r\nbody\r\n", false);
    home.controller->fetchSpecificMessage(FetchPurpose::Download, 0, 1);  // no server: only the purpose is kept
    events.onSpecificMessage(m);
    const auto inbox = home.context->folders.inboxFolderPath;
    QVERIFY(files::fileExists(inbox / "DOWNLOAD (080000-261123).EML"));

    home.controller->fetchSpecificMessage(FetchPurpose::ViewSource, 0, 1);
    events.onSpecificMessage(m);
    const auto source = home.context->folders.messageFolderPath / "TEMP (080000-261123).EML";
    QCOMPARE(files::loadTextFile(source), m.messageText());  // left for the viewer
    Home again;
    std::filesystem::create_directories(again.path() / "Messages");
    files::writeTextFile(again.path() / "Messages" / "TEMP (1).EML", "x");
    again.controller->startup();
    QVERIFY(!files::fileExists(again.path() / "Messages" / "TEMP (1).EML"));  // until the next start
  }

  // A refused connection is the account's cause; the silence time-out that
  // follows ends the pass, once. The tray flashes meanwhile.
  void aRefusedServerTimesOutAndIsNamedForTheList() {
    Home home("REPLYADDRESS0,a@b\r\nTITLE0,Jo\r\nSERVER0, 127.0.0.1 \r\nPOPPORT0,1\r\nMailTimeout,2\r\n");
    home.controller->startup();
    QCOMPARE(home.windows.trayTip, std::string("Vonel - Jo - 0 message(s)"));
    QSignalSpy passes(home.controller.get(), &MailController::passEnded);
    home.controller->scanAll();
    QTest::qWait(700);
    QCOMPARE(home.windows.trayPicture, TrayPicture::SmallS);
    QVERIFY(passes.wait(10000));
    QCOMPARE(passes.at(0).at(0).toString(), QString("Finished getting mail"));
    QCOMPARE(home.controller->tally().failures.lines(home.context->settings),
             std::vector<std::string>{"Account 0 (Jo): connection refused"});
    QCOMPARE(home.controller->tally().serverNames[0], std::string("127.0.0.1"));
    QVERIFY(!home.controller->passRunning());
    QVERIFY(!home.controller->trayFlashing());
    QCOMPARE(home.windows.trayPicture, TrayPicture::LargeS);
    QCOMPARE(home.windows.trayTip, std::string("Vonel - Jo - 0 message(s)"));
    QCOMPARE(home.windows.statusText, std::string("Account 0 (Jo): connection refused"));
    QTest::qWait(50);
    QCOMPARE(passes.count(), 1);

    pop3::Pop3Listener& events = *home.controller;
    events.onNoConnection();
    QCOMPARE(home.windows.trayPicture, TrayPicture::Error);
    QCOMPARE(home.windows.statusText, std::string("No Internet Connection"));
  }

  // Each account's first failure is kept, with what was stored before it.
  void failuresAreCollectedByAccount() {
    Home home("REPLYADDRESS0,a@b\r\nTITLE2,Work\r\nDELETEONRETRIEVE,1\r\n");
    home.controller->startup();
    pop3::Pop3Listener& events = *home.controller;
    pop3::Pop3Failure refused(pop3::FailureKind::LoginRefused, "-ERR [AUTH] Authentication failed.\r\n");
    refused.account = 2;
    events.onFailure(refused);
    QCOMPARE(home.windows.statusText, std::string("Account 2 (Work): login refused: -ERR [AUTH] Authentication failed."));
    pop3::Pop3Failure silence(pop3::FailureKind::TimedOut);
    silence.account = 2;
    events.onFailure(silence);
    pop3::Pop3Failure lost(pop3::FailureKind::ConnectionLost);
    lost.messagesDone = 1042;
    lost.messageCount = 2000;
    events.onFailure(lost);

    const auto receive = [&](const std::string& folder) {
      message::Message m(&home.context->log, &home.clock);
      m.createFromText("Subject: x\r\n\r\nbody\r\n", false);
      m.fromAccount = 1;
      m.destFolder = folder;
      return events.onMessageReceived(m);
    };
    QVERIFY(receive(""));
    QVERIFY(!receive("\\" + std::string(300, 'n')));  // a name no file system takes
    const auto lines = home.controller->tally().failures.lines(home.context->settings);
    QCOMPARE(lines.size(), std::size_t{3});
    QCOMPARE(lines[0], std::string("Account 0: connection lost after 1,042 of 2,000 messages"));
    QVERIFY(lines[1].starts_with("Account 1: could not store 1 message, left on the server: "));
    QCOMPARE(lines[2], std::string("Account 2 (Work): login refused: -ERR [AUTH] Authentication failed."));
  }

  void erasingAnAccountAsksFirst() {
    Home home("REPLYADDRESS3,a@b\r\nTITLE3,Work\r\nSERVER3,\r\n");
    home.controller->startup();
    QSignalSpy passes(home.controller.get(), &MailController::passEnded);
    home.prompt.queue(Answer::No);
    home.controller->deleteAllFromAccount(3);
    QCOMPARE(home.prompt.lastQuestion, std::string("You're about to erase all mail, good and bad, from server\r\n"
                                                   "'Work' ()\r\nAre you absolutely certain you want to do this?"));
    QCOMPARE(passes.count(), 0);
    home.prompt.queue(Answer::Yes);
    home.controller->deleteAllFromAccount(3);
    QCOMPARE(passes.count(), 1);  // an account without a server ends its pass at once
    QCOMPARE(home.controller->pass().kind, PassKind::DeleteAll);
    QCOMPARE(passes.at(0).at(0).toString(), QString("Finished getting mail"));
  }
};

QTEST_GUILESS_MAIN(MailControllerTest)
#include "mail_controller_test.moc"
