#pragma once
// The sandbox's POP3 and SMTP servers on 127.0.0.1, on ports the system
// gives out, in a thread of their own: a client that blocks its own event
// loop stalls against them as it would against a real server.
#include <QThread>
#include <QtGlobal>
#include <chrono>
#include <filesystem>
#include <semaphore>

namespace vonel::sandbox {

class SandboxServer final : public QThread {
 public:
  // A client that says nothing for `idle` is dropped, as real servers do.
  explicit SandboxServer(std::filesystem::path sandboxFolder, std::chrono::milliseconds idle = std::chrono::seconds(60))
      : folder_(std::move(sandboxFolder)), idle_(idle) {}
  ~SandboxServer() override;

  // Listens and serves until stop(); false when a port could not be opened.
  bool open();
  void stop();

  quint16 pop3Port() const { return pop3Port_; }
  quint16 smtpPort() const { return smtpPort_; }

 private:
  void run() override;

  std::filesystem::path folder_;
  std::chrono::milliseconds idle_;
  quint16 pop3Port_ = 0;
  quint16 smtpPort_ = 0;
  std::binary_semaphore listening_{0};
};

}  // namespace vonel::sandbox
