#pragma once
// The one object through which the program sends. SpoolMessage writes an
// outgoing message into the outbox; UploadSpooledMail later walks the outbox
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
class SendMailWrapperEvents {
 public:
  virtual ~SendMailWrapperEvents() = default;
  // Any step, errors included, for display.
  virtual void fSendMail_Progress(const std::string& text) = 0;
  // Sending stopped.
  virtual void fSendMail_Failed(const std::string& text) = 0;
  // The outbox was empty when the upload was asked for.
  virtual void fSendmail_NoMailToSend() = 0;
  // No account is left to serve.
  virtual void fSendmail_SendingFinished() = 0;
};

class frmSendMailWrapperNew final : public send::MessageSpooler {
 public:
  frmSendMailWrapperNew(AppContext& context, SendMailWrapperEvents& events);

  // Writes the message to the outbox under its account's digits; overrides
  // that aren't empty replace the account's sender address and name.
  void SpoolMessage(message::clsMessage& message, const std::string& fromOverride,
                    const std::string& nameOverride) override;
  void Sendmail(message::clsMessage& message, bool spoolOnly, const std::string& fromOverride,
                const std::string& nameOverride);
  void UploadSpooledMail();
  void CancelSend();
  void Connect(int account);
  void Disconnect();
  void SendSpooledMessage(const message::clsMessage& message);

  bool sending() const { return sending_; }
  smtp::frmSendMailNew& poSendMail() { return connection_.session(); }

 private:
  void SetupAccount(int account);
  void NextAccount(int previousAccount);
  void FinishSending();
  void SendNextMessage();
  bool AccountHasMail(int account) const;
  std::filesystem::path freeOutboxPath(int account);

  void poSendMail_Connected();
  void poSendMail_ErrorConnecting();
  void poSendMail_Disconnected();
  void poSendMail_SendSuccessful();
  void poSendMail_SendFailed(const std::string& text);
  void poSendMail_Status(const std::string& text);
  void poSendMail_Progress(int percentage);

  AppContext& ctx_;
  SendMailWrapperEvents& events_;
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
