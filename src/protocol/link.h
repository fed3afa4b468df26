#pragma once
// What a protocol session needs of its connection: the adapter in the
// application layer carries it out on a real socket and timer.
#include <string>
#include <string_view>

namespace vonel::protocol {

class Link {
 public:
  virtual ~Link() = default;
  virtual void connect(const std::string& host, int port) = 0;
  virtual void send(std::string_view bytes) = 0;
  virtual void close() = 0;
  // Starts or stops the one-second tick.
  virtual void setTimer(bool on) = 0;
};

}  // namespace vonel::protocol
