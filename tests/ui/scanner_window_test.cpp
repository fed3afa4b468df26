#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QSystemTrayIcon>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

#include "app/mail_controller.h"
#include "app/terminal_password.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/rules/rule_engine.h"
#include "support/dovecot_server.h"
#include "ui/mailer/mailer_toolbar.h"
#include "ui/mailer/mailer_window.h"
#include "ui/scanner/scanner_window.h"

using namespace vonel;

namespace {

// The scanner window and its controller on a home of its own with the given settings.
struct Scanner {
  explicit Scanner(std::string_view settings) { files::writeTextFile(home / "Vonel.ini", settings); }
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1", "os", "/", home}};
  ScannerWindow window{context};
  TerminalPasswordPrompt passwords;
  MailController controller{context, window, passwords};
  const bool attached = (window.attach(controller), true);

  QTreeView* list() const { return window.findChild<QTreeView*>("ListServerMail"); }
  ServerMailModel& model() { return window.serverMail(); }
  QString cell(int row, ServerMailColumn column) {
    model().flush();
    return model().row(row).cell(column);
  }
  QString statusText() const { return window.statusText(); }
  // Runs a scan of every account and waits for its end.
  void scan() {
    QSignalSpy ended(&controller, &MailController::passEnded);
    controller.scan();
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 1, 20000);
    model().flush();
  }
  int rowOfSubject(const QString& subject) {
    model().flush();
    for (int row = 0; row < model().rowCount(); ++row) {
      // A message found suspicious carries "SPAM: " before its subject.
      if (model().row(row).cell(ServerMailColumn::Subject).endsWith(subject)) return row;
    }
    return -1;
  }
  void select(std::initializer_list<int> rows) {
    auto* selection = list()->selectionModel();
    selection->clearSelection();
    for (int row : rows) selection->select(model().index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    selection->setCurrentIndex(model().index(*rows.begin(), 0), QItemSelectionModel::NoUpdate);
  }
  QMenu* openContextMenu(int row) {
    list()->scrollTo(model().index(row, 0));
    emit list()->customContextMenuRequested(list()->visualRect(model().index(row, 0)).center());
    return window.findChild<QMenu*>("mnuRightClick");
  }
  QAction* menuEntry(const char* name) { return window.findChild<QAction*>(name); }
  void saveShot(const QString& name) {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) return;
    QCoreApplication::processEvents();
    window.grab().save(shots + "/" + name + ".png");
  }
};

std::string mail(const std::string& from, const std::string& to, const std::string& subject,
                 const std::string& id = {}) {
  return "From: " + from + "\r\nTo: " + to + "\r\nSubject: " + subject + "\r\n" +
         (id.empty() ? std::string() : "Message-ID: " + id + "\r\n") + "Date: Mon, 23 Nov 2026 07:00:00 +0000\r\n\r\n" +
         "Hello,\r\nsee you soon.\r\n";
}

rules::FilterRule subjectRule(const std::string& name, const std::string& word, const std::string& action) {
  rules::FilterRule r;
  r.filterName = name;
  r.ruleCount = 1;
  r.setFields(1, "Subject:");
  r.setComparisons(1, "cnt");
  r.setStrings(1, word);
  r.action = action;
  return r;
}

QColor colourOf(Scanner& scanner, int row) {
  return scanner.model().data(scanner.model().index(row, 0), Qt::ForegroundRole).value<QColor>();
}

}  // namespace

class ScannerWindowTest : public QObject {
  Q_OBJECT

  testing::DovecotServer server_;

  std::string settings() const {
    return "REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nMAILTIMEOUT,10\r\n" + server_.accountSettings(0);
  }

  int fills_ = 0;

  // One message for every verdict the list can show. The server knows a
  // message by its file name, so each fill takes new names.
  void fillMailbox() {
    const std::string round = std::to_string(++fills_) + ".";
    server_.deliver(round + "1", mail("Ann <ann@example.org>", "me@example.org", "Lunch plans"));
    server_.deliver(round + "2", mail("Deals <deals@shop.example>", "me@example.org", "Cheap offer"));
    server_.deliver(round + "3", mail("Unsure <unsure@maybe.example>", "me@example.org", "Maybe spam"));
    server_.deliver(round + "4", mail("Pest <pest@blocked.example>", "me@example.org", "Buy now"));
    server_.deliver(round + "5", mail("List <list@lists.example>", "old@example.org", "List digest"));
  }

  // Rules and lists that give each message of the mailbox its verdict.
  static void judgeLikeTheMailbox(Scanner& scanner) {
    auto& filters = scanner.controller.serverFilters();
    filters.setRules({subjectRule("Friends", "Lunch", "400"), subjectRule("Cheap", "Cheap", "100"),
                      subjectRule("Unsure", "Maybe", "200")});
    filters.blockSender("pest@blocked.example");
    filters.ignoreRecipient("old@example.org");
  }

 private slots:
  void initTestCase() {
    QVERIFY(server_.start());
    fillMailbox();
  }

  void startsWithTheListAndTheUpdateStatus() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nMAINWIDTH,9000\r\n");
    auto& window = scanner.window;
    QCOMPARE(scanner.controller.startup(), StartupResult::Started);

    QVERIFY(window.isVisible());
    QVERIFY(scanner.list());
    QVERIFY(window.findChild<QAction*>("mnuExit"));
    QCOMPARE(scanner.statusText(), QString("Auto-update enabled"));
    QCOMPARE(window.findChild<QPlainTextEdit*>("txtHeaders")->toPlainText(),
             QString("Click an email in the list above to view the headers in this box."));
    QCOMPARE(window.findChild<QLabel*>("lblHeaders")->text().remove('&'), QString("Headers:"));
    const QStringList captions{"Status", "Size", "From", "Subject", "Filtered By", "Accnt", "Msg", "MsgNum"};
    for (int column = 0; column < captions.size(); ++column) {
      QCOMPARE(scanner.model().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), captions[column]);
    }
    QVERIFY(scanner.list()->isColumnHidden(static_cast<int>(ServerMailColumn::Number)));
    QVERIFY(scanner.controller.exitProgram());
    QVERIFY(!window.isVisible());
  }

  // A failed account's row and the status bar say why, also once the pass is over.
  void aFailureShowsInTheServersRowAndTheStatusBar() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nTITLE1,Work\r\n");
    scanner.controller.startup();
    pop3::Pop3Listener& events = scanner.controller;

    events.onDoingServer("Home");
    events.onNumberMessagesFound("Home", 3);
    events.onDoingServer("Work");
    QCOMPARE(scanner.cell(0, ServerMailColumn::From), QString("Home - 3 messages"));
    events.onPopError("Work", "-ERR [AUTH] Authentication failed.\r\n");
    pop3::Pop3Failure refused(pop3::FailureKind::LoginRefused, "-ERR [AUTH] Authentication failed.\r\n");
    refused.account = 1;
    events.onFailure(refused);
    QCOMPARE(scanner.cell(1, ServerMailColumn::From),
             QString("Work - login refused: -ERR [AUTH] Authentication failed."));
    const QString line("Account 1 (Work): login refused: -ERR [AUTH] Authentication failed.");
    QCOMPARE(scanner.statusText(), line);
    events.onFinished("Work", 0);
    QCOMPARE(scanner.statusText(), line);

    // A status for a server without a row is logged, not lost.
    events.onNoMail("Elsewhere");
    scanner.context.log.writeActionsToLog();
    QVERIFY(files::loadTextFile(scanner.home / "log.txt").find("Was trying to display No messages for server Elsewhere") !=
            std::string::npos);
    scanner.saveShot("scanner-window-failure");
    QVERIFY(scanner.controller.exitProgram());
  }

  void aScanListsEveryVerdictWithItsColour() {
    Scanner scanner(settings());
    scanner.controller.startup();
    judgeLikeTheMailbox(scanner);
    scanner.scan();

    QCOMPARE(scanner.model().rowCount(), 6);
    QCOMPARE(scanner.cell(0, ServerMailColumn::From), QString("Home - 5 messages"));
    struct Expected {
      const char* subject;
      const char* status;
      QColor colour;
      const char* filteredBy;
    };
    const Expected expected[] = {
        {"Lunch plans", "PASS", QColor(0, 128, 0), "Friends"},
        {"Cheap offer", "FAIL", QColor(255, 128, 0), "Cheap"},
        {"Maybe spam", "SPAM?", QColor(128, 0, 128), "Unsure"},
        {"Buy now", "BLOCK", QColor(255, 0, 0), "Sender Blocked"},
        {"N/A", "IGNORE", QColor(192, 192, 192), ""},
    };
    for (const Expected& e : expected) {
      const int row = scanner.rowOfSubject(e.subject);
      QVERIFY2(row > 0, e.subject);
      QCOMPARE(scanner.cell(row, ServerMailColumn::Status), QString(e.status));
      QCOMPARE(colourOf(scanner, row), e.colour);
      // A header of a few hundred bytes is under half a kilobyte.
      QCOMPARE(scanner.cell(row, ServerMailColumn::Size), QString("0kb"));
      QCOMPARE(scanner.cell(row, ServerMailColumn::Server), QString("127.0.0.1"));
      QCOMPARE(scanner.cell(row, ServerMailColumn::AccountIndex), QString("0"));
      QVERIFY2(scanner.cell(row, ServerMailColumn::FilteredBy).startsWith(e.filteredBy),
               qPrintable(scanner.cell(row, ServerMailColumn::FilteredBy)));
    }
    QCOMPARE(scanner.cell(scanner.rowOfSubject("Maybe spam"), ServerMailColumn::Subject), QString("SPAM: Maybe spam"));
    QCOMPARE(scanner.cell(scanner.rowOfSubject("N/A"), ServerMailColumn::Account), QString("old@example.org"));
    scanner.saveShot("scanner-after-scan");

    // The selected row's headers, and the server it waits on.
    const int lunch = scanner.rowOfSubject("Lunch plans");
    scanner.select({lunch});
    const auto* headers = scanner.window.findChild<QPlainTextEdit*>("txtHeaders");
    QVERIFY(headers->toPlainText().contains("Subject: Lunch plans"));
    const QString key = scanner.model().row(lunch).key;
    QCOMPARE(scanner.window.findChild<QLabel*>("lblMessageNumber")->text(), "Msg: " + key + " on 127.0.0.1");
    scanner.select({0});
    QCOMPARE(headers->toPlainText(), QString("Click an email in the list above to view the headers in this box."));

    // The context menu speaks of the message under the mouse.
    QMenu* menu = scanner.openContextMenu(scanner.rowOfSubject("Cheap offer"));
    QVERIFY(menu && menu->isVisible());
    QCOMPARE(scanner.menuEntry("mnuReadMessage")->text(), QString("Read Message 2 on 127.0.0.1"));
    QCOMPARE(scanner.menuEntry("mnuViewMsgSource")->text(), QString("View Message 2 Source"));
    QVERIFY(scanner.menuEntry("mnuEditThisFilter")->isVisible());
    QCOMPARE(scanner.menuEntry("mnuEditThisFilter")->text(), QString("Edit Filter 'Cheap'"));
    QCOMPARE(scanner.menuEntry("mnublockSender")->text(), QString("Block Sender"));
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) menu->grab().save(shots + "/scanner-context-menu.png");
    menu->hide();
    scanner.openContextMenu(scanner.rowOfSubject("Buy now"))->hide();
    QCOMPARE(scanner.menuEntry("mnublockSender")->text(), QString("Unblock Sender"));
    QVERIFY(scanner.openContextMenu(0) == nullptr || !scanner.openContextMenu(0)->isVisible());
    QVERIFY(scanner.controller.exitProgram());
  }

  void readingOnTheServerCanBeSwitchedOff() {
    Scanner scanner(settings() + "DisableReadOnServer,True\r\n");
    scanner.controller.startup();
    scanner.scan();
    scanner.openContextMenu(1)->hide();
    QVERIFY(!scanner.menuEntry("mnuReadMessage")->isEnabled());
    QVERIFY(!scanner.menuEntry("mnuViewMsgSource")->isEnabled());
    // Without a rule behind the verdict there is nothing to edit.
    QVERIFY(!scanner.menuEntry("mnuEditThisFilter")->isVisible());
    QVERIFY(scanner.controller.exitProgram());
  }

  // Ignoring acts on the current row only; the list is judged again at once.
  void ignoringTheCurrentRowsRecipient() {
    Scanner scanner(settings());
    scanner.controller.startup();
    judgeLikeTheMailbox(scanner);
    scanner.scan();
    scanner.select({scanner.rowOfSubject("Lunch plans"), scanner.rowOfSubject("N/A")});
    scanner.openContextMenu(scanner.rowOfSubject("Lunch plans"))->hide();
    scanner.menuEntry("mnuIgnoreRecipient")->trigger();
    // Every message of the mailbox was to me@example.org but one.
    QCOMPARE(scanner.rowOfSubject("Lunch plans"), -1);
    QVERIFY(files::loadTextFile(scanner.home / "Ignore.txt").find("me@example.org") != std::string::npos);
    QCOMPARE(scanner.model().rowCount(), 6);
    QCOMPARE(scanner.cell(0, ServerMailColumn::From), QString("Home"));
    QVERIFY(scanner.controller.exitProgram());
  }

  void theSameMessageIdThriceGetsThreeKeys() {
    testing::DovecotServer server;
    QVERIFY(server.start());
    for (const char* name : {"a", "b", "c"}) server.deliver(name, mail("a@b.example", "me@example.org", name, "<X>"));
    Scanner scanner("REPLYADDRESS0,me@example.org\r\n" + server.accountSettings(0));
    scanner.controller.startup();
    scanner.scan();
    QCOMPARE(scanner.model().rowOfKey("<X>"), 1);
    QCOMPARE(scanner.model().rowOfKey("<X>1"), 2);
    QCOMPARE(scanner.model().rowOfKey("<X>11"), 3);
    QVERIFY(scanner.controller.exitProgram());
  }

  void leavingAsksAboutTheOutboxAndLogsEachStep() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\n");
    scanner.controller.startup();
    files::writeTextFile(scanner.home / "Messages" / "Outbox" / "waiting.eml", "To: a@b.example\r\n\r\nHi\r\n");

    scanner.prompt.queue(Answer::No);
    QVERIFY(!scanner.controller.exitProgram());
    QCOMPARE(scanner.prompt.lastQuestion, std::string("You still have mail in your outbox. Are you sure you want to quit?"));
    QVERIFY(scanner.window.isVisible());

    scanner.prompt.queue(Answer::Yes);
    QVERIFY(scanner.controller.exitProgram());
    QVERIFY(!scanner.window.isVisible());
    const std::string log = files::loadTextFile(scanner.home / "log.txt");
    std::size_t at = log.rfind("Beginning shutdown");
    QVERIFY(at != std::string::npos);
    for (const char* line : {"Saving window size", "Saving window state", "Removing Tray Icon", "Saving settings",
                             "Saving contacts", "Unloading contacts", "Hiding main form", "Unloading forms",
                             "Finished Shutdown of 1", "Unloading main form", "Finished"}) {
      const std::size_t next = log.find(line, at);
      QVERIFY2(next != std::string::npos, line);
      at = next;
    }
  }

  // Erasing an account's server mail asks first; No leaves the mailbox whole.
  void deleteAllFromTheToolbarAsksFirst() {
    Scanner scanner(settings());
    scanner.controller.startup();
    auto* entry = scanner.window.findChild<QAction*>("DELALL0");
    QVERIFY(entry);
    const int before = server_.messageCount();

    scanner.prompt.queue(Answer::No);
    entry->trigger();
    QCOMPARE(scanner.prompt.lastQuestion,
             std::string("You're about to erase all mail, good and bad, from server\r\n'Home' (127.0.0.1)\r\n"
                         "Are you absolutely certain you want to do this?"));
    QVERIFY(!scanner.controller.passRunning());
    QCOMPARE(server_.messageCount(), before);

    QSignalSpy ended(&scanner.controller, &MailController::passEnded);
    scanner.prompt.queue(Answer::Yes);
    entry->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 1, 20000);
    QCOMPARE(server_.messageCount(), 0);
    fillMailbox();
    QVERIFY(scanner.controller.exitProgram());
  }

  void functionKeysStartPasses() {
    Scanner scanner(settings());
    scanner.controller.startup();
    QSignalSpy ended(&scanner.controller, &MailController::passEnded);
    scanner.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&scanner.window));
    QTest::keyClick(&scanner.window, Qt::Key_F5);
    QVERIFY(scanner.controller.passRunning());
    QCOMPARE(scanner.controller.pass().kind, PassKind::Scan);
    QVERIFY(!scanner.controller.pass().deleteSpam);
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 1, 20000);
    QTest::keyClick(&scanner.window, Qt::Key_F2, Qt::ControlModifier);
    QCOMPARE(scanner.controller.pass().kind, PassKind::Download);
    QVERIFY(scanner.controller.pass().deleteSpam);
    // The toolbar's send-and-receive button stops a running pass.
    scanner.window.findChild<QToolButton*>("upanddown")->click();
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 2, 20000);
    QVERIFY(!scanner.controller.passRunning());
    QVERIFY(scanner.controller.exitProgram());
  }

  // The mailer button opens the mail window in place of the scanner; it
  // follows the pass and sends its own requests to the controller.
  void theMailWindowTakesOverAndFollowsThePass() {
    Scanner scanner(settings());
    scanner.controller.startup();
    scanner.window.findChild<QToolButton*>("mailer")->click();
    MailerWindow* mailer = scanner.window.mailer();
    QVERIFY(mailer && mailer->isVisible());
    QVERIFY(!scanner.window.isVisible());
    QCOMPARE(scanner.window.openMailer(), static_cast<store::NewMessageSink*>(mailer));
    QVERIFY(mailer->findChild<QAction*>("DLM0"));
    QSignalSpy ended(&scanner.controller, &MailController::passEnded);
    QTest::keyClick(mailer, Qt::Key_F5);
    QVERIFY(scanner.controller.passRunning());
    QCOMPARE(mailer->toolbar().button("upanddown")->toolTip(), QString("Send/Receive\nStop the mail check that is running"));
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == 1, 20000);
    QCOMPARE(mailer->toolbar().button("upanddown")->toolTip(), QString("Send/Receive\nSend the outbox and download new mail"));
    mailer->toolbar().button("scanner")->click();
    QVERIFY(scanner.window.isVisible());
    QVERIFY(!mailer->isVisible());
    QVERIFY(scanner.controller.exitProgram());
  }

  // Without a tray the window must stay reachable: closing minimises it.
  void withoutATrayClosingMinimises() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\n");
    scanner.controller.startup();
    if (QSystemTrayIcon::isSystemTrayAvailable()) QSKIP("this desktop has a tray");
    scanner.window.findChild<QToolButton*>("close")->click();
    QVERIFY(scanner.window.isVisible());
    QVERIFY(scanner.window.isMinimized());
    QVERIFY(scanner.controller.exitProgram());
  }

  // The box the settings dialog writes hides the window at the next start;
  // without a tray it is minimised instead, so it can still be reached.
  void startMinimisedHidesTheWindowAtStart() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nSTARTMIN,1\r\n");
    scanner.controller.startup();
    if (QSystemTrayIcon::isSystemTrayAvailable()) QVERIFY(!scanner.window.isVisible());
    else QVERIFY(scanner.window.isMinimized());
    QVERIFY(scanner.controller.exitProgram());
  }

  void theAccountMenusNameEveryAccount() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\nTITLE0,Home\r\nREPLYADDRESS3,x@example.org\r\n");
    scanner.controller.startup();
    QCOMPARE(scanner.window.findChild<QAction*>("DELALL0")->text(), QString("Delete ALL from: Home"));
    // An account with neither title nor user name is still named, by its number.
    QCOMPARE(scanner.window.findChild<QAction*>("DLM3")->text(), QString("Download Mail from Account 4"));
    QVERIFY(scanner.controller.exitProgram());
  }

  void reinforcingAsksFirst() {
    Scanner scanner("REPLYADDRESS0,me@example.org\r\n");
    int taught = 0;
    scanner.window.host().reinforce = [&taught] { ++taught; };
    scanner.window.refreshAvailability();
    scanner.controller.startup();
    auto* entry = scanner.window.findChild<QAction*>("reinforce");
    scanner.prompt.queue(Answer::No);
    entry->trigger();
    QCOMPARE(taught, 0);
    QVERIFY(scanner.prompt.lastQuestion.starts_with("This will allocate all orange messages to 'spam'"));
    scanner.prompt.queue(Answer::Yes);
    entry->trigger();
    QCOMPARE(taught, 1);
    QVERIFY(scanner.controller.exitProgram());
  }

  // Last: it stops the server, and blocks must work without it.
  void aBlockOnTwoRowsRewritesTheListWithoutTheServer() {
    Scanner scanner(settings());
    scanner.controller.startup();
    judgeLikeTheMailbox(scanner);
    scanner.scan();
    server_.stop();

    scanner.select({scanner.rowOfSubject("Lunch plans"), scanner.rowOfSubject("Maybe spam")});
    scanner.openContextMenu(scanner.rowOfSubject("Lunch plans"))->hide();
    scanner.menuEntry("mnublockSender")->trigger();

    const std::string blocked = files::loadTextFile(scanner.home / "Blocked.txt");
    QVERIFY(blocked.find("ann@example.org") != std::string::npos);
    QVERIFY(blocked.find("unsure@maybe.example") != std::string::npos);
    for (const char* subject : {"Lunch plans", "Maybe spam"}) {
      const int row = scanner.rowOfSubject(subject);
      QCOMPARE(scanner.cell(row, ServerMailColumn::Status), QString("BLOCK"));
      QCOMPARE(colourOf(scanner, row), QColor(255, 0, 0));
    }
    // The other rows keep their verdicts.
    QCOMPARE(scanner.cell(scanner.rowOfSubject("Cheap offer"), ServerMailColumn::Status), QString("FAIL"));

    // A message without a usable address blocks nothing, and the list is still rebuilt.
    scanner.controller.blockOrUnblock(BlockTarget::Sender, true, {"no such key"});
    scanner.model().flush();
    QCOMPARE(scanner.model().rowCount(), 6);
    QVERIFY(scanner.controller.exitProgram());
  }

  // A rule made in the editor judges the listed headers at once, with no server to ask.
  void aNewDeleteRuleFailsTheRowsWithoutTheServer() {
    // The server may have been stopped, and comes back on another port.
    QVERIFY(server_.running() || server_.start());
    for (const char* name : {"9.1", "9.2"}) {
      server_.deliver(name, mail("Ann <ann@example.org>", "me@example.org", "Lunch plans"));
    }
    Scanner scanner(settings());
    scanner.controller.startup();
    scanner.controller.serverFilters().setRules({});
    scanner.scan();
    server_.stop();
    QCOMPARE(scanner.cell(scanner.rowOfSubject("Lunch plans"), ServerMailColumn::Status), QString("PASS"));

    QTimer::singleShot(0, [] {
      QWidget* editor = QApplication::activeModalWidget();
      if (!editor) return;
      auto* name = editor->findChild<QLineEdit*>("txtFilterName");
      name->clear();
      QTest::keyClicks(name, "No lunch");
      auto* on = editor->findChild<QCheckBox*>("chkOn_0");
      if (!on->isChecked()) QTest::mouseClick(on, Qt::LeftButton, {}, QPoint(4, on->height() / 2));
      auto* field = editor->findChild<QComboBox*>("cmbField_0");
      field->setCurrentIndex(field->findText("Subject:"));
      QTest::keyClicks(editor->findChild<QLineEdit*>("txtText_0"), "Lunch");
      auto* action = editor->findChild<QComboBox*>("cmbWhenMatched");
      for (int i = 0; i < action->count(); ++i) {
        if (action->itemData(i).toString() == "100") action->setCurrentIndex(i);
      }
      editor->findChild<QPushButton*>("cmdSaveAndExit")->click();
    });
    scanner.window.findChild<QAction*>("serverfilters")->trigger();

    const int row = scanner.rowOfSubject("Lunch plans");
    QCOMPARE(scanner.cell(row, ServerMailColumn::Status), QString("FAIL"));
    QCOMPARE(scanner.cell(row, ServerMailColumn::FilteredBy), QString("No lunch"));
    QVERIFY(files::loadTextFile(scanner.home / "Rules.txt").find("Filtername, No lunch") != std::string::npos);
    QVERIFY(scanner.controller.exitProgram());
  }
};

QTEST_MAIN(ScannerWindowTest)
#include "scanner_window_test.moc"
