#pragma once
// One account's sender: the properties of an outgoing message, its spool
// file, and the SMTP dialogue that carries a spooled text to the server.
// The dialogue is a state machine fed by socket and timer events; it sends
// through an SmtpLink and reports to an SmtpListener.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/context/app_context.h"
#include "core/log/log_places.h"
#include "core/send/mail_fields.h"
#include "core/send/send_errors.h"
#include "protocol/smtp/smtp_link.h"
#include "protocol/smtp/smtp_listener.h"

namespace vonel::smtp {

// What the dialogue waits for next.
enum class SmtpState {
  Idle,
  AwaitGreeting,
  AwaitHelloReply,
  AwaitAuthReply,
  AwaitUsernameReply,
  AwaitPasswordReply,
  AwaitMailFromReply,
  AwaitToReply,
  AwaitCcReply,
  AwaitBccReply,
  AwaitDataReply,
  AwaitMessageReply,
  AwaitResetReply,
  AwaitQuitReply,
};

inline constexpr std::string_view kModule = log_places::kSmtpModule;
inline constexpr int kNotInitialisedError = 23000;
inline constexpr int kAddressNotAvailable = 10049;

class SmtpSession {
 public:
  // `standardBiasMinutes`: the system's standard time-zone bias, minutes west of UTC.
  SmtpSession(AppContext& context, SmtpLink& link, SmtpListener& listener, int standardBiasMinutes);
  ~SmtpSession();
  SmtpSession(const SmtpSession&) = delete;
  SmtpSession& operator=(const SmtpSession&) = delete;

  void initialise(std::int16_t account);

  // Session operations.
  bool connect();
  void disconnect();
  // Throws AppError 23000 before initialise.
  void send();

  // Writes the spool file; a message without a Message-ID gets a new one
  // first, on the domain of the account's reply address.
  bool spoolToFile(const std::filesystem::path& file);

  // Socket and timer events.
  void onSocketConnected();
  void onSocketClosed();
  void onDataReceived(std::string_view chunk);
  void onSocketError(int code, const std::string& description);
  void onBytesWritten(std::int64_t bytes);
  void onTimerTick();

  // Properties.
  const std::string& from() const { return mail_.from; }
  void setFrom(std::string value) { mail_.from = std::move(value); }
  const std::string& fromDisplayName() const { return mail_.fromDisplayName; }
  void setFromDisplayName(std::string value) { mail_.fromDisplayName = std::move(value); }
  const std::string& smtpHost() const { return smtpHost_; }
  void setSmtpHost(std::string value) { smtpHost_ = std::move(value); }
  std::int32_t smtpPort() const { return smtpPort_; }
  void setSmtpPort(std::int32_t value);
  std::int32_t connectTimeout() const { return connectTimeout_; }
  void setConnectTimeout(std::int32_t value);
  std::int32_t connectRetry() const { return connectRetry_; }
  void setConnectRetry(std::int32_t value);
  std::int32_t messageTimeout() const { return messageTimeout_; }
  void setMessageTimeout(std::int32_t value);
  send::EncodeType encodeType() const { return mail_.encodeType; }
  void setEncodeType(send::EncodeType value);
  const std::string& username() const { return mail_.username; }
  void setUsername(std::string value) { mail_.username = std::move(value); }
  const std::string& password() const { return mail_.password; }
  void setPassword(std::string value) { mail_.password = std::move(value); }
  bool useAuthentication() const { return mail_.useAuthentication; }
  void setUseAuthentication(bool value);
  bool persistentSettings() const { return persistentSettings_; }
  void setPersistentSettings(bool value);
  send::Priority priority() const { return mail_.priority; }
  void setPriority(send::Priority value);
  const std::string& delimiter() const { return delimiter_; }
  void setDelimiter(std::string_view value) { delimiter_ = std::string(value.substr(0, 1)); }
  void setRecipient(std::string_view value) { mail_.recipient = splitList(value); }
  void setRecipientDisplayName(std::string_view value) { mail_.recipientDisplayName = splitList(value); }
  void setCcRecipient(std::string_view value) { mail_.ccRecipient = splitList(value); }
  void setCcDisplayName(std::string_view value) { mail_.ccDisplayName = splitList(value); }
  void setBccRecipient(std::string_view value) { mail_.bccRecipient = splitList(value); }
  void setAttachment(std::string_view value);
  const std::string& message() const { return mail_.message; }
  void setMessage(std::string_view value);
  const std::string& contentBase() const { return mail_.contentBase; }
  void setContentBase(std::string_view value);
  void setSubject(std::string value) { mail_.subject = std::move(value); }
  void setReplyToAddress(std::string value) { mail_.replyToAddress = std::move(value); }
  void setInReplyTo(std::string value) { mail_.inReplyTo = std::move(value); }
  const std::string& messageId() const { return mail_.messageId; }
  void setMessageId(std::string value) { mail_.messageId = std::move(value); }
  void setAsHtml(bool value) { mail_.asHtml = value; }
  void setReceipt(bool value) { mail_.receipt = value; }

  // Read-only views for the caller and for tests.
  const send::MailFields& fields() const { return mail_; }
  const std::string& timeZone() const { return timeZone_; }
  bool failed() const { return failed_; }
  SmtpState sessionState() const { return state_; }
  std::int64_t bytesToSend() const { return bytesToSend_; }
  const send::SendErrors& pendingErrors() const { return errors_; }

 private:
  std::vector<std::string> splitList(std::string_view value) const;
  void addError(std::string_view text);
  void reportFailure();
  // The two recipient checks that send and spoolToFile share.
  void checkRecipients();

  // The dialogue.
  void handleReply(std::string_view chunk);
  void failWithReply(const std::string& replyText);
  bool isRefusal(int code) const;
  void refuseMessage(std::string_view chunk);
  void resetTimeout();
  double secondsIntoDay() const;
  void connectToHost();
  void sendHello();
  void sendAuthLogin();
  void sendUsername();
  void sendPassword();
  void sendMailFrom();
  void sendRecipientsFrom(std::size_t list, std::size_t index);
  void sendDataCommand();
  void sendMessageText();
  void sendReset();
  void sendQuit();
  void sendCommand(SmtpState awaited, const std::string& line);

  AppContext& context_;
  SmtpLink& link_;
  SmtpListener& listener_;
  const int standardBiasMinutes_;

  send::MailFields mail_;
  std::string accountAddress_;  // the account's reply address, whatever From becomes
  send::SendErrors errors_;
  std::string smtpHost_;
  std::int32_t smtpPort_ = 25;
  std::int32_t connectTimeout_ = 10;
  std::int32_t connectRetry_ = 3;
  std::int32_t messageTimeout_ = 60;
  bool persistentSettings_ = false;
  std::string delimiter_ = ";";
  std::string timeZone_;

  SmtpState state_ = SmtpState::Idle;
  std::int16_t connectAttempt_ = 0;
  float deadline_ = 0;
  bool initialised_ = false;
  bool failed_ = false;
  bool socketConnected_ = false;
  bool keepOpen_ = false;
  bool serverHasAuthLogin_ = false;
  bool serverHasAuthEqualsLogin_ = false;
  std::int64_t bytesSent_ = 0;
  std::int64_t bytesToSend_ = 0;
  std::size_t recipientList_ = 0;  // To, Cc or Bcc, in the order they are sent
  std::size_t recipientIndex_ = 0;
  std::int32_t lastPercentage_ = 0;
  double nextProgressReport_ = 0;
};

}  // namespace vonel::smtp
