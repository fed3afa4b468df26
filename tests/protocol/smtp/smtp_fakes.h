#pragma once
// A socket that records what the session does with it, a listener that
// records the events in order, and a home with its own context.
#include <memory>
#include <string>
#include <vector>

#include "../../core/test_home.h"
#include "core/context/app_context.h"
#include "protocol/smtp/smtp_session.h"

namespace vonel::smtp::testing {

class RecordingSocket : public Link {
 public:
  int socketState = kSocketClosed;
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
    socketState = kSocketClosed;
  }
  void setTimer(bool on) override { timerOn = on; }
  int state() const override { return socketState; }
  const std::string& last() const { return sent.back(); }
};

class RecordingListener : public SmtpListener {
 public:
  std::vector<std::string> events;
  void onConnected() override { events.push_back("Connected"); }
  void onErrorConnecting() override { events.push_back("ErrorConnecting"); }
  void onDisconnected() override { events.push_back("Disconnected"); }
  void onSendSuccessful() override { events.push_back("SendSuccessful"); }
  void onSendFailed(const std::string& errors) override { events.push_back("SendFailed:" + errors); }
  void onStatus(const std::string& text) override { events.push_back("Status:" + text); }
  void onProgress(std::int32_t percentage) override { events.push_back("Progress:" + std::to_string(percentage)); }
  // The events without the Status lines.
  std::vector<std::string> outcomes() const {
    std::vector<std::string> result;
    for (const auto& event : events)
      if (!event.starts_with("Status:")) result.push_back(event);
    return result;
  }
};

struct SenderHome {
  vonel::testing::TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 9, 30, 15}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS", "/cur", dir.path()}};
  RecordingSocket socket;
  RecordingListener listener;
  std::unique_ptr<SmtpSession> sender;

  explicit SenderHome(int biasMinutes = -60) {
    context.settings.set("ReplyAddress0", "me@example.org");
    context.settings.set("DisplayName0", "Me Myself");
    context.settings.set("SMTP0", "mail.example.org");
    sender = std::make_unique<SmtpSession>(context, socket, listener, biasMinutes);
    sender->initialise(0);
  }
  void advance(int seconds) {
    text::DateTime now = clock.now();
    const int total = now.hour * 3600 + now.minute * 60 + now.second + seconds;
    now.hour = total / 3600;
    now.minute = total / 60 % 60;
    now.second = total % 60;
    clock.set(now);
  }
  // Connects and answers the greeting and HELO, as a plain server does.
  void connectPlain() {
    sender->connect();
    socket.socketState = kSocketConnected;
    sender->onConnected();
    sender->onData("220 mail.example.org ESMTP\r\n");
    sender->onData("250 mail.example.org\r\n");
  }
};

}  // namespace vonel::smtp::testing
