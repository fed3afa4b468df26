#pragma once
// The sandbox's POP3 server side of one connection, without a socket: bytes
// in, reply bytes out. USER/PASS, then STAT, LIST, UIDL, TOP, RETR, DELE,
// RSET, NOOP; deletions take effect only at QUIT, as on a real server.
#include <string>
#include <string_view>
#include <vector>

#include "demo/line_reader.h"
#include "demo/maildrop.h"

namespace vonel::sandbox {

inline constexpr std::size_t kCommandLineLimit = 1000;

class Pop3SandboxSession {
 public:
  explicit Pop3SandboxSession(Maildrop& maildrop) : maildrop_(maildrop) {}

  static std::string greeting() { return "+OK Vonel sandbox POP3 ready\r\n"; }
  // The replies to every whole command line in the bytes.
  std::string onData(std::string_view bytes);
  // QUIT was answered; the connection is to be closed.
  bool finished() const { return state_ == State::Finished; }

 private:
  enum class State { Authorisation, Transaction, Finished };
  struct Entry {
    Mail mail;
    bool deleted = false;
  };

  std::string onCommand(std::string_view line);
  std::string onTransactionCommand(std::string_view verb, std::string_view argument);
  std::string quit();
  // The live message of a 1-based number, or null.
  Entry* entry(std::string_view number);
  std::string listing(std::string_view argument, bool uids);
  std::string content(std::string_view argument, bool top);

  Maildrop& maildrop_;
  LineReader reader_{kCommandLineLimit};
  State state_ = State::Authorisation;
  std::string user_;
  std::vector<Entry> entries_;
};

}  // namespace vonel::sandbox
