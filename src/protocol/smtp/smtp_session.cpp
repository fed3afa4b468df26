// The SMTP dialogue of frmSendMailNew: one reply per data event, decided by
// the state. The replies accepted in the AUTH LOGIN states are 250 only, so a
// server answering 334 or 235 fails there; the dialogue is kept as it is.
#include <algorithm>
#include <cmath>

#include "core/message/transfer_encoding.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"
#include "protocol/smtp/frm_send_mail_new.h"

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

double frmSendMailNew::now() const {
  const text::DateTime moment = context_.clock.now();
  return moment.hour * 3600.0 + moment.minute * 60.0 + moment.second;
}

void frmSendMailNew::ResetTimeout() { deadline_ = static_cast<float>(now() + MessageTimeout_); }

bool frmSendMailNew::Connect() {
  keepOpen_ = true;
  ConnectToHost();
  return false;
}

void frmSendMailNew::Disconnect() {
  keepOpen_ = false;
  SendQuit();
}

void frmSendMailNew::Send() {
  if (!initialised_) throw AppError(kNotInitialisedError, "Sendmail not initialised");
  checkRecipients();
  if (!errors_.empty()) {
    SendFail();
    return;
  }
  bytesSent_ = 0;
  bytesToSend_ = static_cast<std::int64_t>(mail_.Message.size());
  failed_ = false;
  if (link_.state() != kSocketConnected) {
    connectAttempt_ = 0;
    ConnectToHost();
  } else {
    SendMailFrom();
  }
}

void frmSendMailNew::ConnectToHost() {
  link_.setTimer(true);
  ResetTimeout();
  if (connectAttempt_ < 2) {
    listener_.Status("Connecting to Server...");
  } else {
    listener_.Status("Connecting to Server... (Attempt " + std::to_string(connectAttempt_) + " of " +
                     std::to_string(ConnectRetry_) + ")");
  }
  state_ = kGreeting;
  if (link_.state() > kSocketClosed) return;
  context_.log.AddAction("Connecting", "ConnectToHost", kModule);
  link_.connect(SMTPHost_, SMTPPort_);
}

void frmSendMailNew::command(std::int32_t state, const std::string& line) {
  state_ = state;
  link_.send(line + "\r\n");
}

void frmSendMailNew::SendHello() {
  const std::size_t at = mail_.From.find('@');
  const std::string domain = at == std::string::npos ? mail_.From : mail_.From.substr(at + 1);
  command(kHello, (mail_.UseAuthentication ? "EHLO " : "HELO ") + domain);
}

void frmSendMailNew::SendAuthLogin() { command(kAuthLogin, "AUTH LOGIN"); }
void frmSendMailNew::SendUsername() { command(kUsername, message::EncodeMime64String(mail_.Username)); }
void frmSendMailNew::SendPassword() { command(kPassword, message::EncodeMime64String(mail_.Password)); }

void frmSendMailNew::SendMailFrom() {
  std::string line = "MAIL FROM: <" + mail_.From + ">";
  if (serverHasAuthEqualsLogin_) line += " AUTH=" + mail_.From;
  command(kMailFrom, line);
}

// To, then Cc, then Bcc, then DATA; one RCPT per reply, empty lists skipped.
void frmSendMailNew::sendRecipientsFrom(std::int32_t state, std::size_t index) {
  for (; state <= kBccRecipients; ++state, index = 0) {
    const std::vector<std::string>& list = state == kRecipients     ? mail_.Recipient
                                           : state == kCcRecipients ? mail_.CcRecipient
                                                                    : mail_.BccRecipient;
    if (index < list.size()) {
      recipientIndex_ = index;
      command(state, "RCPT TO: <" + text::trim(list[index]) + ">");
      return;
    }
  }
  SendDataCommand();
}

void frmSendMailNew::SendDataCommand() { command(kData, "DATA"); }

void frmSendMailNew::SendMessageText() {
  state_ = kMessageText;
  link_.send(dateLine(context_.clock.now(), timeZone_) + mail_.Message + "\r\n\r\n.\r\n");
}

void frmSendMailNew::SendQuit() {
  if (link_.state() == kSocketConnected) link_.send("QUIT\r\n");
  state_ = kQuit;
}

void frmSendMailNew::fail(const std::string& reply) {
  AddError(reply);
  SendFail();
}

void frmSendMailNew::onConnected() { socketConnected_ = true; }
void frmSendMailNew::onClosed() { socketConnected_ = false; }

void frmSendMailNew::onData(std::string_view chunk) {
  guardedStep(context_.log, "sckMail_DataArrival", kModule, [&] { handleReply(chunk); });
}

void frmSendMailNew::handleReply(std::string_view chunk) {
  ResetTimeout();
  const int code = text::toWhole<int>(text::val(text::left(chunk, 3)));
  const std::string reply = replyText(chunk);
  switch (state_) {
    case kGreeting:
      if (socketConnected_) {
        if (text::findNoCase(chunk, "auth=login") > 0) serverHasAuthEqualsLogin_ = true;
        SendHello();
        return;
      }
      ++connectAttempt_;
      if (connectAttempt_ < ConnectRetry_) {
        ConnectToHost();
      } else {
        listener_.ErrorConnecting();
        fail(reply);
      }
      return;
    case kHello:
      if (code == 250) {
        if (mail_.UseAuthentication) {
          SendAuthLogin();
        } else {
          listener_.Connected();
        }
      } else if (code != 220) {
        fail(reply);
      }
      return;
    case kAuthLogin:
      if (code != 250) return fail(reply);
      if (text::findNoCase(chunk, "auth login") > 0) serverHasAuthLogin_ = true;
      if (serverHasAuthLogin_) SendUsername();
      return;
    case kUsername:
      if (code != 250) return fail(reply);
      return SendPassword();
    case kPassword:
      if (code != 250) {
        fail(reply);
        listener_.ErrorConnecting();
        return;
      }
      listener_.Connected();
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
      return SendMessageText();
    case kMessageText:
      if (code != 250) return fail(reply);
      if (!keepOpen_) SendQuit();
      listener_.Progress(100);
      listener_.Status("Transmission Complete...");
      listener_.SendSuccessful();
      return;
    case kQuit:
      if (code != 221) return fail(reply);
      link_.setTimer(false);
      link_.close();
      listener_.Disconnected();
      return;
    default:
      return;
  }
}

void frmSendMailNew::onSocketError(int code, const std::string& description) {
  if (code != kAddressNotAvailable) {
    AddError(description);
    SendFail();
    return;
  }
  if (link_.state() == kSocketError) link_.close();
  listener_.ErrorConnecting();
}

void frmSendMailNew::onSendProgress(std::int64_t bytes) {
  bytesSent_ += bytes;
  ResetTimeout();
  const double moment = now();
  if (moment < nextProgressReport_) return;
  nextProgressReport_ = moment + kProgressInterval;
  if (bytesToSend_ <= 0) return;
  const auto percentage =
      std::min<std::int32_t>(100, text::toWhole<std::int32_t>(static_cast<double>(bytesSent_) / bytesToSend_ * 100));
  if (percentage == lastPercentage_) return;
  lastPercentage_ = percentage;
  listener_.Progress(percentage);
}

void frmSendMailNew::onTick() {
  const double moment = now();
  if (deadline_ - MessageTimeout_ + kQuietSecondsBeforeStatus <= moment) {
    listener_.Status("Retrying ... " + std::to_string(text::toWhole<std::int32_t>(deadline_ - moment)));
  }
  if (moment >= deadline_) {
    link_.setTimer(false);
    AddError("Timeout occurred: The SMTP Host did not respond to the request");
    SendFail();
  }
}

}  // namespace vonel::smtp
