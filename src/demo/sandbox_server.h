#pragma once
// The sandbox's POP3 and SMTP servers on 127.0.0.1, on ports the system
// gives out, in a thread of their own: a client that blocks its own event
// loop stalls against them as it would against a real server.
#include <QThread>
#include <QtGlobal>
#include <filesystem>
#include <semaphore>

namespace vonel::sandbox {

class SandboxServer final : public QThread {
 public:
  explicit SandboxServer(std::filesystem::path sandboxFolder) : folder_(std::move(sandboxFolder)) {}
  ~SandboxServer() override;

  // Listens and serves until stop(); false when a port could not be opened.
  bool open();
  void stop();

  quint16 pop3Port() const { return pop3Port_; }
  quint16 smtpPort() const { return smtpPort_; }

 private:
  void run() override;

  std::filesystem::path folder_;
  quint16 pop3Port_ = 0;
  quint16 smtpPort_ = 0;
  std::binary_semaphore listening_{0};
};

}  // namespace vonel::sandbox
