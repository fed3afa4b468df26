#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QSignalSpy>
#include <QSplitter>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/store/tag_files.h"
#include "support/app_home.h"
#include "support/store_generator.h"
#include "ui/mailer/folder_tree.h"
#include "ui/mailer/mailer_toolbar.h"
#include "ui/mailer/mailer_window.h"
#include "ui/mailer/message_list_pane.h"
#include "ui/mailer/message_preview.h"
#include "ui/scanner/server_mail_model.h"
#include "ui/twips.h"
#include "ui/window_host.h"

using namespace vonel;

namespace {

namespace fs = std::filesystem;

// A stored message; the read state is in its store header and in its file name's case.
std::string mail(const std::string& subject, bool read = false) {
  return "From: Ann <ann@example.org>\r\nTo: me@example.org\r\nSubject: " + subject +
         "\r\nDate: Mon, 23 Nov 2026 07:00:00 +0000\r\n" + (read ? "X-Message-Read: 1\r\n" : "") +
         "\r\nHello, see http://example.org/x\r\n";
}

// The mail window on a store with an inbox of three messages and a folder below it.
struct Mailer {
  explicit Mailer(std::string_view settings = {}) : home(settings) {
    for (const char* name : {"ONE.EML", "TWO.EML"}) files::writeTextFile(home.context.folders.inboxFolderPath / name, mail(name));
    files::writeTextFile(home.context.folders.inboxFolderPath / "three.eml", mail("three", true));
    files::writeTextFile(home.storeFolder("Inbox/Work") / "WORK.EML", mail("work"));
  }
  testing::AppHome home;
  WindowHost host;
  ServerMailModel serverMail;
  MailerWindow window{home.context, host, serverMail};

  template <typename T>
  T* child(const char* name) const {
    return window.findChild<T*>(name);
  }
  std::string logText() {
    home.context.log.writeActionsToLog();
    return files::loadTextFile(home.context.log.currentLogFilename());
  }
  void load() {
    window.load();
    QTRY_VERIFY(!window.messageList().populating());
  }
  int rows() { return window.messageList().model().rowCount(); }
};

}  // namespace

class MailerWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void loadingLogsItsStepsInOrderAndListsTheInbox() {
    Mailer m;
    m.load();
    const std::string log = m.logText();
    std::size_t at = 0;
    for (const char* step : {"Loading Mailer Form", "Setting Window state", "Setting col widths", "Showing form",
                             "Populating folders", "Finished adding folders", "Populating message folder"}) {
      const std::size_t found = log.find(step, at);
      QVERIFY2(found != std::string::npos, step);
      at = found;
    }
    QCOMPARE(FolderTree::keyOf(m.window.tree().chosenNode()), QString("inbox"));
    QVERIFY(m.window.tree().nodeForKey("inbox\\work"));
    QCOMPARE(m.rows(), 3);
  }

  void everyControlIsThereByNameWithANameForAScreenReader() {
    Mailer m;
    m.load();
    for (const char* name : {"TreeView1", "ListView1", "ListServerMail", "txtMessage", "txtSearchString", "cmbTags",
                             "imgScan", "imgScanDel", "imgStop"}) {
      auto* widget = m.child<QWidget>(name);
      QVERIFY2(widget, name);
      QVERIFY2(!QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name).isEmpty(), name);
    }
    for (const char* name : {"ListViewBackup", "picMailHeader", "txtHider", "picMailFooter", "Toolbar2", "Toolbar1",
                             "StatusBar1", "lblMessageListStatus", "imgHorDivide", "imgVertDivide"}) {
      QVERIFY2(m.child<QWidget>(name), name);
    }
    QCOMPARE(m.child<QToolButton>("imgScan")->toolTip(), QString("Scan mail (F5)"));
    QCOMPARE(m.child<QToolButton>("imgScanDel")->toolTip(), QString("Delete spam from server (Ctrl-F5)"));
    QVERIFY(!m.child<QWidget>("ListViewBackup")->isVisible());
  }

  void sizesAreTwipsReadAtLoadAndWrittenAtClose() {
    Mailer fresh;
    fresh.load();
    QCOMPARE(fresh.window.height(), twips::toPixels(fresh.window, 9864));
    QCOMPARE(fresh.window.width(), twips::toPixels(fresh.window, 9864));

    Mailer m("MailerWidth,12000\r\nMailerHeight,7200\r\nTreeViewWidth,1440\r\nMLR_SUBJECTWIDTH,2880\r\n");
    m.load();
    QCOMPARE(m.window.width(), twips::toPixels(m.window, 12000));
    QCOMPARE(m.window.height(), twips::toPixels(m.window, 7200));
    QCOMPARE(m.window.messageList().view().header()->sectionSize(3), twips::toPixels(m.window, 2880));
    m.window.resize(twips::toPixels(m.window, 9000), m.window.height());
    m.window.messageList().view().header()->resizeSection(1, twips::toPixels(m.window, 1000));
    m.window.close();
    const auto setting = [&m](const char* key) { return m.home.context.settings.get(key, Value(-1)).numberOr(-1); };
    QCOMPARE(setting("MailerWidth"), double(twips::fromPixels(m.window, m.window.width())));
    QCOMPARE(setting("MLR_SIZEWIDTH"), double(twips::fromPixels(m.window, twips::toPixels(m.window, 1000))));
    QCOMPARE(setting("MailerWindowState"), 0.0);
    QVERIFY(setting("TreeViewWidth") > 0);
  }

  void aStoreWithoutItsInboxIsListedExactlyOnceMore() {
    Mailer m;
    fs::remove_all(m.home.context.folders.inboxFolderPath);
    m.window.load();
    const std::string log = m.logText();
    std::size_t rescans = 0;
    for (auto at = log.find("Inbox not found, rescanning"); at != std::string::npos;
         at = log.find("Inbox not found, rescanning", at + 1)) {
      ++rescans;
    }
    QCOMPARE(rescans, std::size_t(2));
    QVERIFY(m.window.tree().topLevelItemCount() > 0);
  }

  void keysAndPaneButtonsAskTheMainProgram() {
    Mailer m;
    m.load();
    QSignalSpy scans(&m.window, &MailerWindow::scan);
    QSignalSpy cleans(&m.window, &MailerWindow::scanAndDelete);
    QTest::keyClick(&m.window, Qt::Key_F5);
    QTest::keyClick(&m.window, Qt::Key_F5, Qt::ControlModifier);
    m.child<QToolButton>("imgScan")->click();
    QCOMPARE(scans.count(), 2);
    QCOMPARE(cleans.count(), 1);
  }

  void choosingAFolderListsItAndTheUnreadButtonCyclesItsFilter() {
    Mailer m;
    m.load();
    m.window.tree().setCurrentItem(m.window.tree().nodeForKey("inbox\\work"));
    QTRY_COMPARE(m.rows(), 1);
    m.window.tree().setCurrentItem(m.window.tree().nodeForKey("inbox"));
    QTRY_COMPARE(m.rows(), 3);
    m.window.toolbar().button("unread")->click();
    QCOMPARE(store::folderShowFilter(m.home.context.folders.inboxFolderPath), store::ShowFilter::UnreadOnly);
    QTRY_COMPARE(m.rows(), 2);  // three.eml is read
  }

  void newMailForTheChosenFolderShowsAtOnceAndCountsAsUnread() {
    Mailer m;
    m.load();
    const fs::path file = m.home.context.folders.inboxFolderPath / "NEW.EML";
    files::writeTextFile(file, mail("fresh news"));
    message::Message arrived;
    arrived.createFromText(mail("fresh news"), false);
    m.window.addNewMessage(file, m.home.context.folders.inboxFolderPath, arrived);
    QTRY_COMPARE(m.rows(), 4);
    QCOMPARE(store::unreadTagCount(m.home.context.folders.inboxFolderPath), std::int16_t(3));
    QVERIFY(m.window.tree().nodeForKey("inbox")->font(0).bold());
  }

  // Folders in every age colour, a generated inbox and a preview with links
  // and two attachments; a 50,000-message folder too when VONEL_SCREENSHOT_BIG is set.
  void screenshots() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Mailer m;
    auto& context = m.home.context;
    testing::generateStoreFolder(context, context.folders.inboxFolderPath, {300, 7, {2026, 11, 23, 9, 0, 0}, true});
    const long today = static_cast<long>(context.clock.now().serial());
    const std::pair<const char*, long> aged[] = {{"Inbox/Work", 0}, {"Inbox/Work/Projects", 3}, {"Lists", 20},
                                                 {"Lists/Old announcements", 45}, {"Family", 1}};
    for (const auto& [folder, age] : aged) {
      const fs::path path = m.home.storeFolder(folder);
      files::writeTextFile(path / "Unread.Tag", std::to_string(age + 2));
      files::writeTextFile(path / "LastMsg.Tag", std::to_string(today - age));
    }
    files::writeTextFile(context.folders.inboxFolderPath / "ZZ LINKS AND ATTACHMENTS.EML",
                         "From: \"Ann Example\" <ann@example.com>\r\nTo: bob@example.com\r\nCc: team@example.org\r\n"
                         "Subject: Minutes, <b>agenda</b> and the plan\r\nDate: Mon, 23 Nov 2026 09:30:00 +0000\r\n"
                         "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"b1\"\r\n\r\n--b1\r\n"
                         "Content-Type: text/plain\r\n\r\nHi Bob,\r\n\r\nThe minutes are at https://example.org/minutes, "
                         "the old ones at www.example.net/archive.\r\nQuestions to ann@example.com please.\r\n\r\nAnn\r\n"
                         "--b1\r\nContent-Type: application/pdf; name=\"minutes.pdf\"\r\nContent-Transfer-Encoding: base64\r\n"
                         "Content-Disposition: attachment; filename=\"minutes.pdf\"\r\n\r\nJVBERi0xLjQKJcOkw7zDtsOfCg==\r\n"
                         "--b1\r\nContent-Type: image/png; name=\"plan.png\"\r\nContent-Transfer-Encoding: base64\r\n"
                         "Content-Disposition: attachment; filename=\"plan.png\"\r\n\r\niVBORw0KGgo=\r\n--b1--\r\n");
    fs::remove(context.folders.inboxFolderPath / "cache.xml");
    fs::remove(context.folders.folderNamesFile);
    m.load();
    m.window.resize(1200, 800);
    QTRY_VERIFY(m.window.preview().current() != nullptr);
    QTest::qWait(200);
    m.window.grab().save(shots + "/mailer-folders-and-preview.png");

    if (qEnvironmentVariableIsEmpty("VONEL_SCREENSHOT_BIG")) return;
    const fs::path big = m.home.storeFolder("Big");
    testing::generateStoreFolder(context, big, {50000, 3, {2026, 11, 23, 9, 0, 0}, true});
    m.window.populateFolders(true);
    m.window.tree().setCurrentItem(m.window.tree().nodeForKey("big"));
    QTRY_VERIFY_WITH_TIMEOUT(m.rows() == 50000 && !m.window.messageList().populating(), 60000);
    QTest::qWait(200);
    m.window.grab().save(shots + "/mailer-50000.png");
  }
};

QTEST_MAIN(MailerWindowTest)
#include "mailer_window_test.moc"
