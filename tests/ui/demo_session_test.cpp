// The scanner window on the demo's home and sandbox, as `vonel --demo` runs
// it: the first scan shows every status word, a block needs no server,
// "Scan and Delete" removes exactly what failed from the sandbox, and
// "Send/Receive" files the mail where the engine decides and delivers what
// was sent to a sandbox address by the next scan.
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "app/mail_controller.h"
#include "app/platform.h"
#include "app/qtext.h"
#include "core/files/file_text.h"
#include "core/send/outbox.h"
#include "demo/demo_home.h"
#include "demo/sandbox_server.h"
#include "ui/scanner/scanner_window.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

// The demo's accounts hold their passwords; a question would be a fault.
struct NoPasswordAsked : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool&) override {
    ++asked;
    cancelled = true;
    return {};
  }
  int asked = 0;
};

// "Home" or "Work" and the subject of each message in a sandbox mailbox, sorted.
std::multiset<std::pair<QString, QString>> mailboxSubjects(const fs::path& sandbox) {
  std::multiset<std::pair<QString, QString>> subjects;
  for (const char* box : {"Home", "Work"}) {
    for (const auto& entry : fs::directory_iterator(sandbox / box)) {
      const std::string text = files::loadTextFile(entry.path());
      const std::size_t at = text.find("\r\nSubject: ") + 11;
      subjects.insert({box, QString::fromStdString(text.substr(at, text.find("\r\n", at) - at))});
    }
  }
  return subjects;
}

// Messages only: the store keeps its cache and tag files beside them.
std::size_t filesIn(const fs::path& folder) {
  if (!fs::exists(folder)) return 0;
  return static_cast<std::size_t>(std::count_if(fs::directory_iterator(folder), fs::directory_iterator(), [](const auto& e) {
    return QString::fromStdString(e.path().extension().string()).compare(".eml", Qt::CaseInsensitive) == 0;
  }));
}

}  // namespace

class DemoSessionTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir temporary_;
  std::optional<demo::DemoHome> home_;
  std::unique_ptr<sandbox::SandboxServer> server_;
  FixedClock clock_{text::DateTime{2026, 1, 15, 9, 0, 0}};
  ScriptedPrompt prompt_;
  std::unique_ptr<AppContext> context_;
  std::unique_ptr<ScannerWindow> window_;
  NoPasswordAsked passwords_;
  std::unique_ptr<MailController> controller_;

  // The sandbox anew, and the accounts pointed at its ports.
  void openSandbox() {
    server_ = std::make_unique<sandbox::SandboxServer>(home_->sandboxFolder());
    QVERIFY(server_->open());
    for (const int account : {0, 1}) {
      context_->settings.set(accountKey("POPPORT", account), Value(server_->pop3Port()));
      context_->settings.set(accountKey("SMTPPORT", account), Value(server_->smtpPort()));
    }
  }
  void waitForPass(QSignalSpy& ended, int passes) {
    QTRY_VERIFY_WITH_TIMEOUT(ended.count() == passes, 30000);
    window_->serverMail().flush();
  }
  // Rows of messages by their status word.
  std::map<QString, std::vector<const ServerMailRow*>> rowsByStatus() {
    std::map<QString, std::vector<const ServerMailRow*>> rows;
    for (int i = 0; i < window_->serverMail().rowCount(); ++i) {
      const ServerMailRow& row = window_->serverMail().row(i);
      if (row.kind == ServerMailRowKind::Message) rows[row.cell(ServerMailColumn::Status)].push_back(&row);
    }
    return rows;
  }
  const ServerMailRow* rowFrom(const QString& sender) {
    for (int i = 0; i < window_->serverMail().rowCount(); ++i) {
      const ServerMailRow& row = window_->serverMail().row(i);
      if (row.kind == ServerMailRowKind::Message && row.cell(ServerMailColumn::From).contains(sender)) return &row;
    }
    return nullptr;
  }
  static QString account(const ServerMailRow& row) {
    return row.cell(ServerMailColumn::AccountIndex) == "0" ? "Home" : "Work";
  }
  void spool(const std::string& to, const std::string& subject) {
    message::Message m;
    m.fromAccount = 1;
    m.from = "Robin Ashdown <r.ashdown@example.com>";
    m.setToEmail(to);
    m.subject = subject;
    m.setMessageBody("Sent from the demo test.\r\n");
    controller_->outbox()->sender().spoolMessage(m, "", "");
  }

 private slots:
  void initTestCase() {
    QVERIFY(temporary_.isValid());
    QString error;
    home_ = demo::DemoHome::create(temporary_.path().toStdString(), error);
    QVERIFY2(home_.has_value(), qPrintable(error));
    server_ = std::make_unique<sandbox::SandboxServer>(home_->sandboxFolder());
    QVERIFY(server_->open());
    home_->fill({server_->pop3Port(), server_->smtpPort()}, QDate(2026, 1, 15));
    context_ = std::make_unique<AppContext>(clock_, prompt_, AppInfo{"Vonel", "1", "os", "/", home_->folder()},
                                            platformLocaleFacts());
    window_ = std::make_unique<ScannerWindow>(*context_);
    controller_ = std::make_unique<MailController>(*context_, *window_, passwords_);
    window_->attach(*controller_);
  }

  void theFirstScanRunsByItselfAndShowsAllFiveStatusWords() {
    QSignalSpy ended(controller_.get(), &MailController::passEnded);
    QCOMPARE(controller_->startup(), StartupResult::Started);
    waitForPass(ended, 1);
    const auto rows = rowsByStatus();
    for (const char* word : {"PASS", "SPAM?", "FAIL", "BLOCK", "IGNORE"}) {
      QVERIFY2(rows.count(word) == 1, word);
    }
    QCOMPARE(rows.at("IGNORE").front()->cell(ServerMailColumn::Subject), QString("N/A"));
    QCOMPARE(passwords_.asked, 0);
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
      window_->resize(1100, 700);
      QVERIFY(window_->grab().save(QDir(shots).filePath("demo_first_scan.png")));
    }
  }

  void aBlockTurnsARowBlockWithTheSandboxStopped() {
    server_->stop();
    const ServerMailRow* sam = rowFrom("sam.okoro@example.org");
    QVERIFY(sam);
    QCOMPARE(sam->cell(ServerMailColumn::Status), QString("PASS"));
    const std::string key = fromQString(sam->key);
    controller_->blockOrUnblock(BlockTarget::Sender, true, {key});
    window_->serverMail().flush();
    QCOMPARE(rowFrom("sam.okoro@example.org")->cell(ServerMailColumn::Status), QString("BLOCK"));
    controller_->blockOrUnblock(BlockTarget::Sender, false, {key});
    window_->serverMail().flush();
    QCOMPARE(rowFrom("sam.okoro@example.org")->cell(ServerMailColumn::Status), QString("PASS"));
    openSandbox();
  }

  void scanAndDeleteRemovesExactlyTheFailedAndBlockedMessages() {
    auto expected = mailboxSubjects(home_->sandboxFolder());
    const auto rows = rowsByStatus();
    std::size_t gone = 0;
    for (const char* word : {"FAIL", "BLOCK"}) {
      for (const ServerMailRow* row : rows.at(word)) {
        const auto found = expected.find({account(*row), row->cell(ServerMailColumn::Subject)});
        QVERIFY2(found != expected.end(), qPrintable(row->cell(ServerMailColumn::Subject)));
        expected.erase(found);
        ++gone;
      }
    }
    QVERIFY(gone >= 4);
    QSignalSpy ended(controller_.get(), &MailController::passEnded);
    controller_->scanAndDelete();
    waitForPass(ended, 1);
    QVERIFY(mailboxSubjects(home_->sandboxFolder()) == expected);
    const auto after = rowsByStatus();
    QVERIFY(after.count("FAIL") == 0 && after.count("BLOCK") == 0);
  }

  void sendReceiveFilesMailAsTheEngineDecidesAndDeliversToTheSandbox() {
    const fs::path messages = home_->folder() / "Messages";
    const std::size_t inboxBefore = filesIn(messages / "Inbox");
    const std::size_t spamBefore = filesIn(messages / "SpamBayes");
    const auto rows = rowsByStatus();
    const std::size_t suspicious = rows.at("SPAM?").size();
    const std::size_t passed = rows.at("PASS").size();
    spool("robin@example.org", "Arrives at Home");
    spool("kai@example.net", "Leaves the sandbox");

    QSignalSpy ended(controller_.get(), &MailController::passEnded);
    controller_->toolbarSendReceive();
    waitForPass(ended, 1);
    QTRY_VERIFY_WITH_TIMEOUT(!controller_->outbox()->running(), 20000);

    // The two mailing-list messages by their rule, the suspicious ones as spam, the rest in the inbox.
    QCOMPARE(filesIn(messages / "Lists"), std::size_t{2});
    QCOMPARE(filesIn(messages / "SpamBayes"), spamBefore + suspicious);
    QCOMPARE(filesIn(messages / "Inbox"), inboxBefore + passed - 2);
    QCOMPARE(filesIn(home_->sandboxFolder() / "outgoing"), std::size_t{1});
    QCOMPARE(filesIn(messages / "Outbox"), std::size_t{0});

    controller_->scan();
    waitForPass(ended, 2);
    const ServerMailRow* arrived = rowFrom("r.ashdown@example.com");
    QVERIFY(arrived);
    QCOMPARE(arrived->cell(ServerMailColumn::Subject), QString("Arrives at Home"));
    QCOMPARE(account(*arrived), QString("Home"));
  }

  void cleanupTestCase() {
    if (controller_) QVERIFY(controller_->exitProgram(ExitQuestions::Skip));
    controller_.reset();
    window_.reset();
    server_.reset();
  }
};

QTEST_MAIN(DemoSessionTest)
#include "demo_session_test.moc"
