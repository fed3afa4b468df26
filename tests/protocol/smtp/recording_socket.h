#pragma once
// A socket that records what the session does with it.
#include <string>
#include <vector>

#include "protocol/smtp/smtp_link.h"

namespace vonel::smtp::testing {

class RecordingSocket : public SmtpLink {
 public:
  SocketState socketState = SocketState::Closed;
  bool timerOn = false;
  int connects = 0;
  int closes = 0;
  std::string host;
  int port = 0;
  std::vector<std::string> sent;

  void connect(const std::string& h, int p) override {
    ++connects;
    host = h;
    port = p;
  }
  void send(std::string_view bytes) override { sent.emplace_back(bytes); }
  void close() override {
    ++closes;
    socketState = SocketState::Closed;
  }
  void setTimer(bool on) override { timerOn = on; }
  SocketState state() const override { return socketState; }
  const std::string& last() const { return sent.back(); }
};

}  // namespace vonel::smtp::testing
