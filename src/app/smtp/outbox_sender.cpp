#include "app/smtp/outbox_sender.h"

#include "app/qtext.h"
#include "core/log/log_places.h"
#include "core/message/address.h"
#include "core/message/message_file.h"
#include "core/send/outbox.h"
#include "core/send/spooled_text.h"
#include "core/settings/accounts.h"
#include "core/text/numbers.h"

namespace vonel {

namespace {

constexpr std::string_view kModule = log_places::kOutboxModule;

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

OutboxSender::OutboxSender(AppContext& context, OutboxListener& events)
    : ctx_(context), events_(events), connection_(context) {
  QObject::connect(&connection_, &SmtpConnection::connected, &connection_, [this] { onSmtpConnected(); });
  QObject::connect(&connection_, &SmtpConnection::errorConnecting, &connection_,
                   [this] { onSmtpErrorConnecting(); });
  QObject::connect(&connection_, &SmtpConnection::disconnected, &connection_, [this] { onSmtpDisconnected(); });
  QObject::connect(&connection_, &SmtpConnection::sendSuccessful, &connection_,
                   [this] { onSmtpSendSuccessful(); });
  QObject::connect(&connection_, &SmtpConnection::sendFailed, &connection_,
                   [this](const QString& text) { onSmtpSendFailed(fromQString(text)); });
  QObject::connect(&connection_, &SmtpConnection::messageRefused, &connection_,
                   [this](const QString& reply) { onSmtpMessageRefused(fromQString(reply)); });
  QObject::connect(&connection_, &SmtpConnection::status, &connection_,
                   [this](const QString& text) { onSmtpStatus(fromQString(text)); });
  QObject::connect(&connection_, &SmtpConnection::progress, &connection_,
                   [this](int percentage) { onSmtpProgress(percentage); });
  QObject::connect(&connection_.channel(), &SecureChannel::certificateUntrusted, &connection_,
                   [this](const UntrustedCertificate& certificate) { events_.onCertificateUntrusted(certificate); });
}

void OutboxSender::spoolMessage(message::Message& message, const std::string& fromOverride,
                                const std::string& nameOverride) {
  spoolOrSend(message, true, fromOverride, nameOverride);
}

std::filesystem::path OutboxSender::freeOutboxPath(int account) {
  int& next = nextCounter_[account];
  const int counter = send::freeOutboxCounter(ctx_.folders.outboxFolderPath, account, next);
  next = counter + 1;
  return ctx_.folders.outboxFolderPath / send::outboxFileName(account, counter);
}

void OutboxSender::spoolOrSend(message::Message& message, bool spoolOnly, const std::string& fromOverride,
                               const std::string& nameOverride) {
  guardedStep(ctx_.log, log_places::kSendmail, kModule, [&] {
    smtp::SmtpSession& mail = session();
    mail.initialise(message.fromAccount);
    message.from = message::extractEmail(message.from);
    message.setToEmail(message.toEmail());
    mail.setAttachment(attachmentList(message.attachmentNames()));
    const std::filesystem::path file = freeOutboxPath(message.fromAccount);
    mail.setRecipient(message::extractEmail(message.toEmail()));
    mail.setRecipientDisplayName(message::extractName(message.toEmail()));
    mail.setSubject(message.subject);
    mail.setMessage(message.messageBody());
    const send::AddressList cc = send::splitAddressList(message.cc);
    mail.setCcRecipient(cc.addresses);
    mail.setCcDisplayName(cc.names);
    mail.setBccRecipient(send::splitAddressList(message.bcc).addresses);
    if (!fromOverride.empty()) mail.setFrom(fromOverride);
    if (!nameOverride.empty()) mail.setFromDisplayName(nameOverride);
    mail.setMessageId(message.messageId);
    if (mail.spoolToFile(file)) {
      message.messageId = mail.messageId();
      // A note left by a deleted message of the same name isn't this one's.
      send::clearRefusalNote(ctx_.folders.outboxFolderPath, file.filename().string());
    }
    if (!spoolOnly) {
      connection_.useAccount(message.fromAccount);
      connection_.sendMessage();
    }
  });
}

void OutboxSender::configureSession(int account) {
  smtp::SmtpSession& mail = session();
  mail.initialise(static_cast<std::int16_t>(account));
  connection_.useAccount(account);
  const Account settings = readAccount(ctx_.settings, account, AccountReader::Session);
  server_ = settings.smtp;
  ctx_.log.addAction("Using server: " + server_, log_places::kSetupAccount, kModule);
  if (server_.empty()) {
    ctx_.log.addAction("Error, server not defined. Sendmail cancelled.", log_places::kSetupAccount, kModule);
    const std::string text = "Please specify SMTP server #" + std::to_string(account + 1) + " in the settings";
    ctx_.prompt.ask(text, Buttons::Ok, "Vonel");
    events_.onSendFailed(text);
    return;
  }
  const double timeout = ctx_.settings.get("MailTimeout", Value(30)).numberOr(30);
  mail.setConnectTimeout(text::toWhole<std::int32_t>(timeout));
  mail.setSmtpHost(server_);
  userName_ = settings.smtpAuth ? settings.smtpUserName : std::string();
  password_ = settings.smtpAuth ? settings.smtpPassword : std::string();
  if (password_.empty()) {
    ctx_.log.addAction("No password required", log_places::kSetupAccount, kModule);
    mail.setUseAuthentication(false);
  } else {
    ctx_.log.addAction("Using SMTP authorisation", log_places::kSetupAccount, kModule);
    mail.setUseAuthentication(true);
    mail.setUsername(userName_);
    mail.setPassword(password_);
  }
  mail.setDelimiter(";");
}

void OutboxSender::connectAccount(int account) {
  guardedStep(ctx_.log, log_places::kConnect, kModule, [&] {
    connected_ = false;
    // Both name the server of the account before: configureSession reads the new one.
    events_.onSendProgress("Connecting to SMTP server '" + server_ + "'");
    ctx_.log.addAction("Connecting to " + server_, log_places::kConnect, kModule);
    configureSession(account);
    ctx_.writes.open();
    connection_.openSession();
  });
}

void OutboxSender::disconnect() {
  commitFiledMessages();
  guardedStep(ctx_.log, log_places::kDisconnect, kModule, [&] { connection_.closeSession(); });
}

// The Sent Items copies and outbox deletions of the connection reach the disk
// together before its QUIT; when they can't, the upload stops there.
void OutboxSender::commitFiledMessages() {
  try {
    ctx_.writes.commit();
  } catch (const AppError& error) {
    logFailure(ctx_.log, error, log_places::kDisconnect, kModule);
    sending_ = false;
    events_.onSendFailed(error.description());
  }
}

void OutboxSender::cancelSend() {
  guardedStep(ctx_.log, log_places::kCancelSend, kModule, [&] {
    sending_ = false;
    sendingOneMessage_ = false;
    commitFiledMessages();
    connection_.closeSession();
  });
}

void OutboxSender::sendOutbox() {
  guardedStep(ctx_.log, log_places::kUploadSpooledMail, kModule, [&] {
    if (sending_) {
      events_.onSendProgress("Already sending mail.");
      return;
    }
    sendingOneMessage_ = false;
    outboxFiles_ = send::listOutboxFiles(ctx_.folders.outboxFolderPath);
    if (outboxFiles_.empty()) {
      events_.onNoMailToSend();
      return;
    }
    sending_ = true;
    connectNextAccount(-1);
  });
}

bool OutboxSender::accountHasMail(int account) const { return send::accountHasMail(outboxFiles_, account); }

// The account right after the previous one is tried even past the last of
// the kAccountCount accounts, so a file with those digits ("20_...") still
// goes out; no account beyond it is looked at.
std::optional<int> OutboxSender::nextAccountWithMail(int previousAccount) const {
  int account = previousAccount + 1;
  while (!accountHasMail(account)) {
    if (++account >= kAccountCount) return std::nullopt;
  }
  return account;
}

void OutboxSender::connectNextAccount(int previousAccount) {
  if (outboxFiles_.empty()) {
    finishSending();
    return;
  }
  currentAccount_ = nextAccountWithMail(previousAccount);
  if (currentAccount_) {
    connectAccount(*currentAccount_);
  } else {
    finishSending();
  }
}

void OutboxSender::finishSending() {
  sending_ = false;
  events_.onSendingFinished();
}

void OutboxSender::sendNextMessage() {
  if (sendingOneMessage_) return;
  currentFile_ = currentAccount_ ? send::firstFileOfAccount(outboxFiles_, *currentAccount_) : outboxFiles_.size();
  if (!currentAccount_ || !accountHasMail(*currentAccount_) || currentFile_ == outboxFiles_.size()) {
    disconnect();
    return;
  }
  const std::string& name = outboxFiles_[currentFile_];
  const send::OutboxMessage spooled = send::readOutboxMessage(ctx_.folders.outboxFolderPath / name, ctx_.log);
  if (spooled.fields.toEmail().empty()) {
    events_.onSendProgress("The outbox file " + name + " is empty, unreadable or holds no recipient");
  }
  sendingOneMessage_ = true;
  sendOutboxMessage(spooled);
}

void OutboxSender::sendOutboxMessage(const send::OutboxMessage& spooled) {
  guardedStep(ctx_.log, log_places::kSendSpooledMessage, kModule, [&] {
    if (!connected_) {
      sendingOneMessage_ = false;
      events_.onSendProgress("Can't send - not connected to server");
      return;
    }
    const message::Message& message = spooled.fields;
    smtp::SmtpSession& mail = session();
    mail.setFrom(message::extractEmail(message.from));
    mail.setRecipient(message::extractEmail(message.toEmail()));
    mail.setInReplyTo(message.inReplyTo);
    std::string text = send::withoutStoreHeaders(spooled.text);
    mail.setCcRecipient(send::addressesOf(message.cc));
    mail.setBccRecipient(send::addressesOf(message.bcc));
    if (!message.bcc.empty()) text = send::cutBccHeader(text);
    mail.setMessage(send::wireText(std::move(text)));
    connection_.sendMessage();
  });
}

void OutboxSender::onSmtpConnected() {
  connected_ = true;
  afterRefusal_ = false;
  guardedStep(ctx_.log, log_places::kPoSendMailConnected, kModule, [&] { sendNextMessage(); });
}

void OutboxSender::onSmtpErrorConnecting() {
  disconnect();
  connected_ = false;
  sending_ = false;
  events_.onSendFailed("Unable to connect to server");
}

void OutboxSender::onSmtpDisconnected() {
  // After a cancel or a stop the walk ends here instead of going on to the next account.
  if (!sending_) return;
  guardedStep(ctx_.log, log_places::kPoSendMailDisconnected, kModule, [&] {
    if (outboxFiles_.empty() || !currentAccount_) {
      finishSending();
    } else {
      connectNextAccount(*currentAccount_);
    }
  });
}

void OutboxSender::onSmtpSendSuccessful() {
  guardedStep(ctx_.log, log_places::kPoSendMailSendSuccessful, kModule, [&] {
    // Only a message of the upload has an outbox file to move; a direct send has none.
    if (!sendingOneMessage_ || currentFile_ >= outboxFiles_.size()) return;
    const std::string name = outboxFiles_[currentFile_];
    const send::SentMessage sent = send::moveToSentItems(ctx_.folders.outboxFolderPath, ctx_.folders.sentFolderPath,
                                                         name, ctx_.log, ctx_.clock, ctx_.writes);
    sendingOneMessage_ = false;
    if (!sent.filed) {
      // Sent but not filed: stop, so that a full disk doesn't turn every
      // further message into one that goes out again at the next upload.
      sending_ = false;
      events_.onSendFailed("Sent " + sent.subject + " to " + sent.recipient +
                               ", but it could not be saved in Sent Items and stays in the outbox");
      disconnect();
      return;
    }
    outboxFiles_.erase(outboxFiles_.begin() + static_cast<std::ptrdiff_t>(currentFile_));
    events_.onSendProgress("Sent " + sent.subject + " to " + sent.recipient);
    if (outboxFiles_.empty()) {
      disconnect();
    } else {
      sendNextMessage();
    }
  });
}

// The refused file stays, with the reply beside it, and drops out of this
// upload; the session resets the connection for the next message.
void OutboxSender::onSmtpMessageRefused(const std::string& reply) {
  sendingOneMessage_ = false;
  afterRefusal_ = true;
  guardedStep(ctx_.log, log_places::kPoSendMailMessageRefused, kModule, [&] {
    if (currentFile_ >= outboxFiles_.size()) return;
    const std::string name = outboxFiles_[currentFile_];
    outboxFiles_.erase(outboxFiles_.begin() + static_cast<std::ptrdiff_t>(currentFile_));
    const message::Message message = message::readMessageHeader(ctx_.folders.outboxFolderPath / name, ctx_.log);
    const std::string text = "Refused " + name + " (\"" + message.subject + "\" to " +
                             message::extractEmail(message.toEmail()) + "): " + reply + "; it stays in the outbox";
    events_.onSendProgress(text);
    events_.onSendFailed(text);
    send::writeRefusalNote(ctx_.folders.outboxFolderPath, name, reply);
  });
}

void OutboxSender::onSmtpSendFailed(const std::string& text) {
  events_.onSendProgress(text);
  sendingOneMessage_ = false;
  if (afterRefusal_ && sending_ && currentAccount_) {
    // The connection didn't survive the refusal: the next message takes a new one.
    afterRefusal_ = false;
    guardedStep(ctx_.log, log_places::kPoSendMailSendFailed, kModule, [&] {
      if (accountHasMail(*currentAccount_)) {
        connectAccount(*currentAccount_);
      } else {
        connectNextAccount(*currentAccount_);
      }
    });
    return;
  }
  sending_ = false;
  events_.onSendFailed(text);
}

void OutboxSender::onSmtpStatus(const std::string& text) { events_.onSendProgress(text); }

void OutboxSender::onSmtpProgress(int percentage) {
  events_.onSendProgress("Sending Mail: " + std::to_string(percentage) + "%");
}

}  // namespace vonel
