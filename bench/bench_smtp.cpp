// Spools 1,000 small messages, sends them over one connection to a real SMTP
// server (aiosmtpd on loopback, started by tools/smtp-server.sh), and spools
// one 50 MB attachment; prints messages per second and the memory peak.
// The session is driven from a blocking socket here, one reply per read.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "protocol/smtp/smtp_session.h"

using namespace vonel;
namespace fs = std::filesystem;

namespace {

constexpr int kMessages = 1000;
const fs::path kServerScript = fs::path(__FILE__).parent_path().parent_path() / "tools" / "smtp-server.sh";

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long peakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

std::string shell(const std::string& command) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string output;
  char buffer[256];
  while (fgets(buffer, sizeof buffer, pipe.get())) output += buffer;
  return output;
}

class BlockingLink final : public smtp::SmtpLink {
 public:
  void connect(const std::string& host, int port) override {
    fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    inet_pton(AF_INET, host.c_str(), &address.sin_addr);
    if (::connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
      throw std::runtime_error("cannot connect");
    justConnected_ = true;
  }
  void send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t n = ::write(fd_, bytes.data(), bytes.size());
      if (n <= 0) throw std::runtime_error("write failed");
      bytes.remove_prefix(static_cast<std::size_t>(n));
    }
  }
  void close() override {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }
  void setTimer(bool) override {}
  smtp::SocketState state() const override {
    return fd_ >= 0 ? smtp::SocketState::Connected : smtp::SocketState::Closed;
  }

  // Feeds the session until the socket is closed.
  void run(smtp::SmtpSession& session) {
    char buffer[4096];
    while (fd_ >= 0) {
      if (justConnected_) {
        justConnected_ = false;
        session.onSocketConnected();
      }
      const ssize_t n = ::read(fd_, buffer, sizeof buffer);
      if (n <= 0) throw std::runtime_error("server closed the connection");
      session.onDataReceived(std::string_view(buffer, static_cast<std::size_t>(n)));
    }
  }

 private:
  int fd_ = -1;
  bool justConnected_ = false;
};

class Sequence final : public smtp::SmtpListener {
 public:
  smtp::SmtpSession* session = nullptr;
  std::vector<std::string> texts;
  std::size_t next = 0;
  std::string failure;

  void sendNext() {
    if (next == texts.size()) return session->disconnect();
    session->setRecipient("to@x.org");
    session->setMessage(texts[next++]);
    session->send();
  }
  void onConnected() override { sendNext(); }
  void onSendSuccessful() override { sendNext(); }
  void onSendFailed(const std::string& errors) override { failure = errors; }
  void onMessageRefused(const std::string& reply) override { failure = reply; }
  void onErrorConnecting() override {}
  void onDisconnected() override {}
  void onStatus(const std::string&) override {}
  void onProgress(std::int32_t) override {}
};

}  // namespace

int main() {
  const fs::path home = fs::temp_directory_path() / ("vonel-bench-smtp-" + std::to_string(getpid()));
  fs::create_directories(home / "Outbox");
  FixedClock clock{text::DateTime{2026, 11, 23, 12, 0, 0}};
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, AppInfo{"Vonel", "0.1.0", "", home, home});
  context.log.loggingOff = true;
  context.settings.set("ReplyAddress0", "me@example.org");
  context.settings.set("SMTP0", "127.0.0.1");

  BlockingLink link;
  Sequence sequence;
  smtp::SmtpSession session(context, link, sequence, 0);
  sequence.session = &session;

  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kMessages; ++i) {
    session.initialise(0);
    session.setRecipient("to@x.org");
    session.setSubject("Message " + std::to_string(i));
    session.setMessage("Hello,\r\n\r\nthis is message " + std::to_string(i) + ".\r\n\r\nRegards\r\n");
    if (!session.spoolToFile(home / "Outbox" / ("00_outbound_" + std::to_string(i) + ".eml"))) return 1;
  }
  const double spoolSeconds = secondsSince(start);
  std::printf("spool:   %d messages in %.3f s = %.0f messages/s\n", kMessages, spoolSeconds, kMessages / spoolSeconds);

  for (int i = 0; i < kMessages; ++i)
    sequence.texts.push_back(files::loadTextFile(home / "Outbox" / ("00_outbound_" + std::to_string(i) + ".eml")));
  const fs::path serverDir = home / "server";
  const int port = std::atoi(shell("bash '" + kServerScript.string() + "' start '" + serverDir.string() + "'").c_str());
  if (port <= 0) return 1;
  session.initialise(0);
  session.setSmtpPort(port);
  start = std::chrono::steady_clock::now();
  session.connect();
  link.run(session);
  const double sendSeconds = secondsSince(start);
  shell("bash '" + kServerScript.string() + "' stop '" + serverDir.string() + "'");
  if (!sequence.failure.empty()) {
    std::fprintf(stderr, "send failed: %s\n", sequence.failure.c_str());
    return 1;
  }
  std::printf("send:    %d messages over one connection in %.3f s = %.0f messages/s\n", kMessages, sendSeconds,
              kMessages / sendSeconds);

  const fs::path big = home / "big.bin";
  {
    files::AtomicFileWriter writer(big);
    const std::string block(1 << 20, 'x');
    for (int i = 0; i < 50; ++i) writer.write(block);
    writer.commit();
  }
  const long before = peakKilobytes();
  session.initialise(0);
  session.setRecipient("to@x.org");
  session.setAttachment(big.string());
  start = std::chrono::steady_clock::now();
  if (!session.spoolToFile(home / "Outbox" / "00_outbound_big.eml")) return 1;
  std::printf("spool:   50 MB attachment in %.3f s; memory peak %ld kB before, %ld kB after\n", secondsSince(start),
              before, peakKilobytes());
  fs::remove_all(home);
  return 0;
}
