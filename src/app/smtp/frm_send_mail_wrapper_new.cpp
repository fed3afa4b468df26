#include "app/smtp/frm_send_mail_wrapper_new.h"

#include "app/qtext.h"
#include "core/message/address.h"
#include "core/message/message_file.h"
#include "core/send/outbox.h"
#include "core/send/spooled_text.h"
#include "core/settings/accounts.h"
#include "core/text/numbers.h"

namespace vonel {

namespace {

constexpr const char* kModule = "frmSendMailWrapper";
constexpr int kNoMoreAccounts = 65535;

// Each non-empty name followed by ";", less the last ";".
std::string attachmentList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    if (!name.empty()) list += name + ";";
  }
  if (list.size() > 1 && list.ends_with(';')) list.pop_back();
  return list;
}

}  // namespace

frmSendMailWrapperNew::frmSendMailWrapperNew(AppContext& context, SendMailWrapperEvents& events)
    : ctx_(context), events_(events), connection_(context) {
  QObject::connect(&connection_, &SmtpConnection::connected, &connection_, [this] { poSendMail_Connected(); });
  QObject::connect(&connection_, &SmtpConnection::errorConnecting, &connection_,
                   [this] { poSendMail_ErrorConnecting(); });
  QObject::connect(&connection_, &SmtpConnection::disconnected, &connection_, [this] { poSendMail_Disconnected(); });
  QObject::connect(&connection_, &SmtpConnection::sendSuccessful, &connection_,
                   [this] { poSendMail_SendSuccessful(); });
  QObject::connect(&connection_, &SmtpConnection::sendFailed, &connection_,
                   [this](const QString& text) { poSendMail_SendFailed(fromQString(text)); });
  QObject::connect(&connection_, &SmtpConnection::status, &connection_,
                   [this](const QString& text) { poSendMail_Status(fromQString(text)); });
  QObject::connect(&connection_, &SmtpConnection::progress, &connection_,
                   [this](int percentage) { poSendMail_Progress(percentage); });
}

void frmSendMailWrapperNew::SpoolMessage(message::clsMessage& message, const std::string& fromOverride,
                                         const std::string& nameOverride) {
  Sendmail(message, true, fromOverride, nameOverride);
}

std::filesystem::path frmSendMailWrapperNew::freeOutboxPath(int account) {
  int& next = nextCounter_[account];
  const int counter = send::FreeOutboxCounter(ctx_.folders.OutboxFolderPath, account, next);
  next = counter + 1;
  return ctx_.folders.OutboxFolderPath / send::OutboxFileName(account, counter);
}

void frmSendMailWrapperNew::Sendmail(message::clsMessage& message, bool spoolOnly, const std::string& fromOverride,
                                     const std::string& nameOverride) {
  guardedStep(ctx_.log, "Sendmail", kModule, [&] {
    smtp::frmSendMailNew& mail = poSendMail();
    mail.Initialise(message.FromAccount);
    message.From = message::ExtractEmail(message.From);
    message.setTo_Email(message.To_Email());
    mail.setAttachment(attachmentList(message.AttachmentNames()));
    const std::filesystem::path file = freeOutboxPath(message.FromAccount);
    mail.setRecipient(message::ExtractEmail(message.To_Email()));
    mail.setRecipientDisplayName(message::ExtractName(message.To_Email()));
    mail.setSubject(message.Subject);
    mail.setMessage(message.MessageBody());
    const send::AddressList cc = send::SplitAddressList(message.CC);
    mail.setCcRecipient(cc.addresses);
    mail.setCcDisplayName(cc.names);
    mail.setBccRecipient(send::SplitAddressList(message.BCC).addresses);
    if (!fromOverride.empty()) mail.setFrom(fromOverride);
    if (!nameOverride.empty()) mail.setFromDisplayName(nameOverride);
    mail.SpoolToFile(file);
    if (!spoolOnly) mail.Send();
  });
}

void frmSendMailWrapperNew::SetupAccount(int account) {
  smtp::frmSendMailNew& mail = poSendMail();
  mail.Initialise(static_cast<std::int16_t>(account));
  const Account settings = readAccount(ctx_.Settings, account, AccountReader::Session);
  server_ = settings.Smtp;
  ctx_.log.AddAction("Using server: " + server_, "SetupAccount", kModule);
  if (server_.empty()) {
    ctx_.log.AddAction("Error, server not defined. Sendmail cancelled.", "SetupAccount", kModule);
    const std::string text = "Please specify SMTP server #" + std::to_string(account + 1) + " in the settings";
    ctx_.prompt.ask(text, Buttons::Ok, "Vonel");
    events_.fSendMail_Failed(text);
    return;
  }
  const double timeout = ctx_.Settings.RetrieveSetting("MailTimeout", Value(30)).numberOr(30);
  mail.setConnectTimeout(text::toWhole<std::int32_t>(timeout));
  mail.setSMTPHost(server_);
  userName_ = settings.SmtpAuth ? settings.SmtpUserName : std::string();
  password_ = settings.SmtpAuth ? settings.SmtpPassword : std::string();
  if (password_.empty()) {
    ctx_.log.AddAction("No password required", "SetupAccount", kModule);
    mail.setUseAuthentication(false);
  } else {
    ctx_.log.AddAction("Using SMTP authorisation", "SetupAccount", kModule);
    mail.setUseAuthentication(true);
    mail.setUsername(userName_);
    mail.setPassword(password_);
  }
  mail.setDelimiter(";");
}

void frmSendMailWrapperNew::Connect(int account) {
  guardedStep(ctx_.log, "Connect", kModule, [&] {
    connected_ = false;
    // Both name the server of the account before: SetupAccount reads the new one.
    events_.fSendMail_Progress("Connecting to SMTP server '" + server_ + "'");
    ctx_.log.AddAction("Connecting to " + server_, "Connect", kModule);
    SetupAccount(account);
    poSendMail().Connect();
  });
}

void frmSendMailWrapperNew::Disconnect() {
  guardedStep(ctx_.log, "Disconnect", kModule, [&] { poSendMail().Disconnect(); });
}

void frmSendMailWrapperNew::CancelSend() {
  guardedStep(ctx_.log, "CancelSend", kModule, [&] {
    sending_ = false;
    sendingOneMessage_ = false;
    poSendMail().Disconnect();
  });
}

void frmSendMailWrapperNew::UploadSpooledMail() {
  guardedStep(ctx_.log, "UploadSpooledMail", kModule, [&] {
    if (sending_) {
      events_.fSendMail_Progress("Already sending mail.");
      return;
    }
    sendingOneMessage_ = false;
    outboxFiles_ = send::ListOutboxFiles(ctx_.folders.OutboxFolderPath);
    if (outboxFiles_.empty()) {
      events_.fSendmail_NoMailToSend();
      return;
    }
    sending_ = true;
    currentAccount_ = 0;
    NextAccount(-1);
  });
}

bool frmSendMailWrapperNew::AccountHasMail(int account) const { return send::AccountHasMail(outboxFiles_, account); }

void frmSendMailWrapperNew::NextAccount(int previousAccount) {
  if (outboxFiles_.empty()) {
    FinishSending();
    return;
  }
  currentAccount_ = previousAccount + 1;
  while (!AccountHasMail(currentAccount_)) {
    if (++currentAccount_ >= kAccountCount) {
      currentAccount_ = kNoMoreAccounts;
      break;
    }
  }
  if (currentAccount_ == kNoMoreAccounts) {
    FinishSending();
  } else {
    Connect(currentAccount_);
  }
}

void frmSendMailWrapperNew::FinishSending() {
  sending_ = false;
  events_.fSendmail_SendingFinished();
}

void frmSendMailWrapperNew::SendNextMessage() {
  if (sendingOneMessage_) return;
  currentFile_ = send::FirstFileOfAccount(outboxFiles_, currentAccount_);
  if (!AccountHasMail(currentAccount_) || currentFile_ == outboxFiles_.size()) {
    Disconnect();
    return;
  }
  const std::string& name = outboxFiles_[currentFile_];
  const message::clsMessage message = message::ReadMessageFull(ctx_.folders.OutboxFolderPath / name, ctx_.log);
  if (message.To_Email().empty()) {
    events_.fSendMail_Progress("The outbox file " + name + " is empty, unreadable or holds no recipient");
  }
  sendingOneMessage_ = true;
  SendSpooledMessage(message);
}

void frmSendMailWrapperNew::SendSpooledMessage(const message::clsMessage& message) {
  guardedStep(ctx_.log, "SendSpooledMessage", kModule, [&] {
    if (!connected_) {
      sendingOneMessage_ = false;
      events_.fSendMail_Progress("Can't send - not connected to server");
      return;
    }
    smtp::frmSendMailNew& mail = poSendMail();
    mail.setFrom(message::ExtractEmail(message.From));
    mail.setRecipient(message::ExtractEmail(message.To_Email()));
    mail.setInReplyTo(message.InReplyTo);
    std::string text = message.RawMessage();
    mail.setCcRecipient(send::AddressesOf(message.CC));
    mail.setBccRecipient(send::AddressesOf(message.BCC));
    if (!message.BCC.empty()) text = send::CutBccHeader(text);
    mail.setMessage(send::WireText(std::move(text)));
    mail.Send();
  });
}

void frmSendMailWrapperNew::poSendMail_Connected() {
  connected_ = true;
  guardedStep(ctx_.log, "poSendMail_Connected", kModule, [&] { SendNextMessage(); });
}

void frmSendMailWrapperNew::poSendMail_ErrorConnecting() {
  Disconnect();
  connected_ = false;
  sending_ = false;
  events_.fSendMail_Failed("Unable to connect to server");
}

void frmSendMailWrapperNew::poSendMail_Disconnected() {
  // After a cancel or a stop the walk ends here instead of going on to the next account.
  if (!sending_) return;
  guardedStep(ctx_.log, "poSendMail_Disconnected", kModule, [&] {
    if (outboxFiles_.empty()) {
      FinishSending();
    } else {
      NextAccount(currentAccount_);
    }
  });
}

void frmSendMailWrapperNew::poSendMail_SendSuccessful() {
  guardedStep(ctx_.log, "poSendMail_SendSuccessful", kModule, [&] {
    // Only a message of the upload has an outbox file to move; a direct send has none.
    if (!sendingOneMessage_ || currentFile_ >= outboxFiles_.size()) return;
    const std::string name = outboxFiles_[currentFile_];
    const send::SentMessage sent = send::MoveToSentItems(ctx_.folders.OutboxFolderPath, ctx_.folders.SentFolderPath,
                                                         name, ctx_.log, ctx_.clock);
    sendingOneMessage_ = false;
    if (!sent.filed) {
      // Sent but not filed: stop, so that a full disk doesn't turn every
      // further message into one that goes out again at the next upload.
      sending_ = false;
      events_.fSendMail_Failed("Sent " + sent.subject + " to " + sent.recipient +
                               ", but it could not be saved in Sent Items and stays in the outbox");
      Disconnect();
      return;
    }
    outboxFiles_.erase(outboxFiles_.begin() + static_cast<std::ptrdiff_t>(currentFile_));
    events_.fSendMail_Progress("Sent " + sent.subject + " to " + sent.recipient);
    if (outboxFiles_.empty()) {
      Disconnect();
    } else {
      SendNextMessage();
    }
  });
}

void frmSendMailWrapperNew::poSendMail_SendFailed(const std::string& text) {
  events_.fSendMail_Progress(text);
  sendingOneMessage_ = false;
  sending_ = false;
  events_.fSendMail_Failed(text);
}

void frmSendMailWrapperNew::poSendMail_Status(const std::string& text) { events_.fSendMail_Progress(text); }

void frmSendMailWrapperNew::poSendMail_Progress(int percentage) {
  events_.fSendMail_Progress("Sending Mail: " + std::to_string(percentage) + "%");
}

}  // namespace vonel
