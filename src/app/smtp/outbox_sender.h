#pragma once
// The one object through which the program sends. spoolMessage writes an
// outgoing message into the outbox; uploadSpooledMail later walks the outbox
// account by account, over one connection per account, and files each sent
// message in Sent Items. One failed message stops the whole upload, and its
// file and all after it stay in the outbox for the next one.
#include <map>
#include <string>
#include <vector>

#include "app/smtp/smtp_connection.h"
#include "core/message/message.h"
#include "core/send/mail_merge.h"

namespace vonel {

// What the wrapper reports, received by the controller under these names.
class OutboxListener {
 public:
  virtual ~OutboxListener() = default;
  // Any step, errors included, for display.
  virtual void onSendProgress(const std::string& text) = 0;
  // Sending stopped.
  virtual void onSendFailed(const std::string& text) = 0;
  // The outbox was empty when the upload was asked for.
  virtual void onNoMailToSend() = 0;
  // No account is left to serve.
  virtual void onSendingFinished() = 0;
};

class OutboxSender final : public send::MessageSpooler {
 public:
  OutboxSender(AppContext& context, OutboxListener& events);

  // Writes the message to the outbox under its account's digits; overrides
  // that aren't empty replace the account's sender address and name.
  void spoolMessage(message::Message& message, const std::string& fromOverride,
                    const std::string& nameOverride) override;
  void sendmail(message::Message& message, bool spoolOnly, const std::string& fromOverride,
                const std::string& nameOverride);
  void uploadSpooledMail();
  void cancelSend();
  void connect(int account);
  void disconnect();
  void sendSpooledMessage(const message::Message& message);

  bool sending() const { return sending_; }
  smtp::SmtpSession& smtpSession() { return connection_.session(); }

 private:
  void setupAccount(int account);
  void nextAccount(int previousAccount);
  void finishSending();
  void sendNextMessage();
  bool accountHasMail(int account) const;
  std::filesystem::path freeOutboxPath(int account);

  void onSmtpConnected();
  void onSmtpErrorConnecting();
  void onSmtpDisconnected();
  void onSmtpSendSuccessful();
  void onSmtpSendFailed(const std::string& text);
  void onSmtpStatus(const std::string& text);
  void onSmtpProgress(int percentage);

  AppContext& ctx_;
  OutboxListener& events_;
  SmtpConnection connection_;

  std::string server_;
  std::string userName_;
  std::string password_;
  bool connected_ = false;
  std::vector<std::string> outboxFiles_;
  bool sending_ = false;
  bool sendingOneMessage_ = false;
  std::size_t currentFile_ = 0;
  int currentAccount_ = 0;
  // The next counter to try per account; names below it were taken when last
  // looked at, so a long merge doesn't test them all again for each message.
  std::map<int, int> nextCounter_;
};

}  // namespace vonel
