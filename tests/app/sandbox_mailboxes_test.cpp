// The sandbox's mailboxes in files: a login opens the account's folder in
// name order, deletions remove files, and delivery files a message in each
// sandbox mailbox it is addressed to and once in "outgoing" for the rest.
#include <QTemporaryDir>
#include <QtTest>

#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "demo/sandbox_mailboxes.h"

using namespace vonel;
using namespace vonel::sandbox;
namespace fs = std::filesystem;

class SandboxMailboxesTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir temporary_;
  fs::path folder() const { return fs::path(temporary_.path().toStdString()) / "Sandbox"; }

 private slots:
  void init() {
    fs::remove_all(folder());
    fs::create_directories(folder() / "Home");
    files::writeTextFile(folder() / "Home" / "0002.eml", "Subject: b\r\n\r\n");
    files::writeTextFile(folder() / "Home" / "0010.eml", "Subject: c\r\n\r\n");
    files::writeTextFile(folder() / "Home" / "0001.eml", "Subject: a\r\n\r\n");
    files::writeTextFile(folder() / "Home" / "notes.txt", "not mail");
  }

  void aLoginOpensItsOwnMailboxInNameOrderAndAWrongPasswordNone() {
    SandboxMailboxes boxes(folder());
    QVERIFY(!boxes.open("robin", "river-work"));
    QVERIFY(!boxes.open("nobody", "harbour-home"));
    const auto mail = boxes.open("robin", "harbour-home");
    QVERIFY(mail);
    QCOMPARE(mail->size(), std::size_t{3});
    QCOMPARE((*mail)[0].uid, std::string("0001"));
    QCOMPARE((*mail)[2].bytes, std::string("Subject: c\r\n\r\n"));
    QVERIFY(boxes.open("rashdown", "river-work")->empty());
  }

  void deletionsRemoveOnlyTheNamedFiles() {
    SandboxMailboxes boxes(folder());
    boxes.remove("robin", {"0002", "0099"});
    QVERIFY(!fs::exists(folder() / "Home" / "0002.eml"));
    QCOMPARE(boxes.open("robin", "harbour-home")->size(), std::size_t{2});
  }

  void deliveryFilesInEachSandboxMailboxAndOnceOutside() {
    SandboxMailboxes boxes(folder());
    QVERIFY(boxes.deliver({"jo@example.org",
                           {"Robin@Example.org", "r.ashdown@example.com", "kai@example.net", "ann@example.net"},
                           "Subject: hello\r\n\r\n"}));
    QCOMPARE(files::loadTextFile(folder() / "Home" / "0011.eml"), std::string("Subject: hello\r\n\r\n"));
    QCOMPARE(files::loadTextFile(folder() / "Work" / "0001.eml"), std::string("Subject: hello\r\n\r\n"));
    QCOMPARE(files::loadTextFile(folder() / "outgoing" / "0001.eml"), std::string("Subject: hello\r\n\r\n"));
    QVERIFY(!fs::exists(folder() / "outgoing" / "0002.eml"));
    QVERIFY(boxes.deliver({"", {"kai@example.net"}, "Subject: again\r\n\r\n"}));
    QVERIFY(fs::exists(folder() / "outgoing" / "0002.eml"));
  }

  void aDeliveryThatCantBeWrittenIsRefused() {
    fs::remove_all(folder());
    files::writeTextFile(fs::path(temporary_.path().toStdString()) / "Sandbox", "a file where the folder goes");
    SandboxMailboxes boxes(folder());
    QVERIFY(!boxes.deliver({"", {"robin@example.org"}, "Subject: x\r\n\r\n"}));
    fs::remove(folder());
  }
};

QTEST_MAIN(SandboxMailboxesTest)
#include "sandbox_mailboxes_test.moc"
