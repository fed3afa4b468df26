#include <QtTest>
#include <filesystem>
#include <set>

#include "app/pop3/pop3_connection.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"
#include "core/store/received_mail.h"
#include "support/dovecot_server.h"

using namespace vonel;

namespace {

namespace fs = std::filesystem;

// Stores each downloaded message as the program does, and notes how the session ends.
struct Storer : pop3::Pop3Listener {
  explicit Storer(AppContext& context) : ctx(context) {}
  AppContext& ctx;
  std::vector<std::string> errors;
  std::vector<pop3::FailureKind> failures;
  bool finished = false;
  bool onMessageReceived(message::Message& message) override {
    store::saveReceivedMessage(ctx, message);
    return true;
  }
  void onPopError(const std::string&, const std::string& text) override { errors.push_back(text); }
  void onFailure(const pop3::Pop3Failure& failure) override { failures.push_back(failure.kind); }
  void onFinished(const std::string&, long) override { finished = true; }
};

struct NoPassword : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool&) override {
    cancelled = true;
    return {};
  }
};

}  // namespace

// A download's files reach the disk in one barrier before the QUIT that
// carries out its DELEs; a barrier that fails leaves the server untouched.
class DownloadBarrierTest : public QObject {
  Q_OBJECT

  QTemporaryDir home_;
  testing::DovecotServer server_;

  fs::path inbox() const { return fs::path(home_.path().toStdString()) / "Messages" / "Inbox"; }

  std::multiset<std::string> storedSubjects() const {
    std::multiset<std::string> subjects;
    if (!fs::exists(inbox())) return subjects;
    for (const auto& entry : fs::directory_iterator(inbox())) {
      const std::string text = files::loadTextFile(entry.path());
      const std::size_t at = text.find("Subject: ");
      subjects.insert(text.substr(at + 9, text.find('\r', at) - at - 9));
    }
    return subjects;
  }

  struct Outcome {
    std::vector<std::string> errors;
    std::vector<pop3::FailureKind> failures;
  };

  // One download pass with delete on retrieve, through the given barrier.
  Outcome download(files::WriteBatch writes) {
    FixedClock clock{text::DateTime{2026, 11, 23, 12, 0, 0}};
    ScriptedPrompt prompt;
    AppContext ctx(clock, prompt, AppInfo{"Vonel", "1", "os", "/", home_.path().toStdString()});
    ctx.settings.loadSettingsFromText(server_.accountSettings() + "CHECK0,1\r\nDELETEONRETRIEVE,1\r\nMAILTIMEOUT,5\r\n",
                                      "test");
    ctx.folders.readMessageFolder();
    ctx.folders.dataFolderPath = home_.path().toStdString();
    ctx.writes = std::move(writes);
    Storer storer(ctx);
    rules::PassEverything check;
    NoPassword passwords;
    Pop3Connection connection(ctx, storer, check, check, passwords);
    connection.session().getMessages(0, false);
    const bool finished = QTest::qWaitFor([&] { return storer.finished; }, 20000);
    if (!finished) storer.errors.push_back("(the session never finished)");
    return {storer.errors, storer.failures};
  }

  std::set<std::string> inboxNames() const {
    std::set<std::string> names;
    if (!fs::exists(inbox())) return names;
    for (const auto& entry : fs::directory_iterator(inbox())) names.insert(entry.path().filename().string());
    return names;
  }

 private slots:
  void initTestCase() { QVERIFY(server_.start()); }

  void theBarrierComesBeforeQuitAndAFailedOneKeepsEveryMessageOnTheServer() {
    for (int i = 1; i <= 12; ++i) {
      server_.deliver("m" + std::to_string(i), "From: s@example.org\r\nSubject: Number " + std::to_string(i) +
                                                   "\r\n\r\nBody " + std::to_string(i) + "\r\n");
    }
    int barriers = 0;
    int onServerAtBarrier = -1;
    const Outcome failed = download(files::WriteBatch([&](const std::vector<fs::path>&, const std::vector<fs::path>&) {
      if (barriers++ == 0) onServerAtBarrier = server_.messageCount();
      throw AppError(error_number::kDiskFull, "Disk full: Inbox");
    }));
    QCOMPARE(barriers, 1);  // one barrier for the pass
    QCOMPARE(onServerAtBarrier, 12);
    QCOMPARE(server_.messageCount(), 12);  // no QUIT: every DELE undone
    QCOMPARE(storedSubjects().size(), std::size_t{12});
    QVERIFY(std::find(failed.errors.begin(), failed.errors.end(), "Disk full: Inbox") != failed.errors.end());
    QVERIFY(!failed.failures.empty());
    QCOMPARE(failed.failures.back(), pop3::FailureKind::DiskFull);

    // The next pass finds them stored, deletes them and stores nothing twice.
    const Outcome rerun = download(files::WriteBatch(files::syncToDisk));
    QVERIFY(rerun.errors.empty());
    // The server may answer QUIT a moment before its mailbox shows the deletes.
    QTRY_COMPARE_WITH_TIMEOUT(server_.messageCount(), 0, 5000);
    std::multiset<std::string> expected;
    for (int i = 1; i <= 12; ++i) expected.insert("Number " + std::to_string(i));
    QCOMPARE(storedSubjects(), expected);
  }

  void aHealthyPassSyncsEveryStoredFileBeforeTheServerLetsGo() {
    for (int i = 1; i <= 5; ++i) server_.deliver("n" + std::to_string(i), "Subject: Later " + std::to_string(i) + "\r\n\r\nx\r\n");
    std::set<std::string> synced;
    int barriers = 0;
    int onServer = -1;
    const std::set<std::string> before = inboxNames();
    const Outcome healthy = download(files::WriteBatch([&](const std::vector<fs::path>& written, const std::vector<fs::path>& folders) {
      ++barriers;
      onServer = server_.messageCount();
      for (const auto* paths : {&written, &folders}) {
        for (const fs::path& path : *paths) synced.insert(path.filename().string());
      }
      files::syncToDisk(written, folders);
    }));
    QVERIFY(healthy.errors.empty());
    QCOMPARE(barriers, 1);
    QCOMPARE(onServer, 5);
    // The server may answer QUIT a moment before its mailbox shows the deletes.
    QTRY_COMPARE_WITH_TIMEOUT(server_.messageCount(), 0, 5000);
    QVERIFY(synced.contains("Fetched0.txt"));
    QVERIFY(synced.contains("Inbox"));
    const std::set<std::string> after = inboxNames();
    QCOMPARE(after.size(), before.size() + 5);
    for (const std::string& name : after) QVERIFY(before.contains(name) || synced.contains(name));
  }
};

QTEST_GUILESS_MAIN(DownloadBarrierTest)
#include "download_barrier_test.moc"
