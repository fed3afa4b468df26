#include "ui/mailer/message_list_model.h"

#include <QFont>
#include <QIcon>
#include <QSignalSpy>
#include <QtTest>

using namespace vonel;

namespace {

struct Flags {
  bool high = false;
  bool unread = false;
  bool replied = false;
};

message::Message messageOf(const std::string& subject, float size = 1, Flags flags = {}) {
  message::Message m;
  m.setFilename("/store/Inbox/" + subject + ".eml");
  m.subject = subject;
  m.size = size;
  m.from = "\"" + subject + " Sender\" <" + subject + "@example.com>";
  m.setToEmail("\"" + subject + " Reader\" <reader@example.com>");
  m.highPriority = flags.high;
  m.read = !flags.unread;
  m.replied = flags.replied;
  return m;
}

QString cell(const MessageListModel& model, int row, MessageListColumn column, int role = Qt::DisplayRole) {
  return model.data(model.index(row, static_cast<int>(column)), role).toString();
}

QStringList column(const MessageListModel& model, MessageListColumn which) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) texts << cell(model, row, which);
  return texts;
}

}  // namespace

class MessageListModelTest : public QObject {
  Q_OBJECT

 private slots:
  void iconTable_data() {
    QTest::addColumn<bool>("high");
    QTest::addColumn<bool>("unread");
    QTest::addColumn<bool>("replied");
    QTest::addColumn<QString>("key");
    QTest::newRow("high unread replied") << true << true << true << "exclaimunreadreply";
    QTest::newRow("high unread") << true << true << false << "exclaimunread";
    QTest::newRow("high read replied") << true << false << true << "exclaimreply";
    QTest::newRow("high read") << true << false << false << "blank";
    QTest::newRow("unread replied") << false << true << true << "unreadreply";
    QTest::newRow("unread") << false << true << false << "unread";
    QTest::newRow("read replied") << false << false << true << "reply";
    QTest::newRow("read") << false << false << false << "blank";
  }
  void iconTable() {
    QFETCH(bool, high);
    QFETCH(bool, unread);
    QFETCH(bool, replied);
    QFETCH(QString, key);
    MessageListModel model;
    model.addOwned(messageOf("a", 1, {high, unread, replied}));
    model.flush();
    QCOMPARE(cell(model, 0, MessageListColumn::Icon, MessageListModel::kIconKeyRole), key);
    const QVariant picture = model.data(model.index(0, 0), Qt::DecorationRole);
    // Our own picture for each key but "blank", which shows nothing.
    QCOMPARE(picture.isValid(), key != "blank");
    if (picture.isValid()) QVERIFY(!picture.value<QIcon>().pixmap(16, 16).isNull());
  }

  void cellsShowSizeNameBoldAndAgeColour() {
    MessageListModel model;
    message::Message old = messageOf("Old", 9);
    old.colour = 0xA7A7A7;
    message::Message fresh = messageOf("Fresh", 1234, {false, true, false});
    fresh.colour = 0x0000FF;  // blue-green-red: red
    model.addOwned(old);
    model.addOwned(fresh);
    model.flush();
    QCOMPARE(cell(model, 0, MessageListColumn::Size), QString("9 KB"));
    QCOMPARE(cell(model, 1, MessageListColumn::Size), QString("1234 KB"));
    QCOMPARE(cell(model, 0, MessageListColumn::From), QString("Old Sender"));
    QCOMPARE(cell(model, 0, MessageListColumn::Bayes), QString("0.00"));
    QVERIFY(!model.data(model.index(0, 3), Qt::FontRole).isValid());
    for (int col = 0; col < kMessageListColumns; ++col) {
      QVERIFY(model.data(model.index(1, col), Qt::FontRole).value<QFont>().bold());
      QCOMPARE(model.data(model.index(1, col), Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    }
    QCOMPARE(model.data(model.index(0, 2), Qt::ForegroundRole).value<QColor>(), QColor(0xA7, 0xA7, 0xA7));
    QCOMPARE(model.unreadRows(), 1);
    QCOMPARE(model.fileAt(1), QString("/store/Inbox/FRESH.EML"));  // an unread name is upper case
    QCOMPARE(model.rowOfFile("/store/inbox/fresh.eml"), 1);
    QCOMPARE(model.rowOfFile("/store/inbox/none.eml"), -1);
  }

  void sentMailNamesTheRecipientUnderTo() {
    MessageListModel model;
    model.addOwned(messageOf("Zed"));
    model.flush();
    QSignalSpy header(&model, &QAbstractItemModel::headerDataChanged);
    model.setRecipientColumn(true);
    QCOMPARE(header.count(), 1);
    QCOMPARE(model.headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), QString("To"));
    QCOMPARE(cell(model, 0, MessageListColumn::From), QString("Zed Reader"));
    model.setRecipientColumn(false);
    QCOMPARE(model.headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), QString("From"));
    QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QString("Size"));
  }

  void sizeSortsByNumberBothWays() {
    MessageListModel model;
    for (float size : {10.0f, 9.0f, 100.0f, 1.0f}) model.addOwned(messageOf("s" + std::to_string(int(size)), size));
    model.flush();
    model.sort(static_cast<int>(MessageListColumn::Size), Qt::AscendingOrder);
    QCOMPARE(column(model, MessageListColumn::Size), (QStringList{"1 KB", "9 KB", "10 KB", "100 KB"}));
    model.sort(static_cast<int>(MessageListColumn::Size), Qt::DescendingOrder);
    QCOMPARE(column(model, MessageListColumn::Size), (QStringList{"100 KB", "10 KB", "9 KB", "1 KB"}));
  }

  void textSortsIgnoreCaseAndKeepSelections() {
    MessageListModel model;
    for (const char* subject : {"banana", "Apple", "cherry", "apple pie", "Banana"}) model.addOwned(messageOf(subject));
    model.flush();
    const QPersistentModelIndex cherry = model.index(2, 3);
    model.sort(static_cast<int>(MessageListColumn::Subject), Qt::AscendingOrder);
    // Equal texts keep their order: "banana" was listed before "Banana".
    QCOMPARE(column(model, MessageListColumn::Subject),
             (QStringList{"Apple", "apple pie", "banana", "Banana", "cherry"}));
    QCOMPARE(cherry.row(), 4);
    QCOMPARE(cherry.data().toString(), QString("cherry"));
    model.sort(static_cast<int>(MessageListColumn::From), Qt::DescendingOrder);
    QCOMPARE(column(model, MessageListColumn::Subject).first(), QString("cherry"));
  }

  void rowsWaitAndEnterInOneInsert() {
    MessageListModel model;
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.showNotice("Scanning messages...");
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(cell(model, 0, MessageListColumn::From), QString("Scanning messages..."));
    QCOMPARE(model.fileAt(0), QString());
    model.clear();
    for (int i = 0; i < 120; ++i) model.addOwned(messageOf("m" + std::to_string(i)));
    QCOMPARE(model.rowCount(), 0);
    model.flush();
    model.flush();
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(model.rowCount(), 120);
  }

  void aCacheThatShrankShowsEmptyRowsNotGarbage() {
    text::KeyedCollection<store::CachedMessage> cache;
    cache.add("a.eml", store::CachedMessage::of(messageOf("a")));
    cache.add("b.eml", store::CachedMessage::of(messageOf("b")));
    MessageListModel model;
    model.setSource(&cache);
    model.addIndexed(0, 0);
    model.addIndexed(1, 0);
    model.flush();
    QCOMPARE(cell(model, 1, MessageListColumn::Subject), QString("b"));
    cache.remove("b.eml");
    QVERIFY(!model.data(model.index(1, 3), Qt::DisplayRole).isValid());
    QCOMPARE(model.fileAt(1), QString());
    model.sort(3, Qt::AscendingOrder);
    QCOMPARE(model.rowCount(), 2);
  }
};

QTEST_MAIN(MessageListModelTest)
#include "message_list_model_test.moc"
