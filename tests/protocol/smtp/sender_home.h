#pragma once
// A home with its own context, and a session over a recording socket and
// listener, set up for account 0.
#include <memory>

#include "../../core/test_home.h"
#include "core/context/app_context.h"
#include "protocol/smtp/smtp_session.h"
#include "recording_listener.h"
#include "recording_socket.h"

namespace vonel::smtp::testing {

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
    socket.socketState = SocketState::Connected;
    sender->onSocketConnected();
    sender->onDataReceived("220 mail.example.org ESMTP\r\n");
    sender->onDataReceived("250 mail.example.org\r\n");
  }
};

}  // namespace vonel::smtp::testing
