#pragma once
// The sandbox's SMTP server side of one connection, without a socket: bytes
// in, reply bytes out. HELO/EHLO, MAIL, RCPT, DATA, RSET, NOOP, QUIT, no
// AUTH; each message accepted goes to the delivery whole, its dots unstuffed.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "demo/line_reader.h"

namespace vonel::sandbox {

inline constexpr std::size_t kDataLimit = 10 * 1024 * 1024;

struct Envelope {
  std::string sender;
  std::vector<std::string> recipients;
  std::string bytes;  // lines ended by CR LF
};

class Delivery {
 public:
  virtual ~Delivery() = default;
  // False when the message could not be kept; the client is told.
  virtual bool deliver(const Envelope& envelope) = 0;
};

class SmtpSandboxSession {
 public:
  explicit SmtpSandboxSession(Delivery& delivery) : delivery_(delivery) {}

  static std::string greeting() { return "220 sandbox.example.net Vonel sandbox SMTP ready\r\n"; }
  std::string onData(std::string_view bytes);
  bool finished() const { return state_ == State::Finished; }

 private:
  enum class State { Command, Data, Finished };

  std::string onCommand(std::string_view line);
  std::string onDataLine(const ReadLine& line);
  void reset();

  Delivery& delivery_;
  LineReader reader_{1000};
  State state_ = State::Command;
  bool greeted_ = false;
  bool hasSender_ = false;
  bool tooBig_ = false;
  Envelope envelope_;
};

}  // namespace vonel::sandbox
