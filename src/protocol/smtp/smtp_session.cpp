// The SMTP dialogue of SmtpSession: one reply per data event, decided by
// the state. The replies accepted in the AUTH LOGIN states are 250 only, so a
// server answering 334 or 235 fails there; the dialogue is kept as it is.
#include <algorithm>
#include <cmath>

#include "core/message/transfer_encoding.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"
#include "protocol/smtp/smtp_session.h"

namespace vonel::smtp {
namespace {

enum State : std::int32_t {
  kGreeting = 1,
  kHello = 2,
  kAuthLogin = 3,
  kUsername = 4,
  kPassword = 5,
  kMailFrom = 6,
  kRecipients = 7,
  kCcRecipients = 8,
  kBccRecipients = 9,
  kData = 10,
  kMessageText = 11,
  kQuit = 13,
};

constexpr double kProgressInterval = 0.25;
constexpr double kQuietSecondsBeforeStatus = 10;

// The reply text: from the fourth character on, trimmed, less a final CR LF.
std::string replyText(std::string_view chunk) {
  std::string rest = text::trim(text::mid(chunk, 4));
  if (rest.ends_with("\r\n")) rest.resize(rest.size() - 2);
  return rest;
}

}  // namespace

double SmtpSession::now() const {
  const text::DateTime moment = context_.clock.now();
  return moment.hour * 3600.0 + moment.minute * 60.0 + moment.second;
}

void SmtpSession::resetTimeout() { deadline_ = static_cast<float>(now() + messageTimeout_); }

bool SmtpSession::connect() {
  keepOpen_ = true;
  connectToHost();
  return false;
}

void SmtpSession::disconnect() {
  keepOpen_ = false;
  sendQuit();
}

void SmtpSession::send() {
  if (!initialised_) throw AppError(kNotInitialisedError, "Sendmail not initialised");
  checkRecipients();
  if (!errors_.empty()) {
    sendFail();
    return;
  }
  bytesSent_ = 0;
  bytesToSend_ = static_cast<std::int64_t>(mail_.message.size());
  failed_ = false;
  if (link_.state() != kSocketConnected) {
    connectAttempt_ = 0;
    connectToHost();
  } else {
    sendMailFrom();
  }
}

void SmtpSession::connectToHost() {
  link_.setTimer(true);
  resetTimeout();
  if (connectAttempt_ < 2) {
    listener_.onStatus("Connecting to Server...");
  } else {
    listener_.onStatus("Connecting to Server... (Attempt " + std::to_string(connectAttempt_) + " of " +
                     std::to_string(connectRetry_) + ")");
  }
  state_ = kGreeting;
  if (link_.state() > kSocketClosed) return;
  context_.log.addAction("Connecting", "ConnectToHost", kModule);
  link_.connect(smtpHost_, smtpPort_);
}

void SmtpSession::command(std::int32_t state, const std::string& line) {
  state_ = state;
  link_.send(line + "\r\n");
}

void SmtpSession::sendHello() {
  const std::size_t at = mail_.from.find('@');
  const std::string domain = at == std::string::npos ? mail_.from : mail_.from.substr(at + 1);
  command(kHello, (mail_.useAuthentication ? "EHLO " : "HELO ") + domain);
}

void SmtpSession::sendAuthLogin() { command(kAuthLogin, "AUTH LOGIN"); }
void SmtpSession::sendUsername() { command(kUsername, message::encodeMime64String(mail_.username)); }
void SmtpSession::sendPassword() { command(kPassword, message::encodeMime64String(mail_.password)); }

void SmtpSession::sendMailFrom() {
  std::string line = "MAIL FROM: <" + mail_.from + ">";
  if (serverHasAuthEqualsLogin_) line += " AUTH=" + mail_.from;
  command(kMailFrom, line);
}

// To, then Cc, then Bcc, then DATA; one RCPT per reply, empty lists skipped.
void SmtpSession::sendRecipientsFrom(std::int32_t state, std::size_t index) {
  for (; state <= kBccRecipients; ++state, index = 0) {
    const std::vector<std::string>& list = state == kRecipients     ? mail_.recipient
                                           : state == kCcRecipients ? mail_.ccRecipient
                                                                    : mail_.bccRecipient;
    if (index < list.size()) {
      recipientIndex_ = index;
      command(state, "RCPT TO: <" + text::trim(list[index]) + ">");
      return;
    }
  }
  sendDataCommand();
}

void SmtpSession::sendDataCommand() { command(kData, "DATA"); }

void SmtpSession::sendMessageText() {
  state_ = kMessageText;
  link_.send(dateLine(context_.clock.now(), timeZone_) + mail_.message + "\r\n\r\n.\r\n");
}

void SmtpSession::sendQuit() {
  if (link_.state() == kSocketConnected) link_.send("QUIT\r\n");
  state_ = kQuit;
}

void SmtpSession::fail(const std::string& reply) {
  addError(reply);
  sendFail();
}

void SmtpSession::onConnected() { socketConnected_ = true; }
void SmtpSession::onClosed() { socketConnected_ = false; }

void SmtpSession::onData(std::string_view chunk) {
  guardedStep(context_.log, "sckMail_DataArrival", kModule, [&] { handleReply(chunk); });
}

void SmtpSession::handleReply(std::string_view chunk) {
  resetTimeout();
  const int code = text::toWhole<int>(text::val(text::left(chunk, 3)));
  const std::string reply = replyText(chunk);
  switch (state_) {
    case kGreeting:
      if (socketConnected_) {
        if (text::findNoCase(chunk, "auth=login") > 0) serverHasAuthEqualsLogin_ = true;
        sendHello();
        return;
      }
      ++connectAttempt_;
      if (connectAttempt_ < connectRetry_) {
        connectToHost();
      } else {
        listener_.onErrorConnecting();
        fail(reply);
      }
      return;
    case kHello:
      if (code == 250) {
        if (mail_.useAuthentication) {
          sendAuthLogin();
        } else {
          listener_.onConnected();
        }
      } else if (code != 220) {
        fail(reply);
      }
      return;
    case kAuthLogin:
      if (code != 250) return fail(reply);
      if (text::findNoCase(chunk, "auth login") > 0) serverHasAuthLogin_ = true;
      if (serverHasAuthLogin_) sendUsername();
      return;
    case kUsername:
      if (code != 250) return fail(reply);
      return sendPassword();
    case kPassword:
      if (code != 250) {
        fail(reply);
        listener_.onErrorConnecting();
        return;
      }
      listener_.onConnected();
      return;
    case kMailFrom:
      if (code != 250) return fail(reply);
      return sendRecipientsFrom(kRecipients, 0);
    case kRecipients:
    case kCcRecipients:
    case kBccRecipients:
      if (code != 250) return fail(reply);
      return sendRecipientsFrom(state_, recipientIndex_ + 1);
    case kData:
      if (code != 354) return fail(reply);
      return sendMessageText();
    case kMessageText:
      if (code != 250) return fail(reply);
      if (!keepOpen_) sendQuit();
      listener_.onProgress(100);
      listener_.onStatus("Transmission Complete...");
      listener_.onSendSuccessful();
      return;
    case kQuit:
      if (code != 221) return fail(reply);
      link_.setTimer(false);
      link_.close();
      listener_.onDisconnected();
      return;
    default:
      return;
  }
}

void SmtpSession::onSocketError(int code, const std::string& description) {
  if (code != kAddressNotAvailable) {
    addError(description);
    sendFail();
    return;
  }
  if (link_.state() == kSocketError) link_.close();
  listener_.onErrorConnecting();
}

void SmtpSession::onSendProgress(std::int64_t bytes) {
  bytesSent_ += bytes;
  resetTimeout();
  const double moment = now();
  if (moment < nextProgressReport_) return;
  nextProgressReport_ = moment + kProgressInterval;
  if (bytesToSend_ <= 0) return;
  const auto percentage =
      std::min<std::int32_t>(100, text::toWhole<std::int32_t>(static_cast<double>(bytesSent_) / bytesToSend_ * 100));
  if (percentage == lastPercentage_) return;
  lastPercentage_ = percentage;
  listener_.onProgress(percentage);
}

void SmtpSession::onTick() {
  const double moment = now();
  if (deadline_ - messageTimeout_ + kQuietSecondsBeforeStatus <= moment) {
    listener_.onStatus("Retrying ... " + std::to_string(text::toWhole<std::int32_t>(deadline_ - moment)));
  }
  if (moment >= deadline_) {
    link_.setTimer(false);
    addError("Timeout occurred: The SMTP Host did not respond to the request");
    sendFail();
  }
}

}  // namespace vonel::smtp
