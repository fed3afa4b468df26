#pragma once
// A mail server in a script for adapter tests: listens on 127.0.0.1 on a free
// port, answers each command line by the first rule whose prefix it starts
// with (any case), and records what the client sent. A reply is a list of
// pieces sent as separate writes with a pause between them, so a reply can be
// split at any byte or several replies joined into one piece; a reply with
// no pieces is silence, and a reply can end by closing the connection.
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <deque>
#include <string>
#include <vector>

namespace vonel::testing {

struct Reply {
  std::vector<std::string> pieces;
  bool thenClose = false;
};

// Convenience: one reply sent whole.
inline Reply whole(std::string bytes) { return Reply{{std::move(bytes)}, false}; }

class ScriptedPeer : public QObject {
  Q_OBJECT

 public:
  explicit ScriptedPeer(QObject* parent = nullptr);

  quint16 port() const { return server_.serverPort(); }

  // Sent when a client connects.
  void setGreeting(Reply greeting) { greeting_ = std::move(greeting); }
  // Each command starting with `prefix` takes the next of the replies; the
  // last one stays for every later match. An empty prefix matches anything.
  void on(std::string prefix, std::vector<Reply> replies);
  // After the reply to a command starting with `prefix`, the client's bytes
  // are taken as data until `terminator`; the data block is then recorded and
  // answered with `reply`.
  void collectDataAfter(std::string prefix, std::string terminator, Reply reply);

  // What the client sent: command lines without their CR LF, and data blocks.
  std::vector<std::string> commands;
  std::vector<std::string> dataBlocks;
  int connections = 0;

 signals:
  void commandReceived();

 private:
  struct Rule {
    std::string prefix;
    std::deque<Reply> replies;
  };
  void accept();
  void readClient();
  void handleCommand(const std::string& line);
  void play(const Reply& reply);
  void sendNextPiece();

  QTcpServer server_;
  QTcpSocket* client_ = nullptr;
  std::string buffer_;
  Reply greeting_;
  std::vector<Rule> rules_;
  std::string dataPrefix_;
  std::string dataTerminator_;
  Reply dataReply_;
  bool inData_ = false;
  std::deque<std::string> outgoing_;
  bool closeWhenSent_ = false;
  QTimer pacer_;
};

}  // namespace vonel::testing
