#include <QTemporaryDir>
#include <QtTest>

#include "app/pop3/pop3_connection.h"
#include "support/scripted_peer.h"

using namespace vonel;
using testing::Reply;
using testing::ScriptedPeer;
using testing::whole;

namespace {

struct Recorder : pop3::Pop3Listener {
  std::vector<std::string> events;
  std::vector<std::string> subjects;
  bool finished = false;
  void onHeaderReceived(message::Message& m) override { subjects.push_back(m.subject); }
  void onTimedOut(const std::string&, int seconds) override { events.push_back("TimedOut " + std::to_string(seconds)); }
  void onCancelled(const std::string&) override { events.push_back("Cancelled"); }
  void onNoConnection() override { events.push_back("NoConnection"); }
  void onFinished(const std::string&, long) override {
    events.push_back("Finished");
    finished = true;
  }
};

struct NoPassword : PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool&) override {
    cancelled = true;
    return {};
  }
};

// One account pointed at the scripted peer, with a two-second time-out.
struct Rig {
  QTemporaryDir dir;
  ScriptedPeer peer;
  FixedClock clock{text::DateTime{2026, 11, 23, 12, 0, 0}};
  ScriptedPrompt prompt;
  AppContext ctx{clock, prompt, AppInfo{"Vonel", "1", "os", "/", dir.path().toStdString()}};
  rules::PassEverything check;
  NoPassword passwords;
  Recorder recorder;
  Pop3Connection connection{ctx, recorder, check, check, passwords};

  Rig() {
    ctx.settings.loadSettingsFromText("TITLE0,Peer\r\nSERVER0,127.0.0.1\r\nPOPPORT0," + std::to_string(peer.port()) +
                                          "\r\nUNAME0,jo\r\nPWD0,pw\r\nMAILTIMEOUT,2\r\n",
                                      "test");
    ctx.folders.readMessageFolder();
    peer.setGreeting(Reply{{"+O", "K ready\r", "\n"}, false});
    peer.on("USER", {whole("+OK\r\n")});
    peer.on("PASS", {whole("+OK\r\n")});
    // The header scan's TOPs then go out together, their replies coming back split anyhow.
    peer.on("CAPA", {whole("+OK\r\nPIPELINING\r\n.\r\n")});
    peer.on("QUIT", {Reply{{"+OK bye\r\n"}, true}});
  }
  void scan() {
    connection.session().getHeaders(0, false);
    QTRY_VERIFY_WITH_TIMEOUT(recorder.finished, 10000);
  }
};

}  // namespace

class Pop3ConnectionTest : public QObject {
  Q_OBJECT

 private slots:
  void repliesSplitAndJoinedOverARealSocket() {
    Rig rig;
    rig.peer.on("LIST", {Reply{{"+OK\r\n1 10", "0\r\n2 200\r\n.", "\r\n"}, false}});
    rig.peer.on("STAT", {whole("+OK 2 300\r\n")});
    rig.peer.on("TOP 1", {Reply{{"+OK\r\nSubject: one\r\n\r\n", ".\r\n"}, false}});
    rig.peer.on("TOP 2", {Reply{{"+OK\r\nSubject: two\r\n\r\n.", "\r", "\n"}, false}});
    rig.scan();
    QCOMPARE(rig.recorder.subjects, (std::vector<std::string>{"one", "two"}));
    QCOMPARE(rig.peer.commands.back(), std::string("QUIT"));
  }

  void aSilentServerTimesOut() {
    Rig rig;
    rig.peer.on("LIST", {Reply{}});
    rig.scan();
    QCOMPARE(rig.recorder.events, (std::vector<std::string>{"Cancelled", "Finished", "TimedOut 2"}));
  }

  void aServerThatClosesMidReplyEndsTheSession() {
    Rig rig;
    rig.peer.on("LIST", {Reply{{"+OK\r\n1 10"}, true}});
    rig.scan();
    QCOMPARE(rig.recorder.events, (std::vector<std::string>{"NoConnection", "Finished"}));
  }
};

QTEST_GUILESS_MAIN(Pop3ConnectionTest)
#include "pop3_connection_test.moc"
