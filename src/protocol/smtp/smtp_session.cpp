// The SMTP dialogue of SmtpSession: one reply per data event, decided by
// the state. The AUTH LOGIN states accept 250 only, so a server answering 334
// or 235 fails there: a documented result that the tests and the users of
// servers which answer 250 throughout depend on.
#include <algorithm>
#include <array>
#include <cmath>

#include "core/log/log_places.h"
#include "core/message/transfer_encoding.h"
#include "core/send/data_text.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"
#include "protocol/smtp/smtp_session.h"

namespace vonel::smtp {
namespace {

// The recipient lists in the order their RCPT commands go out, each with the
// state that waits for the reply to one of its addresses.
struct RecipientList {
  SmtpState awaited;
  std::vector<std::string> send::MailFields::*addresses;
};
constexpr std::array<RecipientList, 3> kRecipientLists{{
    {SmtpState::AwaitToReply, &send::MailFields::recipient},
    {SmtpState::AwaitCcReply, &send::MailFields::ccRecipient},
    {SmtpState::AwaitBccReply, &send::MailFields::bccRecipient},
}};

constexpr double kProgressInterval = 0.25;
constexpr double kQuietSecondsBeforeStatus = 10;

// The reply text: from the fourth character on, trimmed, less a final CR LF.
std::string replyText(std::string_view chunk) {
  std::string rest = text::trim(text::mid(chunk, 4));
  if (rest.ends_with("\r\n")) rest.resize(rest.size() - 2);
  return rest;
}

// The whole reply, code included, on one line: its lines joined by blanks.
std::string wholeReply(std::string_view chunk) {
  std::string reply = text::replaceAll(chunk, "\r\n", " ");
  std::replace_if(reply.begin(), reply.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text::trim(reply);
}

// "Service not available, closing transmission channel": the connection goes, not just the message.
constexpr int kServiceClosing = 421;

}  // namespace

double SmtpSession::secondsIntoDay() const {
  const text::DateTime moment = context_.clock.now();
  return moment.hour * 3600.0 + moment.minute * 60.0 + moment.second;
}

void SmtpSession::resetTimeout() { deadline_ = static_cast<float>(secondsIntoDay() + messageTimeout_); }

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
    reportFailure();
    return;
  }
  bytesSent_ = 0;
  bytesToSend_ = static_cast<std::int64_t>(mail_.message.size());
  failed_ = false;
  if (link_.state() != SocketState::Connected) {
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
  state_ = SmtpState::AwaitGreeting;
  if (link_.state() != SocketState::Closed) return;
  context_.log.addAction("Connecting", log_places::kConnectToHost, kModule);
  link_.connect(smtpHost_, smtpPort_);
}

void SmtpSession::sendCommand(SmtpState awaited, const std::string& line) {
  state_ = awaited;
  link_.send(line + "\r\n");
}

void SmtpSession::sendHello() {
  const std::size_t at = mail_.from.find('@');
  const std::string domain = at == std::string::npos ? mail_.from : mail_.from.substr(at + 1);
  sendCommand(SmtpState::AwaitHelloReply, (mail_.useAuthentication ? "EHLO " : "HELO ") + domain);
}

void SmtpSession::sendAuthLogin() { sendCommand(SmtpState::AwaitAuthReply, "AUTH LOGIN"); }
void SmtpSession::sendUsername() {
  sendCommand(SmtpState::AwaitUsernameReply, message::encodeMime64String(mail_.username));
}
void SmtpSession::sendPassword() {
  sendCommand(SmtpState::AwaitPasswordReply, message::encodeMime64String(mail_.password));
}

void SmtpSession::sendMailFrom() {
  std::string line = "MAIL FROM: <" + mail_.from + ">";
  if (serverHasAuthEqualsLogin_) line += " AUTH=" + mail_.from;
  sendCommand(SmtpState::AwaitMailFromReply, line);
}

// To, then Cc, then Bcc, then DATA; one RCPT per reply, empty lists skipped.
void SmtpSession::sendRecipientsFrom(std::size_t list, std::size_t index) {
  for (; list < kRecipientLists.size(); ++list, index = 0) {
    const std::vector<std::string>& addresses = mail_.*kRecipientLists[list].addresses;
    if (index < addresses.size()) {
      recipientList_ = list;
      recipientIndex_ = index;
      sendCommand(kRecipientLists[list].awaited, "RCPT TO: <" + text::trim(addresses[index]) + ">");
      return;
    }
  }
  sendDataCommand();
}

void SmtpSession::sendDataCommand() { sendCommand(SmtpState::AwaitDataReply, "DATA"); }

void SmtpSession::sendMessageText() {
  state_ = SmtpState::AwaitMessageReply;
  link_.send(dateLine(context_.clock.now(), timeZone_) + send::dotStuffed(mail_.message) + "\r\n\r\n.\r\n");
}

void SmtpSession::sendReset() { sendCommand(SmtpState::AwaitResetReply, "RSET"); }

void SmtpSession::sendQuit() {
  if (link_.state() == SocketState::Connected) link_.send("QUIT\r\n");
  state_ = SmtpState::AwaitQuitReply;
}

void SmtpSession::failWithReply(const std::string& reply) {
  addError(reply);
  reportFailure();
}

// A 4xx or 5xx reply refuses this one message; only a connection kept open
// for several messages has others to go on with.
bool SmtpSession::isRefusal(int code) const { return keepOpen_ && code >= 400 && code < 600 && code != kServiceClosing; }

void SmtpSession::refuseMessage(std::string_view chunk) {
  const std::string reply = wholeReply(chunk);
  context_.log.addAction("Refused: " + reply, log_places::kSendRefused, kModule);
  sendReset();
  listener_.onMessageRefused(reply);
}

void SmtpSession::onSocketConnected() { socketConnected_ = true; }
void SmtpSession::onSocketClosed() { socketConnected_ = false; }

void SmtpSession::onDataReceived(std::string_view chunk) {
  guardedStep(context_.log, log_places::kSckMailDataArrival, kModule, [&] { handleReply(chunk); });
}

void SmtpSession::handleReply(std::string_view chunk) {
  resetTimeout();
  const int code = text::toWhole<int>(text::val(text::left(chunk, 3)));
  const std::string reply = replyText(chunk);
  switch (state_) {
    case SmtpState::AwaitGreeting:
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
        failWithReply(reply);
      }
      return;
    case SmtpState::AwaitHelloReply:
      if (code == 250) {
        if (mail_.useAuthentication) {
          sendAuthLogin();
        } else {
          listener_.onConnected();
        }
      } else if (code != 220) {
        failWithReply(reply);
      }
      return;
    case SmtpState::AwaitAuthReply:
      if (code != 250) return failWithReply(reply);
      if (text::findNoCase(chunk, "auth login") > 0) serverHasAuthLogin_ = true;
      if (serverHasAuthLogin_) sendUsername();
      return;
    case SmtpState::AwaitUsernameReply:
      if (code != 250) return failWithReply(reply);
      return sendPassword();
    case SmtpState::AwaitPasswordReply:
      if (code != 250) {
        failWithReply(reply);
        listener_.onErrorConnecting();
        return;
      }
      listener_.onConnected();
      return;
    case SmtpState::AwaitMailFromReply:
      if (code != 250) return isRefusal(code) ? refuseMessage(chunk) : failWithReply(reply);
      return sendRecipientsFrom(0, 0);
    case SmtpState::AwaitToReply:
    case SmtpState::AwaitCcReply:
    case SmtpState::AwaitBccReply:
      if (code != 250) return isRefusal(code) ? refuseMessage(chunk) : failWithReply(reply);
      return sendRecipientsFrom(recipientList_, recipientIndex_ + 1);
    case SmtpState::AwaitDataReply:
      if (code != 354) return isRefusal(code) ? refuseMessage(chunk) : failWithReply(reply);
      return sendMessageText();
    case SmtpState::AwaitMessageReply:
      if (code != 250) return isRefusal(code) ? refuseMessage(chunk) : failWithReply(reply);
      if (!keepOpen_) sendQuit();
      listener_.onProgress(100);
      listener_.onStatus("Transmission Complete...");
      listener_.onSendSuccessful();
      return;
    case SmtpState::AwaitResetReply:
      if (code != 250) return failWithReply(reply);
      listener_.onConnected();
      return;
    case SmtpState::AwaitQuitReply:
      if (code != 221) return failWithReply(reply);
      link_.setTimer(false);
      link_.close();
      listener_.onDisconnected();
      return;
    case SmtpState::Idle:
      return;
  }
}

void SmtpSession::onSocketError(int code, const std::string& description) {
  if (code != kAddressNotAvailable) {
    addError(description);
    reportFailure();
    return;
  }
  if (link_.state() == SocketState::Error) link_.close();
  listener_.onErrorConnecting();
}

void SmtpSession::onBytesWritten(std::int64_t bytes) {
  bytesSent_ += bytes;
  resetTimeout();
  const double moment = secondsIntoDay();
  if (moment < nextProgressReport_) return;
  nextProgressReport_ = moment + kProgressInterval;
  if (bytesToSend_ <= 0) return;
  const auto percentage =
      std::min<std::int32_t>(100, text::toWhole<std::int32_t>(static_cast<double>(bytesSent_) / bytesToSend_ * 100));
  if (percentage == lastPercentage_) return;
  lastPercentage_ = percentage;
  listener_.onProgress(percentage);
}

void SmtpSession::onTimerTick() {
  const double moment = secondsIntoDay();
  if (deadline_ - messageTimeout_ + kQuietSecondsBeforeStatus <= moment) {
    listener_.onStatus("Retrying ... " + std::to_string(text::toWhole<std::int32_t>(deadline_ - moment)));
  }
  if (moment >= deadline_) {
    link_.setTimer(false);
    addError("Timeout occurred: The SMTP Host did not respond to the request");
    reportFailure();
  }
}

}  // namespace vonel::smtp
