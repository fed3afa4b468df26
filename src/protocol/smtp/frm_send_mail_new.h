#pragma once
// One account's sender: the properties of an outgoing message, its spool
// file, and the SMTP dialogue that carries a spooled text to the server.
// The dialogue is a state machine fed by socket and timer events; it sends
// through a Link and reports to a SendMailListener.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/send/mail_fields.h"
#include "core/send/send_errors.h"
#include "core/services/app_context.h"
#include "protocol/smtp/smtp_link.h"

namespace vonel::smtp {

inline constexpr const char* kModule = "clsSendmail";
inline constexpr int kNotInitialisedError = 23000;
inline constexpr int kAddressNotAvailable = 10049;

class frmSendMailNew {
 public:
  // `standardBiasMinutes`: the system's standard time-zone bias, minutes west of UTC.
  frmSendMailNew(AppContext& context, Link& link, SendMailListener& listener, int standardBiasMinutes);
  ~frmSendMailNew();
  frmSendMailNew(const frmSendMailNew&) = delete;
  frmSendMailNew& operator=(const frmSendMailNew&) = delete;

  void Initialise(std::int16_t account);

  // Session operations.
  bool Connect();
  void Disconnect();
  // Throws AppError 23000 before Initialise.
  void Send();

  bool SpoolToFile(const std::filesystem::path& file);

  // Socket and timer events.
  void onConnected();
  void onClosed();
  void onData(std::string_view chunk);
  void onSocketError(int code, const std::string& description);
  void onSendProgress(std::int64_t bytes);
  void onTick();

  // Properties.
  const std::string& From() const { return mail_.From; }
  void setFrom(std::string value) { mail_.From = std::move(value); }
  const std::string& FromDisplayName() const { return mail_.FromDisplayName; }
  void setFromDisplayName(std::string value) { mail_.FromDisplayName = std::move(value); }
  const std::string& SMTPHost() const { return SMTPHost_; }
  void setSMTPHost(std::string value) { SMTPHost_ = std::move(value); }
  std::int32_t SMTPPort() const { return SMTPPort_; }
  void setSMTPPort(std::int32_t value);
  std::int32_t ConnectTimeout() const { return ConnectTimeout_; }
  void setConnectTimeout(std::int32_t value);
  std::int32_t ConnectRetry() const { return ConnectRetry_; }
  void setConnectRetry(std::int32_t value);
  std::int32_t MessageTimeout() const { return MessageTimeout_; }
  void setMessageTimeout(std::int32_t value);
  std::int32_t EncodeType() const { return static_cast<std::int32_t>(mail_.encodeType); }
  void setEncodeType(std::int32_t value);
  const std::string& Username() const { return mail_.Username; }
  void setUsername(std::string value) { mail_.Username = std::move(value); }
  const std::string& Password() const { return mail_.Password; }
  void setPassword(std::string value) { mail_.Password = std::move(value); }
  bool UseAuthentication() const { return mail_.UseAuthentication; }
  void setUseAuthentication(bool value);
  bool PersistentSettings() const { return PersistentSettings_; }
  void setPersistentSettings(bool value);
  std::int32_t Priority() const { return mail_.Priority; }
  void setPriority(std::int32_t value);
  const std::string& Delimiter() const { return Delimiter_; }
  void setDelimiter(std::string_view value) { Delimiter_ = std::string(value.substr(0, 1)); }
  void setRecipient(std::string_view value) { mail_.Recipient = splitList(value); }
  void setRecipientDisplayName(std::string_view value) { mail_.RecipientDisplayName = splitList(value); }
  void setCcRecipient(std::string_view value) { mail_.CcRecipient = splitList(value); }
  void setCcDisplayName(std::string_view value) { mail_.CcDisplayName = splitList(value); }
  void setBccRecipient(std::string_view value) { mail_.BccRecipient = splitList(value); }
  void setAttachment(std::string_view value);
  const std::string& Message() const { return mail_.Message; }
  void setMessage(std::string_view value);
  const std::string& ContentBase() const { return mail_.ContentBase; }
  void setContentBase(std::string_view value);
  void setSubject(std::string value) { mail_.Subject = std::move(value); }
  void setReplyToAddress(std::string value) { mail_.ReplyToAddress = std::move(value); }
  void setInReplyTo(std::string value) { mail_.InReplyTo = std::move(value); }
  void setAsHTML(bool value) { mail_.AsHTML = value; }
  void setReceipt(bool value) { mail_.Receipt = value; }

  // Read-only views for the caller and for tests.
  const send::MailFields& fields() const { return mail_; }
  const std::string& timeZone() const { return timeZone_; }
  bool failed() const { return failed_; }
  std::int32_t sessionState() const { return state_; }
  std::int64_t bytesToSend() const { return bytesToSend_; }
  const send::SendErrors& pendingErrors() const { return errors_; }

 private:
  std::vector<std::string> splitList(std::string_view value) const;
  void AddError(std::string_view text);
  void SendFail();
  // The two recipient checks that Send and SpoolToFile share.
  void checkRecipients();

  // The dialogue.
  void handleReply(std::string_view chunk);
  void fail(const std::string& replyText);
  void ResetTimeout();
  double now() const;
  void ConnectToHost();
  void SendHello();
  void SendAuthLogin();
  void SendUsername();
  void SendPassword();
  void SendMailFrom();
  void sendRecipientsFrom(std::int32_t state, std::size_t index);
  void SendDataCommand();
  void SendMessageText();
  void SendQuit();
  void command(std::int32_t state, const std::string& line);

  AppContext& context_;
  Link& link_;
  SendMailListener& listener_;
  const int standardBiasMinutes_;

  send::MailFields mail_;
  send::SendErrors errors_;
  std::string SMTPHost_;
  std::int32_t SMTPPort_ = 25;
  std::int32_t ConnectTimeout_ = 10;
  std::int32_t ConnectRetry_ = 3;
  std::int32_t MessageTimeout_ = 60;
  bool PersistentSettings_ = false;
  std::string Delimiter_ = ";";
  std::string timeZone_;

  std::int32_t state_ = 0;
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
  std::size_t recipientIndex_ = 0;
  std::int32_t lastPercentage_ = 0;
  double nextProgressReport_ = 0;
};

}  // namespace vonel::smtp
