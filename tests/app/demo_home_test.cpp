// The demo's home: made only for its owner, filled through the program's
// writers with mail that is the same on every run, and removed by the next
// demo only once its owner is gone.
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"
#include "core/rules/rule_file.h"
#include "core/settings/accounts.h"
#include "demo/demo_home.h"
#include "demo/sample_mail.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

std::size_t filesIn(const fs::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) count += entry.path().extension() == ".eml";
  return count;
}

// The value of a header line, or nothing when the message has none.
std::optional<std::string> header(const std::string& message, std::string_view name) {
  const std::string head = message.substr(0, message.find("\r\n\r\n"));
  const std::size_t at = ("\r\n" + head).find("\r\n" + std::string(name) + ": ");
  if (at == std::string::npos) return std::nullopt;
  const std::size_t start = at + name.size() + 2;
  return head.substr(start, head.find("\r\n", start) - start);
}

// A process id that no process has: one that has ended and been reaped.
qint64 endedProcessId() {
  QProcess process;
  process.start("true", {});
  process.waitForFinished();
  return process.processId() > 0 ? process.processId() : 999999;
}

}  // namespace

class DemoHomeTest : public QObject {
  Q_OBJECT

 private slots:
  void aHomeIsOnlyItsOwnersAndNamesItsProcess() {
    QTemporaryDir temporary;
    QString error;
    const auto home = demo::DemoHome::create(temporary.path().toStdString(), error);
    QVERIFY(home);
    QVERIFY(home->folder().filename().string().starts_with("vonel-demo-"));
    struct stat info {};
    QCOMPARE(::stat(home->folder().c_str(), &info), 0);
    QCOMPARE(info.st_mode & 0777, 0700u);
    QCOMPARE(files::loadTextFile(home->folder() / "owner.pid"), std::to_string(::getpid()));

    const auto none = demo::DemoHome::create(temporary.filePath("missing/deeper").toStdString(), error);
    QVERIFY(!none);
    QVERIFY(!error.isEmpty());
  }

  void onlyHomesWhoseOwnerIsGoneAreRemoved() {
    QTemporaryDir temporary;
    const fs::path folder = temporary.path().toStdString();
    const auto home = [&folder](const char* name, std::optional<qint64> owner) {
      fs::create_directories(folder / name);
      if (owner) files::writeTextFile(folder / name / "owner.pid", std::to_string(*owner));
      return folder / name;
    };
    const fs::path live = home("vonel-demo-live01", ::getpid());
    const fs::path gone = home("vonel-demo-gone01", endedProcessId());
    const fs::path starting = home("vonel-demo-start1", std::nullopt);
    const fs::path other = home("vonel-other-gone", endedProcessId());
    const fs::path target = home("target", endedProcessId());
    fs::create_directory_symlink(target, folder / "vonel-demo-link01");

    demo::DemoHome::removeOrphans(folder);
    QVERIFY(fs::exists(live));
    QVERIFY(!fs::exists(gone));
    QVERIFY(fs::exists(starting));  // just made: its owner file is on the way
    QVERIFY(fs::exists(other));
    QVERIFY(fs::exists(target / "owner.pid"));
  }

  void aFilledHomeHoldsTheAccountsRulesListsMailAndTrainedTables() {
    QTemporaryDir temporary;
    QString error;
    const auto home = demo::DemoHome::create(temporary.path().toStdString(), error);
    QVERIFY(home);
    home->fill({1110, 2225}, QDate(2026, 1, 15));
    const fs::path root = home->folder();

    FixedClock clock{text::DateTime{2026, 1, 15, 9, 0, 0}};
    ScriptedPrompt prompt;
    AppContext context{clock, prompt, AppInfo{"Vonel", "1", "os", "/", root}};
    context.settings.loadSettings(context.settingsFile());
    const Account work = readAccount(context.settings, 1, AccountReader::Session);
    QCOMPARE(work.title, std::string("Work"));
    QCOMPARE(work.popPort, 1110);
    QCOMPARE(work.smtpPort, 2225);
    QCOMPARE(work.password, std::string("river-work"));
    QVERIFY(files::loadTextFile(root / "Vonel.ini").find("river-work") == std::string::npos);
    QVERIFY(context.settings.get("ScanOnStart").flag());
    QVERIFY(context.settings.get("DisableAutoUpdateCheck").flag());

    rules::RuleSet rules;
    rules::loadFilters(rules, root / "Rules.txt", true, context.log);
    QCOMPARE(rules.size(), std::size_t{3});
    QCOMPARE(rules[0].filterName, std::string("Lottery winners"));
    QCOMPARE(rules[0].strings(1), std::string("lottery"));
    for (const char* list : {"Blocked.txt", "BlockedDomains.txt", "BlockedRecip.txt", "BlockedRecipDomains.txt",
                             "Ignore.txt"}) {
      QVERIFY2(!files::loadTextFile(root / list).empty(), list);
    }

    QCOMPARE(filesIn(root / "Sandbox" / "Home") + filesIn(root / "Sandbox" / "Work"), std::size_t{36});
    QCOMPARE(filesIn(root / "Messages" / "Inbox"), std::size_t{20});
    QCOMPARE(filesIn(root / "Messages" / "SpamBayes"), std::size_t{20});
    for (const char* table : {"HashGood.dat", "HashBad.dat", "HashTable.dat"}) {
      QVERIFY2(fs::file_size(root / table) > 0, table);
    }
  }

  void theSampleMailIsTheSameOnEveryRunAndOnlyItsDatesFollowTheDay() {
    const auto day = sandbox::sampleMail(QDate(2026, 1, 15));
    const auto again = sandbox::sampleMail(QDate(2026, 1, 15));
    const auto later = sandbox::sampleMail(QDate(2026, 3, 1));
    QCOMPARE(day.size(), again.size());
    std::multiset<std::string> ids;
    int withoutId = 0;
    std::size_t biggest = 0;
    for (std::size_t i = 0; i < day.size(); ++i) {
      const std::string& bytes = day[i].bytes;
      QVERIFY(bytes == again[i].bytes);
      const std::string dated = header(bytes, "Date").value_or("");
      QVERIFY(dated.ends_with("+0000"));
      QCOMPARE(text::replaceAll(later[i].bytes, header(later[i].bytes, "Date").value_or(""), dated), bytes);
      // Every line ends in CR LF, as the wire and the store want.
      QVERIFY(bytes.ends_with("\r\n"));
      for (std::size_t at = bytes.find('\n'); at != std::string::npos; at = bytes.find('\n', at + 1)) {
        QVERIFY(at > 0 && bytes[at - 1] == '\r');
      }
      if (const auto id = header(bytes, "Message-ID")) ids.insert(*id); else ++withoutId;
      biggest = std::max(biggest, bytes.size());
    }
    QCOMPARE(withoutId, 1);
    QCOMPARE(ids.count("<lunch-1@example.org>"), std::size_t{2});
    QCOMPARE(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size() - 1);
    QVERIFY(biggest >= 300 * 1024);
    // The day before the demo day at the latest: nothing is dated in the future.
    QVERIFY(header(day.front().bytes, "Date")->find("Jan 2026") != std::string::npos);
  }
};

QTEST_MAIN(DemoHomeTest)
#include "demo_home_test.moc"
