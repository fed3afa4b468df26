// OutboxSender against the scripted loopback peer: spool names and
// texts, one connection for an account's files, and the events of an upload
// that can't start or can't go on.
#include <QTemporaryDir>
#include <QtTest>

#include "app/smtp/outbox_sender.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"
#include "core/send/outbox.h"
#include "support/scripted_peer.h"

using namespace vonel;
using testing::Reply;
using testing::ScriptedPeer;
using testing::whole;
namespace fs = std::filesystem;

namespace {

constexpr int kWaitMs = 10000;

struct Recorder final : OutboxListener {
  std::vector<std::string> progress;
  std::vector<std::string> failures;
  int noMail = 0;
  int finished = 0;
  void onSendProgress(const std::string& text) override { progress.push_back(text); }
  void onSendFailed(const std::string& text) override { failures.push_back(text); }
  void onNoMailToSend() override { ++noMail; }
  void onSendingFinished() override { ++finished; }
  bool said(const std::string& text) const { return std::find(progress.begin(), progress.end(), text) != progress.end(); }
};

struct SendHome {
  QTemporaryDir dir;
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "os", "/", dir.path().toStdString()}};
  ScriptedPeer peer;
  Recorder events;
  OutboxSender sender{context, events};
  fs::path outbox = fs::path(dir.path().toStdString()) / "Outbox";
  fs::path sent = fs::path(dir.path().toStdString()) / "Sent Items";

  SendHome() {
    context.folders.outboxFolderPath = outbox;
    context.folders.sentFolderPath = sent;
    fs::create_directories(outbox);
    fs::create_directories(sent);
    context.settings.set("REPLYADDRESS0", "me@example.org");
    context.settings.set("DisplayName0", "Me");
    context.settings.set("SMTP0", "127.0.0.1");
    context.settings.set("SMTPPort0", static_cast<int>(peer.port()));
    peer.setGreeting(whole("220 scripted\r\n"));
    peer.on("DATA", {whole("354 go ahead\r\n")});
    peer.collectDataAfter("DATA", "\r\n.\r\n", whole("250 queued\r\n"));
    peer.on("QUIT", {Reply{{"221 bye\r\n"}, true}});
  }
  // Every other command is accepted; rules set before this one go first.
  void acceptTheRest() { peer.on("", {whole("250 ok\r\n")}); }

  void spool(int account, const std::string& to, const std::string& cc = {}, const std::string& bcc = {},
             const std::string& fromOverride = {}) {
    message::Message message;
    message.fromAccount = static_cast<std::int16_t>(account);
    message.from = "Someone <ignored@x.org>";
    message.setToEmail(to);
    message.cc = cc;
    message.bcc = bcc;
    message.subject = "To " + to;
    message.setMessageBody("Hello\r\n.dot line\r\n.\r\n..");
    sender.spoolMessage(message, fromOverride, "");
  }
  std::string outboxText(const std::string& name) { return files::loadTextFile(outbox / name); }
  std::size_t count(const fs::path& folder) { return send::listOutboxFiles(folder).size(); }
};

}  // namespace

class OutboxSenderTest : public QObject {
  Q_OBJECT

 private slots:
  void spoolNamesCarryTheAccountAndCountOn() {
    SendHome home;
    files::writeTextFile(home.outbox / "00_outbound_0.eml", "taken");
    home.spool(0, "Ann <ann@x.org>", "b@x.org;Cy <c@x.org>", "Hid <h@x.org>");
    home.spool(7, "dee@y.org", "", "", "other@x.org");
    QCOMPARE(home.outboxText("00_outbound_0.eml"), std::string("taken"));
    const std::string first = home.outboxText("00_outbound_1.eml");
    // The account's sender stands, whatever the message's own From says.
    QVERIFY(first.starts_with("From: \"Me\" <me@example.org>\r\nTo: \"Ann\" <ann@x.org>\r\n"));
    QVERIFY(first.find("Cc: \"b@x.org\" <b@x.org>, \r\n    \"Cy\" <c@x.org>\r\n") != std::string::npos);
    QVERIFY(first.find("Bcc: <h@x.org>\r\n") != std::string::npos);
    QVERIFY(home.outboxText("07_outbound_0.eml").find("<other@x.org>\r\n") != std::string::npos);
    QVERIFY(home.events.failures.empty());
  }

  void anAccountsFilesGoOverOneConnectionIntoSentItems() {
    SendHome home;
    home.spool(0, "ann@x.org", "", "h@x.org");
    home.spool(0, "bob@x.org");
    home.acceptTheRest();
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(home.events.finished == 1, kWaitMs);
    QVERIFY(home.events.failures.empty());
    QCOMPARE(home.peer.connections, 1);
    QCOMPARE(home.peer.dataBlocks.size(), std::size_t{2});
    const std::string& first = home.peer.dataBlocks.front();
    QVERIFY(first.find("Bcc:") == std::string::npos);
    // The wire stuffs each line once; the store's own lines stay at home.
    QVERIFY(first.find("\r\nHello\r\n..dot line\r\n..\r\n...\r\n\r\n.\r\n") != std::string::npos);
    QVERIFY(first.find("X-Receive-Date") == std::string::npos);
    QVERIFY(first.find("X-Message-") == std::string::npos);
    QVERIFY(std::find(home.peer.commands.begin(), home.peer.commands.end(), "RCPT TO: <h@x.org>") !=
            home.peer.commands.end());
    QCOMPARE(home.count(home.outbox), std::size_t{0});
    QCOMPARE(home.count(home.sent), std::size_t{2});
    QVERIFY(home.events.said("Sent To bob@x.org to bob@x.org <bob@x.org>"));
    // The Sent Items copy holds the body as written and the Message-ID that went out.
    for (const std::string& name : send::listOutboxFiles(home.sent)) {
      const std::string copy = files::loadTextFile(home.sent / name);
      QVERIFY(copy.find("\r\nHello\r\n.dot line\r\n.\r\n..\r\n") != std::string::npos);
      const std::size_t id = copy.find("\r\nMessage-ID: <");
      QVERIFY(id != std::string::npos);
      const std::string idLine = copy.substr(id, copy.find("\r\n", id + 2) - id);
      QVERIFY(idLine.ends_with("@example.org>"));
      const auto sentWith = [&](const std::string& block) { return block.find(idLine + "\r\n") != std::string::npos; };
      QCOMPARE(std::count_if(home.peer.dataBlocks.begin(), home.peer.dataBlocks.end(), sentWith), 1);
    }
  }

  // The Sent Items copies and outbox deletions of a connection wait for one
  // barrier before its QUIT; one that fails stops the upload and says why.
  void theFilingOfAConnectionSharesOneBarrierBeforeItsQuit() {
    SendHome home;
    home.spool(0, "ann@x.org");
    home.spool(0, "bob@x.org");
    home.acceptTheRest();
    int barriers = 0;
    bool quitBefore = true;
    std::size_t filesSynced = 0;
    home.context.writes = files::WriteBatch([&](const std::vector<fs::path>& written, const std::vector<fs::path>& folders) {
      ++barriers;
      quitBefore = std::find(home.peer.commands.begin(), home.peer.commands.end(), "QUIT") != home.peer.commands.end();
      filesSynced = written.size();
      QVERIFY(std::find(folders.begin(), folders.end(), home.outbox) != folders.end());
      throw AppError(error_number::kDiskFull, "Disk full: Sent Items");
    });
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(!home.events.failures.empty(), kWaitMs);
    QCOMPARE(barriers, 1);
    QVERIFY(!quitBefore);
    QCOMPARE(filesSynced, std::size_t{2});  // both Sent Items copies
    QCOMPARE(home.events.failures.front(), std::string("Disk full: Sent Items"));
    QCOMPARE(home.count(home.sent), std::size_t{2});
    QCOMPARE(home.count(home.outbox), std::size_t{0});
    QVERIFY(!home.sender.sending());
  }

  void aRefusedMessageStaysWithItsReplyAndTheOthersGo() {
    SendHome home;
    home.spool(0, "ann@x.org");
    home.spool(0, "refused@x.org");
    home.spool(0, "bob@x.org");
    home.peer.on("RCPT TO: <refused", {whole("550 5.1.1 <refused@x.org>: Recipient address rejected\r\n"),
                                       whole("250 ok\r\n")});
    home.acceptTheRest();
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(home.events.finished == 1, kWaitMs);
    const std::string refusal =
        "Refused 00_outbound_1.eml (\"To refused@x.org\" to refused@x.org): 550 5.1.1 <refused@x.org>: Recipient "
        "address rejected; it stays in the outbox";
    QCOMPARE(home.events.failures, std::vector<std::string>{refusal});
    QVERIFY(home.events.said(refusal));
    QCOMPARE(home.peer.connections, 1);
    QCOMPARE(home.peer.dataBlocks.size(), std::size_t{2});
    QVERIFY(std::find(home.peer.commands.begin(), home.peer.commands.end(), "RSET") != home.peer.commands.end());
    QCOMPARE(send::listOutboxFiles(home.outbox), std::vector<std::string>{"00_outbound_1.eml"});
    QCOMPARE(home.outboxText("00_outbound_1.eml.refused"),
             std::string("550 5.1.1 <refused@x.org>: Recipient address rejected\r\n"));
    QCOMPARE(home.count(home.sent), std::size_t{2});

    // Tried again at the next upload; once it goes, its note goes with it.
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(home.events.finished == 2, kWaitMs);
    QCOMPARE(home.events.failures.size(), std::size_t{1});
    QCOMPARE(home.count(home.outbox), std::size_t{0});
    QVERIFY(!fs::exists(home.outbox / "00_outbound_1.eml.refused"));
    QCOMPARE(home.count(home.sent), std::size_t{3});
  }

  void aConnectionLostAfterARefusalGivesTheNextMessageANewOne() {
    SendHome home;
    home.spool(0, "refused@x.org");
    home.spool(0, "bob@x.org");
    files::writeTextFile(home.outbox / "00_outbound_2.eml.refused", "stale note of a deleted message\r\n");
    home.spool(0, "cy@x.org");
    QVERIFY(!fs::exists(home.outbox / "00_outbound_2.eml.refused"));
    home.peer.on("RCPT TO: <refused", {Reply{{"554 5.7.1 go away\r\n"}, true}});
    home.acceptTheRest();
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(home.events.finished == 1, kWaitMs);
    QCOMPARE(home.events.failures.size(), std::size_t{1});
    QCOMPARE(home.peer.connections, 2);
    QCOMPARE(send::listOutboxFiles(home.outbox), std::vector<std::string>{"00_outbound_0.eml"});
    QCOMPARE(home.outboxText("00_outbound_0.eml.refused"), std::string("554 5.7.1 go away\r\n"));
    QCOMPARE(home.count(home.sent), std::size_t{2});
  }

  void anUploadThatCannotStartSaysWhy() {
    SendHome home;
    home.sender.sendOutbox();
    QCOMPARE(home.events.noMail, 1);
    home.peer.on("MAIL", {Reply{}});  // silence: the first message stays on its way
    home.acceptTheRest();
    home.spool(0, "ann@x.org");
    home.sender.sendOutbox();
    home.sender.sendOutbox();
    QVERIFY(home.events.said("Already sending mail."));
    QTRY_VERIFY_WITH_TIMEOUT(home.peer.commands.size() == 2, kWaitMs);
    // A cancel quits the session, and the walk doesn't go on from its end.
    home.sender.cancelSend();
    QVERIFY(!home.sender.sending());
    QTRY_VERIFY_WITH_TIMEOUT(home.peer.commands.size() == 3, kWaitMs);
    QCOMPARE(home.peer.commands.back(), std::string("QUIT"));
    QTest::qWait(200);
    QCOMPARE(home.events.finished, 0);
    QCOMPARE(home.peer.connections, 1);
    QCOMPARE(home.count(home.outbox), std::size_t{1});
  }

  void aDamagedOutboxFileStopsTheUploadAndStays() {
    SendHome home;
    files::writeTextFile(home.outbox / "00_outbound_0.eml", "");
    home.spool(0, "ann@x.org");
    home.acceptTheRest();
    home.sender.sendOutbox();
    QTRY_VERIFY_WITH_TIMEOUT(!home.events.failures.empty(), kWaitMs);
    QCOMPARE(home.events.failures.front(), std::string("No Recipient E-mail Address Specified"));
    QVERIFY(home.events.said("The outbox file 00_outbound_0.eml is empty, unreadable or holds no recipient"));
    QVERIFY(!home.sender.sending());
    QCOMPARE(home.count(home.outbox), std::size_t{2});
    QCOMPARE(home.count(home.sent), std::size_t{0});
  }
};

QTEST_GUILESS_MAIN(OutboxSenderTest)
#include "outbox_sender_test.moc"
