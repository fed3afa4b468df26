#include "protocol/smtp/standard_smtp_session.h"

#include <algorithm>
#include <array>

#include "core/log/log_places.h"
#include "core/message/transfer_encoding.h"
#include "core/send/data_text.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"

namespace vonel::smtp {
namespace {

constexpr int kServiceReady = 220;
constexpr int kOk = 250;
constexpr int kAuthenticated = 235;
constexpr int kAuthPrompt = 334;
constexpr int kStartMailInput = 354;
constexpr int kClosing = 221;
constexpr int kServiceClosing = 421;
constexpr int kQuietSecondsBeforeStatus = 10;

constexpr const char* kTimedOut = "Timeout occurred: The SMTP Host did not respond to the request";
constexpr const char* kNoStartTls = "The SMTP server offers no STARTTLS; nothing was sent";

// The address lists in the order their RCPT commands go out.
constexpr std::array<std::vector<std::string> send::MailFields::*, 3> kRecipientLists{
    &send::MailFields::recipient, &send::MailFields::ccRecipient, &send::MailFields::bccRecipient};

const std::string* recipientAt(const send::MailFields& mail, std::size_t index) {
  for (const auto list : kRecipientLists) {
    const std::vector<std::string>& addresses = mail.*list;
    if (index < addresses.size()) return &addresses[index];
    index -= addresses.size();
  }
  return nullptr;
}

std::string domainOf(const std::string& address) {
  const std::size_t at = address.find('@');
  return at == std::string::npos ? address : address.substr(at + 1);
}

bool hasWord(std::string_view text, std::string_view word) {
  for (const std::string& piece : text::split(text::replaceAll(text, "=", " "), " ")) {
    if (text::equalsNoCase(piece, word)) return true;
  }
  return false;
}

}  // namespace

StandardSmtpSession::StandardSmtpSession(AppContext& context, SmtpLink& link, protocol::TlsUpgrade& upgrade,
                                         SmtpListener& listener, const SmtpSession& message)
    : context_(context), link_(link), upgrade_(upgrade), listener_(listener), message_(message) {}

void StandardSmtpSession::connect() {
  keepOpen_ = true;
  open();
}

void StandardSmtpSession::send() {
  for (const char* problem : send::recipientProblems(message_.fields())) errors_.add(problem);
  if (!errors_.empty()) return fail({});
  bytesSent_ = 0;
  lastPercentage_ = 0;
  bytesToSend_ = static_cast<std::int64_t>(message_.message().size());
  if (ready_ && link_.state() == SocketState::Connected) {
    sendMailFrom();
  } else {
    open();
  }
}

void StandardSmtpSession::disconnect() {
  keepOpen_ = false;
  sendQuit();
}

void StandardSmtpSession::open() {
  quietSeconds_ = 0;
  ready_ = false;
  secured_ = false;
  capabilities_ = {};
  replies_.clear();
  link_.setTimer(true);
  listener_.onStatus("Connecting to Server...");
  state_ = StandardState::AwaitGreeting;
  if (link_.state() != SocketState::Closed) link_.close();
  context_.log.addAction("Connecting", log_places::kConnectToHost, kModule);
  link_.connect(message_.smtpHost(), message_.smtpPort());
}

void StandardSmtpSession::sendCommand(StandardState awaited, const std::string& line) {
  state_ = awaited;
  link_.send(line + "\r\n");
}

void StandardSmtpSession::sendHello(std::string_view verb) {
  capabilities_ = {};
  sendCommand(verb == "EHLO" ? StandardState::AwaitEhloReply : StandardState::AwaitHeloReply,
              std::string(verb) + " " + domainOf(message_.from()));
}

void StandardSmtpSession::onDataReceived(std::string_view chunk) {
  guardedStep(context_.log, log_places::kSckMailDataArrival, kModule, [&] {
    quietSeconds_ = 0;
    replies_.add(chunk);
    // A handshake takes over the connection: what follows a STARTTLS reply in plain text is not the server's.
    while (replies_.hasReply() && state_ != StandardState::AwaitHandshake) handleReply(replies_.take());
    if (state_ == StandardState::AwaitHandshake) replies_.clear();
  });
}

void StandardSmtpSession::readCapabilities(const SmtpReply& reply) {
  for (std::size_t i = 1; i < reply.lines.size(); ++i) {
    const std::string_view line = SmtpReply::textOf(reply.lines[i]);
    if (text::equalsNoCase(text::trimView(line), "STARTTLS")) capabilities_.startTls = true;
    if (text::startsWithNoCase(line, "AUTH") && hasWord(line, "PLAIN")) capabilities_.authPlain = true;
  }
}

void StandardSmtpSession::handleReply(const SmtpReply& reply) {
  const int code = reply.code;
  switch (state_) {
    case StandardState::AwaitGreeting:
      if (code != kServiceReady) return fail(reply.text());
      return sendHello("EHLO");
    case StandardState::AwaitEhloReply:
      if (code == kOk) {
        readCapabilities(reply);
        return onHelloDone();
      }
      if (code >= 500 && code < 600) return sendHello("HELO");
      return fail(reply.text());
    case StandardState::AwaitHeloReply:
      if (code != kOk) return fail(reply.text());
      return onHelloDone();
    case StandardState::AwaitStartTlsReply:
      if (code != kServiceReady) return fail(reply.text());
      state_ = StandardState::AwaitHandshake;
      return upgrade_.startTls();
    case StandardState::AwaitLoginUserPrompt:
      if (code != kAuthPrompt) return fail(reply.text());
      return sendCommand(StandardState::AwaitLoginPasswordPrompt, message::encodeMime64String(message_.username()));
    case StandardState::AwaitLoginPasswordPrompt:
      // Anything but the prompt, a 235 included, ends here: the password goes to a server that asked for it or to none.
      if (code != kAuthPrompt) return fail(reply.text());
      return sendCommand(StandardState::AwaitAuthResult, message::encodeMime64String(message_.password()));
    case StandardState::AwaitAuthResult:
      if (code != kAuthenticated) return fail(reply.text());
      return becomeReady();
    case StandardState::AwaitMailFromReply:
      if (code != kOk) return refuses(code) ? refuseMessage(reply) : fail(reply.text());
      recipient_ = 0;
      return sendNextRecipient();
    case StandardState::AwaitRecipientReply:
      if (code != kOk) return refuses(code) ? refuseMessage(reply) : fail(reply.text());
      ++recipient_;
      return sendNextRecipient();
    case StandardState::AwaitDataReply:
      if (code != kStartMailInput) return refuses(code) ? refuseMessage(reply) : fail(reply.text());
      return sendMessageText();
    case StandardState::AwaitMessageReply:
      if (code != kOk) return refuses(code) ? refuseMessage(reply) : fail(reply.text());
      state_ = StandardState::Ready;
      if (!keepOpen_) sendQuit();
      listener_.onProgress(100);
      listener_.onStatus("Transmission Complete...");
      listener_.onSendSuccessful();
      return;
    case StandardState::AwaitResetReply:
      if (code != kOk) return fail(reply.text());
      return becomeReady();
    case StandardState::AwaitQuitReply:
      if (code != kClosing) return fail(reply.text());
      state_ = StandardState::Idle;
      ready_ = false;
      link_.setTimer(false);
      link_.close();
      listener_.onDisconnected();
      return;
    case StandardState::AwaitHandshake:
    case StandardState::Ready:
    case StandardState::Idle:
      return;
  }
}

void StandardSmtpSession::onHelloDone() {
  if (security_ == TransportSecurity::Upgrade && !secured_) {
    if (!capabilities_.startTls) return fail(kNoStartTls);
    return sendCommand(StandardState::AwaitStartTlsReply, "STARTTLS");
  }
  if (message_.useAuthentication()) return startAuthentication();
  becomeReady();
}

// Reached only in plain text when the account asks for no security at all.
void StandardSmtpSession::startAuthentication() {
  if (capabilities_.authPlain) {
    const std::string credentials = std::string(1, '\0') + message_.username() + '\0' + message_.password();
    return sendCommand(StandardState::AwaitAuthResult, "AUTH PLAIN " + message::encodeMime64String(credentials));
  }
  sendCommand(StandardState::AwaitLoginUserPrompt, "AUTH LOGIN");
}

void StandardSmtpSession::becomeReady() {
  state_ = StandardState::Ready;
  ready_ = true;
  listener_.onConnected();
}

void StandardSmtpSession::onTlsEstablished() {
  if (state_ != StandardState::AwaitHandshake) return;
  secured_ = true;
  quietSeconds_ = 0;
  sendHello("EHLO");
}

void StandardSmtpSession::onTlsFailed(const std::string& text) { fail(text); }

void StandardSmtpSession::sendMailFrom() {
  sendCommand(StandardState::AwaitMailFromReply, "MAIL FROM:<" + message_.from() + ">");
}

void StandardSmtpSession::sendNextRecipient() {
  if (const std::string* address = recipientAt(message_.fields(), recipient_)) {
    return sendCommand(StandardState::AwaitRecipientReply, "RCPT TO:<" + text::trim(*address) + ">");
  }
  sendCommand(StandardState::AwaitDataReply, "DATA");
}

// The text went through the spool's formatting once; here it only gets its
// dots of transparency, so a line ".x" arrives as ".x".
void StandardSmtpSession::sendMessageText() {
  state_ = StandardState::AwaitMessageReply;
  std::string text = dateLine(context_.clock.now(), message_.timeZone()) + send::dotStuffed(message_.message());
  if (!text.ends_with("\r\n")) text += "\r\n";
  link_.send(text + ".\r\n");
}

void StandardSmtpSession::sendQuit() {
  if (link_.state() == SocketState::Connected) link_.send("QUIT\r\n");
  state_ = StandardState::AwaitQuitReply;
}

bool StandardSmtpSession::refuses(int code) const {
  return keepOpen_ && code >= 400 && code < 600 && code != kServiceClosing;
}

void StandardSmtpSession::refuseMessage(const SmtpReply& reply) {
  const std::string whole = reply.whole();
  context_.log.addAction("Refused: " + whole, log_places::kSendRefused, kModule);
  sendCommand(StandardState::AwaitResetReply, "RSET");
  listener_.onMessageRefused(whole);
}

void StandardSmtpSession::fail(std::string_view text) {
  if (!text.empty()) errors_.add(text);
  const std::string all = errors_.joined();
  errors_.clear();
  context_.log.addDebug(all, log_places::kAddError, kModule);
  link_.setTimer(false);
  if (link_.state() != SocketState::Closed) link_.close();
  state_ = StandardState::Idle;
  ready_ = false;
  context_.log.addAction(all, log_places::kSendFail, kModule);
  listener_.onSendFailed(all);
}

void StandardSmtpSession::onSocketError(int code, const std::string& description) {
  if (code == kAddressNotAvailable) {
    if (link_.state() == SocketState::Error) link_.close();
    listener_.onErrorConnecting();
    return;
  }
  fail(description);
}

void StandardSmtpSession::onBytesWritten(std::int64_t bytes) {
  quietSeconds_ = 0;
  if (state_ != StandardState::AwaitMessageReply || bytesToSend_ <= 0) return;
  bytesSent_ += bytes;
  const auto percentage =
      std::min<std::int32_t>(100, text::toWhole<std::int32_t>(static_cast<double>(bytesSent_) / bytesToSend_ * 100));
  if (percentage == lastPercentage_) return;
  lastPercentage_ = percentage;
  listener_.onProgress(percentage);
}

void StandardSmtpSession::onTimerTick() {
  if (state_ == StandardState::Idle || state_ == StandardState::Ready) return;
  ++quietSeconds_;
  const int timeout = message_.messageTimeout();
  if (quietSeconds_ >= kQuietSecondsBeforeStatus) {
    listener_.onStatus("Retrying ... " + std::to_string(timeout - quietSeconds_));
  }
  if (quietSeconds_ >= timeout) fail(kTimedOut);
}

}  // namespace vonel::smtp
