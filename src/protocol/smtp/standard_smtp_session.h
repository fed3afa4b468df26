#pragma once
// The SMTP dialogue as standard servers hold it, for accounts that ask for
// it (SMTPSTANDARD<n>): multi-line replies gathered to their last line,
// EHLO (HELO after a refusal), STARTTLS and EHLO again, AUTH PLAIN when the
// server announces it, else AUTH LOGIN, and the text dot-stuffed once. The
// message, the server and the time-out are SmtpSession's, and so are the
// events and their texts, so the owner can't tell the two apart.
#include <cstdint>
#include <string>
#include <string_view>

#include "core/context/app_context.h"
#include "core/send/send_errors.h"
#include "core/settings/transport_security.h"
#include "protocol/smtp/smtp_link.h"
#include "protocol/smtp/smtp_listener.h"
#include "protocol/smtp/smtp_reply_reader.h"
#include "protocol/smtp/smtp_session.h"
#include "protocol/tls_upgrade.h"

namespace vonel::smtp {

enum class StandardState {
  Idle,
  AwaitGreeting,
  AwaitEhloReply,
  AwaitHeloReply,
  AwaitStartTlsReply,
  AwaitHandshake,
  AwaitLoginUserPrompt,
  AwaitLoginPasswordPrompt,
  AwaitAuthResult,
  Ready,
  AwaitMailFromReply,
  AwaitRecipientReply,
  AwaitDataReply,
  AwaitMessageReply,
  AwaitResetReply,
  AwaitQuitReply,
};

class StandardSmtpSession {
 public:
  // `message` supplies the fields of each message and the server; it is read
  // at every step, so the owner fills it as it fills it for SmtpSession.
  StandardSmtpSession(AppContext& context, SmtpLink& link, protocol::TlsUpgrade& upgrade, SmtpListener& listener,
                      const SmtpSession& message);

  // Plain and Tls need nothing of the session (the connection encrypts
  // from the first byte); Upgrade sends STARTTLS before anything else.
  void setSecurity(TransportSecurity security) { security_ = security; }

  void connect();
  void send();
  void disconnect();

  void onSocketConnected() {}
  void onSocketClosed() { ready_ = false; }
  void onDataReceived(std::string_view chunk);
  void onSocketError(int code, const std::string& description);
  void onBytesWritten(std::int64_t bytes);
  void onTimerTick();
  void onTlsEstablished();
  void onTlsFailed(const std::string& text);

  StandardState state() const { return state_; }

 private:
  struct Capabilities {
    bool startTls = false;
    bool authPlain = false;
  };

  void open();
  void handleReply(const SmtpReply& reply);
  void onHelloDone();
  void startAuthentication();
  void becomeReady();
  void sendCommand(StandardState awaited, const std::string& line);
  void sendHello(std::string_view verb);
  void sendMailFrom();
  void sendNextRecipient();
  void sendMessageText();
  void sendQuit();
  void readCapabilities(const SmtpReply& reply);
  bool refuses(int code) const;
  void refuseMessage(const SmtpReply& reply);
  void fail(std::string_view text);

  AppContext& context_;
  SmtpLink& link_;
  protocol::TlsUpgrade& upgrade_;
  SmtpListener& listener_;
  const SmtpSession& message_;

  TransportSecurity security_ = TransportSecurity::Plain;
  StandardState state_ = StandardState::Idle;
  SmtpReplyReader replies_;
  Capabilities capabilities_;
  send::SendErrors errors_;
  bool keepOpen_ = false;
  bool ready_ = false;
  bool secured_ = false;  // STARTTLS has been carried out on this connection
  std::size_t recipient_ = 0;  // over To, Cc and Bcc in their order
  int quietSeconds_ = 0;
  std::int64_t bytesSent_ = 0;
  std::int64_t bytesToSend_ = 0;
  std::int32_t lastPercentage_ = 0;
};

}  // namespace vonel::smtp
