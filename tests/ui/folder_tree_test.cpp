#include <QtTest>

#include "core/files/atomic_file.h"
#include "support/app_home.h"
#include "ui/mailer/folder_tree.h"

using namespace vonel;

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kOldest = 0xA7A7A7, kOlder = 0x808080, kOld = 0x595959, kFresh = 0x008000;

// A tree over a store whose folders carry the given tag files; the clock
// stands at midnight so ages in whole days meet the limits exactly.
struct Tree {
  testing::AppHome home{{}, text::DateTime{2026, 11, 23, 0, 0, 0}};
  FolderTree tree{home.context};
  const long today = static_cast<long>(text::DateTime{2026, 11, 23, 0, 0, 0}.serial());

  // `unread` into Unread.Tag and the newest unread day `age` days back into LastMsg.Tag.
  void tag(const fs::path& relative, std::string_view unread, long age = 0) {
    const fs::path folder = home.storeFolder(relative);
    files::writeTextFile(folder / "Unread.Tag", unread);
    files::writeTextFile(folder / "LastMsg.Tag", std::to_string(today - age));
  }
  QTreeWidgetItem* node(const char* key) const { return tree.nodeForKey(key); }
  static QVariant colour(const QTreeWidgetItem* node) { return node->data(0, FolderTree::kColourRole); }
  // Root, Inbox with Work and Work/Deep below it, Sent Items, and a second "Work" at the top.
  void addFolders() {
    struct Folder {
      const char* name;
      const char* parent;
      const char* path;
    };
    tree.addFolder("Folders", "");
    for (const Folder& folder : {Folder{"Inbox", "Folders", "Inbox"}, Folder{"Work", "Inbox", "Inbox/Work"},
                                 Folder{"Deep", "Work", "Inbox/Work/Deep"}, Folder{"Sent Items", "Folders", "Sent Items"},
                                 Folder{"Outbox", "Folders", "Outbox"}}) {
      home.storeFolder(folder.path);
      tree.addFolder(folder.name, folder.parent);
    }
  }
};

}  // namespace

class FolderTreeTest : public QObject {
  Q_OBJECT

 private slots:
  void keysArePathsBelowTheRootInLowerCaseAndParentsAreFoundFromTheLastNodeBack() {
    Tree t;
    t.addFolders();
    QCOMPARE(FolderTree::keyOf(t.node("inbox\\work\\deep")), QString("inbox\\work\\deep"));
    QCOMPARE(FolderTree::tagOf(t.node("inbox\\work")), QString("Work"));
    // A second "Work" named as a parent takes the one added last.
    t.tree.addFolder("Work", "Folders");
    t.tree.addFolder("Notes", " work ");
    QVERIFY(t.node("work\\notes"));
    QVERIFY(!t.node("inbox\\work\\notes"));
    // An unknown parent puts the folder at the root.
    t.tree.addFolder("Stray", "Nowhere");
    QCOMPARE(t.tree.topLevelItemCount(), 2);
    QCOMPARE(t.tree.folderOf(t.node("inbox\\work\\deep")), t.home.context.folders.messageFolderPath / "Inbox" / "Work" / "Deep");
    QCOMPARE(t.tree.nodeForFolder(t.home.context.folders.sentFolderPath), t.node("sent items"));
  }

  void unreadFoldersShowTheirCountInBoldInTheColourOfTheirAge() {
    Tree t;
    t.addFolders();
    t.tag("Inbox", "3", 0);
    t.tag("Sent Items", "2", 1);   // exactly Age2 days old
    t.tag("Outbox", "1", 14);      // exactly Age1
    t.tag("Inbox/Work", "5", 31);  // above Age0
    t.tree.setNodeColours();
    QCOMPARE(t.node("inbox")->text(0), QString("Inbox (3)"));
    QVERIFY(t.node("inbox")->font(0).bold());
    QCOMPARE(t.colour(t.node("inbox")).toInt(), kFresh);
    QCOMPARE(t.colour(t.node("sent items")).toInt(), kOld);
    QCOMPARE(t.colour(t.node("outbox")).toInt(), kOlder);
    QCOMPARE(t.colour(t.node("inbox\\work")).toInt(), kOldest);
    QCOMPARE(t.node("inbox")->foreground(0).color(), QColor(0x00, 0x80, 0x00));
  }

  void aZeroOrBadCountClearsBoldAndColourWhateverTheDay() {
    Tree t;
    t.addFolders();
    t.tag("Inbox", "4", 0);
    t.tree.setNodeColours();
    for (const char* count : {"0", "-3", "lots"}) {
      t.tag("Inbox", count, 0);
      t.tree.setNodeColours();
      QCOMPARE(t.node("inbox")->text(0), QString("Inbox"));
      QVERIFY(!t.node("inbox")->font(0).bold());
      QVERIFY(!t.colour(t.node("inbox")).isValid());
    }
    // An empty day counts as the oldest.
    t.tag("Inbox", "1");
    files::writeTextFile(t.home.context.folders.inboxFolderPath / "LastMsg.Tag", "");
    t.tree.setNodeColours();
    QCOMPARE(t.colour(t.node("inbox")).toInt(), kOldest);
  }

  void everyAncestorShowsTheFreshestUnreadMailBelowItOnEveryRun() {
    Tree t;
    t.addFolders();
    t.tag("Inbox", "1", 20);               // older
    t.tag("Inbox/Work/Deep", "1", 0);      // fresh, two levels down
    for (int run = 0; run < 2; ++run) {
      t.tree.setNodeColours();
      QCOMPARE(t.colour(t.node("inbox\\work\\deep")).toInt(), kFresh);
      QCOMPARE(t.colour(t.node("inbox\\work")).toInt(), kFresh);  // read itself, coloured by its child
      QCOMPARE(t.colour(t.node("inbox")).toInt(), kFresh);
      QCOMPARE(t.colour(t.node("")).toInt(), kFresh);
      QVERIFY(!t.node("inbox\\work")->font(0).bold());
    }
    // A staler child leaves a fresher parent as it is.
    t.tag("Inbox", "1", 0);
    t.tag("Inbox/Work/Deep", "1", 40);
    t.tree.setNodeColours();
    QCOMPARE(t.colour(t.node("inbox")).toInt(), kFresh);
    QCOMPARE(t.colour(t.node("inbox\\work")).toInt(), kOldest);
  }

  void theListsCountBecomesTheNodesState() {
    Tree t;
    t.addFolders();
    t.tree.setCurrentItem(t.node("inbox"));
    t.tree.compareUnread(t.node("inbox"), 7);
    QCOMPARE(t.node("inbox")->text(0), QString("Inbox (7)"));
    QVERIFY(t.node("inbox")->font(0).bold());
    t.tree.compareUnread(t.node("inbox"), 0);
    QCOMPARE(t.node("inbox")->text(0), QString("Inbox"));
    t.tree.showNodeAsUnread();
    QVERIFY(t.node("inbox")->font(0).bold());
    t.tree.showNodeAsRead();
    QVERIFY(!t.node("inbox")->font(0).bold());
  }

  void outboxAndSentItemsShowHowManyMessagesTheyHold() {
    Tree t;
    t.addFolders();
    for (const char* name : {"a.eml", "B.EML", "notes.txt"}) files::writeTextFile(t.home.context.folders.outboxFolderPath / name, "x");
    t.tree.displaySpecialCounts();
    QCOMPARE(t.node("outbox")->text(0), QString("Outbox (2)"));
    QCOMPARE(t.node("sent items")->text(0), QString("Sent Items"));
  }
};

QTEST_MAIN(FolderTreeTest)
#include "folder_tree_test.moc"
