#include "protocol/pop3/stls_gate.h"

#include <utility>

#include "core/text/strings.h"

namespace vonel::pop3 {
namespace {

// A greeting or an STLS reply that runs longer than this without its end
// goes to the session as it is, which refuses it.
constexpr std::size_t kLongestLine = 4096;

bool positive(std::string_view line) { return text::startsWithNoCase(line, "+OK"); }

}  // namespace

void StlsGate::begin(TransportSecurity security) {
  pending_.clear();
  greeting_.clear();
  switch (security) {
    case TransportSecurity::Plain: state_ = State::Open; return;
    case TransportSecurity::Tls: state_ = State::AwaitConnection; return;
    case TransportSecurity::Upgrade: state_ = State::AwaitGreeting; return;
  }
}

void StlsGate::onConnected() {
  if (state_ == State::AwaitConnection) state_ = State::Handshaking;
}

bool StlsGate::takeLine(std::string& line) {
  const std::size_t end = pending_.find('\n');
  if (end == std::string::npos) return false;
  line.assign(pending_, 0, end + 1);
  pending_.erase(0, end + 1);
  return true;
}

void StlsGate::refuse(std::string_view line) {
  state_ = State::Refused;
  pending_.clear();
  peer_.deliverToSession(line);
}

void StlsGate::onData(std::string_view bytes) {
  switch (state_) {
    case State::Open: peer_.deliverToSession(bytes); return;
    case State::AwaitGreeting:
    case State::AwaitStlsReply: break;
    case State::AwaitConnection:
    case State::Handshaking:
    case State::Refused: return;
  }
  pending_.append(bytes);
  std::string line;
  while ((state_ == State::AwaitGreeting || state_ == State::AwaitStlsReply) && takeLine(line)) {
    if (!positive(line)) return refuse(line);
    if (state_ == State::AwaitGreeting) {
      greeting_ = line;
      state_ = State::AwaitStlsReply;
      peer_.writeToServer("STLS\r\n");
    } else {
      // Whatever came with the +OK was sent in plain text and may have been put there by anyone.
      pending_.clear();
      state_ = State::Handshaking;
      peer_.startTls();
    }
  }
  if ((state_ == State::AwaitGreeting || state_ == State::AwaitStlsReply) && pending_.size() >= kLongestLine) {
    refuse(std::string(pending_));
  }
}

void StlsGate::onEncrypted() {
  if (state_ != State::Handshaking) return;
  state_ = State::Open;
  if (!greeting_.empty()) peer_.deliverToSession(std::exchange(greeting_, {}));
}

void StlsGate::onTlsFailed(std::string_view text) {
  if (state_ == State::Open || state_ == State::Refused) return;
  refuse(std::string(text) + "\r\n");
}

}  // namespace vonel::pop3
