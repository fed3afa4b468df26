#include "ui/mailer/message_list_pane.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "app/qtext.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "support/store_generator.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

// The pane on a store of its own.
struct Fixture {
  QTemporaryDir dir;
  const fs::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 9, 30, 0}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1", "os", "/", home}};
  const bool storeMade = (context.folders.readMessageFolder(), context.folders.readDataFolder(), true);
  MessageListPane pane{context};
  QSignalSpy finished{&pane, &MessageListPane::finished};
  QSignalSpy previews{&pane, &MessageListPane::previewRequested};
  QSignalSpy counts{&pane, &MessageListPane::countText};

  fs::path folder(const std::string& name) { return context.folders.messageFolderPath / name; }
  testing::GeneratedFolder make(const std::string& name, std::size_t count, bool warm = true) {
    return testing::generateStoreFolder(context, folder(name), {count, 7, {2026, 11, 23, 9, 0, 0}, warm});
  }
  void show(const std::string& name) { pane.showFolder(folder(name), QString::fromStdString(name)); }
  QString lastCount() const { return counts.isEmpty() ? QString() : counts.last().first().toString(); }
  QString lastPreview() const { return previews.isEmpty() ? QString() : previews.last().first().toString(); }
  MessageListView& view() { return pane.view(); }
  QList<int> selectedRows() {
    QList<int> rows;
    for (const QModelIndex& index : view().selectionModel()->selectedRows()) rows << index.row();
    return rows;
  }
  QString subject(int row) { return pane.model().index(row, 3).data().toString(); }
};

}  // namespace

class MessageListPaneTest : public QObject {
  Q_OBJECT

 private slots:
  void controlsCarryTheirNamesAndTips() {
    Fixture f;
    auto* search = f.pane.findChild<QLineEdit*>("txtSearchString");
    auto* tags = f.pane.findChild<QComboBox*>("cmbTags");
    QVERIFY(search && tags && f.pane.findChild<QLabel*>("lblMessageListStatus"));
    QCOMPARE(search->toolTip(), QString("Filter to emails containing this string in the header"));
    QCOMPARE(tags->toolTip(), QString("Tags filter. Clear to show all mail."));
    QVERIFY(!search->accessibleName().isEmpty() && !tags->accessibleName().isEmpty());
    QCOMPARE(f.view().objectName(), QString("ListView1"));
    QCOMPARE(f.view().accessibleName(), QString("Message list"));
    auto* backup = f.pane.findChild<QTreeView*>("ListViewBackup");
    QVERIFY(backup && backup->isHidden());
    QCOMPARE(backup->model()->columnCount(), kMessageListColumns);
    for (const char* name : {"TimerSearchString", "TimerTags"}) {
      auto* timer = f.pane.findChild<QTimer*>(name);
      QVERIFY(timer && timer->isSingleShot());
      QCOMPARE(timer->interval(), 400);
    }
  }

  void countTellsNoneOneManyAndFiltered() {
    Fixture f;
    f.make("Empty", 0);
    f.show("Empty");
    QCOMPARE(f.lastCount(), QString("No messages in Empty"));
    f.make("One", 1);
    f.show("One");
    QCOMPARE(f.lastCount(), QString("1 message in One"));
    const auto three = f.make("Three", 12);
    f.show("Three");
    QCOMPARE(f.lastCount(), QString("12 messages in Three"));
    f.pane.cycleShowFilter();
    QCOMPARE(f.lastCount(), QString::number(three.unread) + " unread messages in Three");
    QCOMPARE(f.pane.model().unreadRows(), f.pane.model().rowCount());
  }

  void archiveAdviceFrom1501Messages() {
    Fixture f;
    QSignalSpy hints(&f.pane, &MessageListPane::folderCountHint);
    QSignalSpy totals(&f.pane, &MessageListPane::folderMessageCount);
    f.make("Big", 1500);
    f.show("Big");
    QCOMPARE(hints.last().first().toString(), QString());
    QCOMPARE(totals.last().first().toString(), QString("1500 messages"));
    testing::GeneratedMessage extra;
    extra.name = "extra (000000-231126).eml";
    testing::writeGeneratedMessage(f.folder("Big"), extra);
    f.pane.rescanFolder();
    QCOMPARE(hints.last().first().toString(), QString("You can speed the program up by using 'Archive old mail'"));
    QCOMPARE(totals.last().first().toString(), QString("1501 messages"));
  }

  void theLastRowIsPreviewedAndTheChosenOneComesBack() {
    Fixture f;
    f.make("A", 10);
    f.make("B", 5);
    f.show("A");
    QCOMPARE(f.selectedRows(), QList<int>{9});
    QCOMPARE(f.lastPreview(), f.pane.model().fileAt(9));
    QTest::keyClick(&f.view(), Qt::Key_Up);
    const QString chosen = f.pane.model().fileAt(8);
    f.show("B");
    QCOMPARE(f.lastPreview(), f.pane.model().fileAt(4));
    f.show("A");
    QCOMPARE(f.lastPreview(), chosen);
    QCOMPARE(f.selectedRows(), QList<int>{8});
  }

  void theOutboxIsListedWithoutAPreviewAndNamesTheRecipient() {
    Fixture f;
    testing::generateStoreFolder(f.context, f.context.folders.outboxFolderPath, {3, 1, {2026, 11, 23, 9, 0, 0}, false});
    QSignalSpy cleared(&f.pane, &MessageListPane::clearPreview);
    f.pane.showFolder(f.context.folders.outboxFolderPath, "Outbox");
    QCOMPARE(f.pane.model().rowCount(), 3);
    QVERIFY(f.previews.isEmpty());
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(f.pane.model().headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), QString("To"));
    QCOMPARE(f.pane.model().index(0, 2).data().toString(), QString("bob@example.com"));
  }

  void movementKeysKeepOneRowSelectedAndPreviewIt() {
    Fixture f;
    f.make("A", 60);
    f.show("A");
    auto* selection = f.view().selectionModel();
    for (int row : {2, 3, 4, 5})
      selection->select(f.pane.model().index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    selection->setCurrentIndex(f.pane.model().index(5, 0), QItemSelectionModel::NoUpdate);
    QCOMPARE(f.pane.selectedFiles().size(), 5);  // row 59 from the listing stays with them

    const struct {
      Qt::Key key;
      int row;
    } steps[] = {{Qt::Key_Up, 4}, {Qt::Key_Down, 5}, {Qt::Key_Home, 0}, {Qt::Key_End, 59}, {Qt::Key_Home, 0}};
    for (const auto& step : steps) {
      const int before = f.previews.count();
      QTest::keyClick(&f.view(), step.key);
      QCOMPARE(f.selectedRows(), QList<int>{step.row});
      QCOMPARE(f.previews.count(), before + 1);
      QCOMPARE(f.lastPreview(), f.pane.model().fileAt(step.row));
      QCOMPARE(f.pane.currentFile(), f.pane.model().fileAt(step.row));
    }
    f.pane.resize(500, 200);
    f.pane.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.pane));
    QTest::keyClick(&f.view(), Qt::Key_PageDown);
    QCOMPARE(f.selectedRows().size(), 1);
    QVERIFY(f.selectedRows().first() > 1);
    QTest::keyClick(&f.view(), Qt::Key_PageUp);
    QCOMPARE(f.selectedRows(), QList<int>{0});
  }

  void fiveKeystrokesListTheFolderOnce() {
    Fixture f;
    f.make("A", 200);
    f.show("A");
    f.finished.clear();
    auto* search = f.pane.findChild<QLineEdit*>("txtSearchString");
    QTest::keyClicks(search, "invoi");
    QCOMPARE(f.finished.count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(f.finished.count(), 1, 3000);
    QTest::qWait(600);
    QCOMPARE(f.finished.count(), 1);
    QVERIFY(f.pane.model().rowCount() > 0);
    QVERIFY(f.pane.model().rowCount() < 200);
    for (int row = 0; row < f.pane.model().rowCount(); ++row)
      QVERIFY(f.subject(row).contains("invoi", Qt::CaseInsensitive));

    auto* tags = f.pane.findChild<QComboBox*>("cmbTags");
    QVERIFY(tags->findText("work") >= 0);  // the tags seen in the folder
    search->clear();
    tags->setEditText("family");
    QTRY_COMPARE_WITH_TIMEOUT(f.finished.count(), 2, 3000);
    QVERIFY(f.pane.model().rowCount() > 0);
    for (int row = 0; row < f.pane.model().rowCount(); ++row)
      QVERIFY(f.pane.model().record(row)->tags.find("family") != std::string::npos);
  }

  void aSecondFolderStopsTheFirstListing() {
    Fixture f;
    f.make("A", 3000);
    f.make("B", 7);
    QSignalSpy unread(&f.pane, &MessageListPane::unreadCompared);
    bool asked = false;
    connect(&f.pane, &MessageListPane::folderMessageCount, &f.pane, [&] {
      if (asked) return;
      asked = true;
      QVERIFY(f.pane.populating());
      f.show("B");  // as a click on another folder would, while A is being listed
    });
    f.show("A");
    QVERIFY(asked);
    QVERIFY(!f.pane.populating());
    QCOMPARE(f.finished.count(), 1);
    QCOMPARE(unread.count(), 1);
    QCOMPARE(f.pane.model().rowCount(), 7);
    QCOMPARE(f.lastCount(), QString("7 messages in B"));
  }

  void aColdFolderShowsScanningFirstAndStaysLive() {
    Fixture f;
    f.make("Cold", 400, false);
    QStringList progress;
    QStringList firstRows;
    connect(&f.pane, &MessageListPane::progressText, &f.pane, [&](const QString& text) {
      if (progress.isEmpty()) firstRows << f.pane.model().index(0, 2).data().toString();
      progress << text;
    });
    f.show("Cold");
    QCOMPARE(firstRows, QStringList{"Scanning messages..."});
    QVERIFY(progress.contains("Reading mail files"));
    QVERIFY(progress.contains("Adding 400/400 new messages"));
    QCOMPARE(f.pane.model().rowCount(), 400);
    QVERIFY(files::fileExists(f.folder("Cold") / "cache.xml"));
    QVERIFY(f.pane.findChild<QLabel*>("lblMessageListStatus")->text().isEmpty());
  }

  // A click elsewhere while a folder's cache fills, once as the fill starts
  // reading headers and once as a search is typed instead.
  void aClickDuringAFillStopsItAndTheNextVisitFillsAgain() {
    for (const bool bySearch : {false, true}) {
      Fixture f;
      f.make("Cold", 300, false);
      f.make("B", 7);
      bool asked = false;
      connect(&f.pane, &MessageListPane::progressText, &f.pane, [&](const QString& text) {
        if (asked || text != "Adding 50/300 new messages") return;
        asked = true;
        if (bySearch) {
          f.pane.findChild<QLineEdit*>("txtSearchString")->setText("Subject");
          f.pane.relist();  // as the filter's timer would, without its wait
        } else {
          f.show("B");
        }
      });
      f.show("Cold");
      QVERIFY(asked);
      const store::FolderCache* cold = f.pane.caches().find(f.folder("Cold"));
      if (bySearch) {
        // The search lists the same folder, so it fills it first, in whole.
        QVERIFY(cold && cold->cacheFilled());
        QCOMPARE(cold->count(), std::size_t{300});
        QCOMPARE(f.finished.count(), 1);
        continue;
      }
      QVERIFY(cold && !cold->cacheFilled());
      QCOMPARE(cold->count(), std::size_t{0});
      QVERIFY(!files::fileExists(f.folder("Cold") / "cache.xml"));
      QCOMPARE(f.lastCount(), QString("7 messages in B"));
      QCOMPARE(f.finished.count(), 1);

      f.show("Cold");
      QVERIFY(cold->cacheFilled());
      QCOMPARE(f.pane.model().rowCount(), 300);
      QVERIFY(files::fileExists(f.folder("Cold") / "cache.xml"));
    }
  }

  void aWindowClosingDuringAFillListsNothingHalfRead() {
    Fixture f;
    f.make("Cold", 300, false);
    connect(&f.pane, &MessageListPane::progressText, &f.pane, [&](const QString& text) {
      if (text == "Adding 100/300 new messages") f.pane.stopPopulating();
    });
    f.show("Cold");
    QVERIFY(!f.pane.populating());
    QCOMPARE(f.pane.model().rowCount(), 0);
    QCOMPARE(f.finished.count(), 0);
    QVERIFY(!f.pane.caches().find(f.folder("Cold"))->cacheFilled());
  }

  void theShowFilterCyclesThroughItsTagFiles() {
    Fixture f;
    const auto made = f.make("A", 40);
    QSignalSpy filters(&f.pane, &MessageListPane::showFilterChanged);
    f.show("A");
    const fs::path unreadOnly = f.folder("A") / "ShowUnreadOnly.tag";
    const fs::path highOnly = f.folder("A") / "ShowUnreadHighOnly.tag";
    f.pane.cycleShowFilter();
    QCOMPARE(files::loadTextFile(unreadOnly), std::string("Only show unread messages"));
    QCOMPARE(filters.last().first().value<store::ShowFilter>(), store::ShowFilter::UnreadOnly);
    QCOMPARE(f.pane.model().rowCount(), int(made.unread));
    f.pane.cycleShowFilter();
    QVERIFY(!files::fileExists(unreadOnly));
    QCOMPARE(files::loadTextFile(highOnly), std::string("Only show high priority unread messages"));
    for (int row = 0; row < f.pane.model().rowCount(); ++row) QVERIFY(f.pane.model().record(row)->highPriority);
    f.pane.cycleShowFilter();
    QVERIFY(!files::fileExists(unreadOnly) && !files::fileExists(highOnly));
    QCOMPARE(f.pane.model().rowCount(), 40);
    QCOMPARE(filters.last().first().value<store::ShowFilter>(), store::ShowFilter::All);
  }

  void unreadCountIsWrittenOverWhateverTheTagHeld() {
    for (const std::string& held : {std::string("-3"), std::string("lots of mail")}) {
      Fixture f;
      const auto made = f.make("A", 30);
      files::writeTextFile(f.folder("A") / "Unread.Tag", held);
      QSignalSpy compared(&f.pane, &MessageListPane::unreadCompared);
      f.show("A");
      QCOMPARE(compared.last().first().toInt(), int(made.unread));
      QCOMPARE(store::unreadTagCount(f.folder("A")), std::int16_t(made.unread));
    }
  }

  void filesAndFoldersGoneWhileListed() {
    Fixture f;
    f.make("A", 20);
    f.show("A");
    const QString last = f.pane.model().fileAt(19);
    fs::remove(last.toStdString());
    QTest::keyClick(&f.view(), Qt::Key_Up);
    QTest::keyClick(&f.view(), Qt::Key_End);
    QCOMPARE(f.lastPreview(), last);  // the preview finds it gone; the list stands
    f.pane.rescanFolder();
    QCOMPARE(f.pane.model().rowCount(), 19);
    QCOMPARE(f.pane.model().rowOfFile(last), -1);

    fs::remove_all(f.folder("A"));
    f.pane.rescanFolder();
    QCOMPARE(f.lastCount(), QString("No messages in A"));
    f.show("Never there");
    QCOMPARE(f.lastCount(), QString("No messages in Never there"));
    QCOMPARE(f.pane.model().rowCount(), 0);
  }

  void headerClicksFlipTheOrder() {
    Fixture f;
    f.make("A", 50);
    f.show("A");
    auto* header = f.view().header();
    emit header->sectionClicked(1);
    const auto sizes = [&] {
      std::vector<float> all;
      for (int row = 0; row < f.pane.model().rowCount(); ++row) all.push_back(f.pane.model().record(row)->size);
      return all;
    };
    const auto ascending = [](const std::vector<float>& all) { return std::is_sorted(all.begin(), all.end()); };
    const auto descending = [](const std::vector<float>& all) { return std::is_sorted(all.rbegin(), all.rend()); };
    QVERIFY(ascending(sizes()) && !descending(sizes()));
    emit header->sectionClicked(1);
    QVERIFY(descending(sizes()));
    // The order stays and applies to each new listing.
    f.pane.relist();
    QVERIFY(descending(sizes()));
    QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
  }

  void screenshotOfAGeneratedFolder() {
    Fixture f;
    f.make("Inbox2", 400);
    f.pane.resize(1000, 460);
    f.pane.show();
    f.show("Inbox2");
    QCoreApplication::processEvents();
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) return;
    QVERIFY(f.pane.grab().save(shots + "/mlist-folder.png"));
    f.pane.resize(520, 300);
    f.pane.findChild<QLineEdit*>("txtSearchString")->setText("review");
    QTRY_COMPARE_WITH_TIMEOUT(f.finished.count(), 2, 3000);
    QVERIFY(f.pane.grab().save(shots + "/mlist-narrow-search.png"));
  }
};

QTEST_MAIN(MessageListPaneTest)
#include "message_list_pane_test.moc"
