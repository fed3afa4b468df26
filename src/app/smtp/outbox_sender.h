#pragma once
// The one object through which the program sends. spoolMessage writes an
// outgoing message into the outbox; sendOutbox later walks the outbox
// account by account, over one connection per account, and files each sent
// message in Sent Items. A message the server refuses stays in the outbox
// with the reply in a note beside it, and the others still go; a failure of
// the connection stops the whole upload, and the unsent files stay for the
// next one.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/smtp/outbox_listener.h"
#include "app/smtp/smtp_connection.h"
#include "core/message/message.h"
#include "core/send/mail_merge.h"
#include "core/send/outbox.h"

namespace vonel {

class OutboxSender final : public send::MessageSpooler {
 public:
  OutboxSender(AppContext& context, OutboxListener& events);

  // Writes the message to the outbox under its account's digits; overrides
  // that aren't empty replace the account's sender address and name.
  void spoolMessage(message::Message& message, const std::string& fromOverride,
                    const std::string& nameOverride) override;
  // Spools the message as spoolMessage does and, unless `spoolOnly`, hands it
  // to the session to send.
  void spoolOrSend(message::Message& message, bool spoolOnly, const std::string& fromOverride,
                   const std::string& nameOverride);
  // Sends every outbox file, account by account.
  void sendOutbox();
  void cancelSend();

  bool sending() const { return sending_; }

 private:
  smtp::SmtpSession& session() { return connection_.session(); }
  void configureSession(int account);
  void connectAccount(int account);
  void disconnect();
  void commitFiledMessages();
  void connectNextAccount(int previousAccount);
  std::optional<int> nextAccountWithMail(int previousAccount) const;
  void finishSending();
  void sendNextMessage();
  void sendOutboxMessage(const send::OutboxMessage& spooled);
  bool accountHasMail(int account) const;
  std::filesystem::path freeOutboxPath(int account);

  void onSmtpConnected();
  void onSmtpErrorConnecting();
  void onSmtpDisconnected();
  void onSmtpSendSuccessful();
  void onSmtpSendFailed(const std::string& text);
  void onSmtpMessageRefused(const std::string& reply);
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
  bool afterRefusal_ = false;  // a refused message's transaction is being reset
  std::size_t currentFile_ = 0;
  std::optional<int> currentAccount_;  // none once every account is served
  // The next counter to try per account; names below it were taken when last
  // looked at, so a long merge doesn't test them all again for each message.
  std::map<int, int> nextCounter_;
};

}  // namespace vonel
