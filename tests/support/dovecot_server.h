#pragma once
// A real Dovecot POP3 server for a test, on 127.0.0.1 and a free port, with
// its whole state in a temporary folder; stopped by its own process id.
#include <QTemporaryDir>
#include <filesystem>
#include <string>

namespace vonel::testing {

class DovecotServer {
 public:
  DovecotServer(std::string user = "jo", std::string password = "secret");
  ~DovecotServer();

  bool start();
  void stop();
  int port() const { return port_; }
  bool running() const { return running_; }
  const std::string& user() const { return user_; }
  const std::string& password() const { return password_; }
  std::filesystem::path maildir() const;
  // Puts a message into the mailbox as new mail; `name` is its file name.
  void deliver(const std::string& name, const std::string& text) const;
  int messageCount() const;
  // The account's keys for the settings file, as account `n`.
  std::string accountSettings(int n = 0) const;

 private:
  QTemporaryDir dir_;
  std::string user_;
  std::string password_;
  int port_ = 0;
  bool running_ = false;
};

}  // namespace vonel::testing
