// The SMTP session fed whatever a server might send: random replies in
// random chunks, mixed with ticks, socket events and errors, carrying an
// outbox text made of the input. It must never crash, send one command per
// reply at most, end each command in CR LF, and never let a line of the text
// end the data before its end.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/context/app_context.h"
#include "core/send/spooled_text.h"
#include "protocol/smtp/smtp_session.h"

using namespace vonel;

namespace {

// A socket error other than kAddressNotAvailable: the connection was aborted.
constexpr int kConnectionAborted = 10053;

class CheckedLink final : public smtp::SmtpLink {
 public:
  smtp::SocketState socketState = smtp::SocketState::Closed;
  int commandsSinceEvent = 0;
  void connect(const std::string&, int) override { socketState = smtp::SocketState::Connecting; }
  void send(std::string_view bytes) override {
    if (bytes.size() < 2 || bytes.substr(bytes.size() - 2) != "\r\n") std::abort();
    if (++commandsSinceEvent > 1) std::abort();
    // The data's own end is the only line that is a lone dot, by either kind of line end.
    if (bytes.starts_with("Date: ")) {
      const std::size_t end = bytes.size() - 3;
      if (bytes.find("\n.\r\n") != end - 1 || bytes.find("\n.\n") != std::string_view::npos) std::abort();
    }
  }
  void close() override { socketState = smtp::SocketState::Closed; }
  void setTimer(bool) override {}
  smtp::SocketState state() const override { return socketState; }
};

class Silent final : public smtp::SmtpListener {
 public:
  smtp::SmtpSession* session = nullptr;
  void onConnected() override { session->send(); }
  void onSendSuccessful() override {}
  void onSendFailed(const std::string&) override {
    if (!session->pendingErrors().empty()) std::abort();
  }
  // The transaction is reset at once: RSET is out before the event.
  void onMessageRefused(const std::string&) override {
    if (session->sessionState() != smtp::SmtpState::AwaitResetReply) std::abort();
  }
  void onErrorConnecting() override {}
  void onDisconnected() override {}
  void onStatus(const std::string&) override {}
  void onProgress(std::int32_t percentage) override {
    if (percentage < 0 || percentage > 100) std::abort();
  }
};

struct Quiet {
  FixedClock clock{text::DateTime{2026, 11, 23, 12, 0, 0}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{}};
  Quiet() {
    context.log.loggingOff = true;
    context.settings.set("ReplyAddress0", "me@example.org");
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Quiet quiet;
  if (size < 2) return 0;
  CheckedLink link;
  Silent listener;
  smtp::SmtpSession session(quiet.context, link, listener, 0);
  listener.session = &session;
  session.initialise(0);
  session.setUseAuthentication(data[0] & 1);
  session.setRecipient(data[0] & 2 ? "a@x.org;b@x.org" : "a@x.org");
  session.setCcRecipient(data[0] & 4 ? "c@x.org" : "");
  session.setBccRecipient(data[0] & 8 ? "d@x.org" : "");
  // The text: as many bytes as the second byte says, through the outbox's preparation.
  const std::size_t textSize = std::min<std::size_t>(data[1], size - 2);
  const std::string text(reinterpret_cast<const char*>(data + 2), textSize);
  session.setMessage(send::wireText(send::withoutStoreHeaders(text)));
  if (data[0] & 16) {
    session.connect();
  } else {
    session.send();
  }
  // Each step: a control byte, then for replies a chunk of its low bits in length.
  std::size_t at = 2 + textSize;
  while (at < size) {
    const std::uint8_t control = data[at++];
    link.commandsSinceEvent = 0;
    switch (control >> 5) {
      case 0:
        link.socketState = smtp::SocketState::Connected;
        session.onSocketConnected();
        break;
      case 1:
        session.onTimerTick();
        break;
      case 2:
        session.onSocketError(control & 1 ? smtp::kAddressNotAvailable : kConnectionAborted, "socket error");
        break;
      case 3:
        session.onBytesWritten(control & 31);
        break;
      case 4:
        link.socketState = smtp::SocketState::Closed;
        session.onSocketClosed();
        break;
      default: {
        const std::size_t length = std::min<std::size_t>(control & 31, size - at);
        session.onDataReceived(std::string_view(reinterpret_cast<const char*>(data + at), length));
        at += length;
      }
    }
  }
  return 0;
}
