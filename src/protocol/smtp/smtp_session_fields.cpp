#include "protocol/smtp/smtp_session.h"

#include <cstdlib>

#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/send/data_text.h"
#include "core/send/mail_size.h"
#include "core/send/message_id.h"
#include "core/send/spool_writer.h"
#include "core/settings/accounts.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"

namespace vonel::smtp {
namespace {

constexpr const char* kInvalidPort = "Invalid Remote Port";
constexpr const char* kMissingAttachment = "The file you tried to attach does not exist";

std::int32_t wholeSetting(SettingsStore& settings, std::string_view key, double fallback) {
  return text::toWhole<std::int32_t>(settings.get(key, Value(fallback)).numberOr(fallback));
}

// The last piece of a path; both separators count, since paths come from
// either kind of system.
std::string lastPathPiece(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return text::trim(slash == std::string::npos ? path : path.substr(slash + 1));
}

}  // namespace

SmtpSession::SmtpSession(AppContext& context, SmtpLink& link, SmtpListener& listener, int standardBiasMinutes)
    : context_(context), link_(link), listener_(listener), standardBiasMinutes_(standardBiasMinutes) {}

SmtpSession::~SmtpSession() {
  if (link_.state() != SocketState::Closed) link_.close();
}

void SmtpSession::initialise(std::int16_t account) {
  SettingsStore& settings = context_.settings;
  const auto text = [&](std::string_view name) { return settings.get(accountKey(name, account), Value("")).text(); };
  mail_ = send::MailFields{};
  mail_.from = text("ReplyAddress");
  accountAddress_ = mail_.from;
  mail_.fromDisplayName = text("DisplayName");
  mail_.username = text("Uname");
  mail_.useAuthentication = settings.get("UseAuthentication", Value(false)).flag();
  mail_.encodeType = static_cast<send::EncodeType>(wholeSetting(settings, "EncodeType", 0));
  smtpHost_ = text("SMTP");
  smtpPort_ = wholeSetting(settings, "RemotePort", 25);
  // The account's port, or the one its security takes, unless RemotePort overrides both.
  if (smtpPort_ == 25) smtpPort_ = readAccount(settings, account, AccountReader::Session).smtpPort;
  connectTimeout_ = wholeSetting(settings, "ConnectTimeout", 10);
  connectRetry_ = wholeSetting(settings, "ConnectRetry", 3);
  messageTimeout_ = wholeSetting(settings, "MessageTimeout", 60);
  persistentSettings_ = false;
  delimiter_ = ";";
  timeZone_ = timeZoneText(standardBiasMinutes_);
  initialised_ = true;
}

void SmtpSession::setSmtpPort(std::int32_t value) {
  if (value < 1 || value > 65535) {
    addError(kInvalidPort);
    return;
  }
  smtpPort_ = value;
  context_.settings.set("RemotePort", value);
  errors_.remove(kInvalidPort);
}

void SmtpSession::setConnectTimeout(std::int32_t value) {
  if (value < 1 || value > 120) return;
  connectTimeout_ = value;
  context_.settings.set("ConnectTimeout", value);
}

void SmtpSession::setConnectRetry(std::int32_t value) {
  if (value < 1 || value > 20) return;
  connectRetry_ = value;
  context_.settings.set("ConnectRetry", value);
}

void SmtpSession::setMessageTimeout(std::int32_t value) { messageTimeout_ = std::abs(value); }

void SmtpSession::setEncodeType(send::EncodeType value) {
  mail_.encodeType = value;
  context_.settings.set("EncodeType", static_cast<std::int32_t>(value));
}

void SmtpSession::setUseAuthentication(bool value) {
  mail_.useAuthentication = value;
  context_.settings.set("UseAuthentication", value);
}

void SmtpSession::setPersistentSettings(bool value) {
  persistentSettings_ = value;
  context_.settings.set("DefaultsSet", value);
}

// Only the highest, normal and lowest priorities have a word; the others keep the word before.
void SmtpSession::setPriority(send::Priority value) {
  mail_.priority = value;
  if (value == send::Priority::Highest) mail_.priorityWord = "High";
  if (value == send::Priority::Normal) mail_.priorityWord = "Normal";
  if (value == send::Priority::Lowest) mail_.priorityWord = "Low";
}

std::vector<std::string> SmtpSession::splitList(std::string_view value) const {
  if (value.empty()) return {};
  if (delimiter_.empty()) return {std::string(value)};
  return text::split(value, delimiter_);
}

void SmtpSession::setAttachment(std::string_view value) {
  mail_.attachmentPaths = splitList(value);
  mail_.attachmentNames = mail_.attachmentPaths;
  mail_.attachmentNameBytes = 0;
  mail_.attachmentFileBytes = 0;
  errors_.remove(kMissingAttachment);
  for (std::size_t i = 0; i < mail_.attachmentPaths.size(); ++i) {
    std::string& path = mail_.attachmentPaths[i];
    path = text::trim(path);
    const auto size = path.empty() ? std::nullopt : files::fileSize(files::pathFromText(path));
    if (!size || !files::fileExists(files::pathFromText(path))) {
      addError(kMissingAttachment);
      return;
    }
    mail_.attachmentNames[i] = lastPathPiece(path);
    mail_.attachmentFileBytes += static_cast<std::int64_t>(*size);
    mail_.attachmentNameBytes += static_cast<std::int64_t>(mail_.attachmentNames[i].size());
  }
}

void SmtpSession::setMessage(std::string_view value) {
  mail_.message = send::cutLongLines(value);
  mail_.eightBit = send::hasEightBit(mail_.message);
}

void SmtpSession::setContentBase(std::string_view value) {
  if (value.empty()) {
    mail_.contentBase.clear();
    return;
  }
  std::string base = text::replaceAll(value, "\\", "/");
  if (text::findNoCase(base, "http://") == 0) base = "http://" + base;
  if (!base.ends_with('/')) base += '/';
  mail_.contentBase = base;
}

void SmtpSession::addError(std::string_view text) {
  context_.log.addDebug(text, log_places::kAddError, kModule);
  errors_.add(text);
}

void SmtpSession::reportFailure() {
  link_.setTimer(false);
  const std::string all = errors_.joined();
  if (link_.state() != SocketState::Closed) link_.close();
  failed_ = true;
  context_.log.addAction(all, log_places::kSendFail, kModule);
  errors_.clear();
  listener_.onSendFailed(all);
}

void SmtpSession::checkRecipients() {
  for (const char* problem : send::recipientProblems(mail_)) addError(problem);
}

bool SmtpSession::spoolToFile(const std::filesystem::path& file) {
  if (mail_.asHtml && mail_.encodeType == send::EncodeType::UUEncode) addError("Sending HTML requires MIME encoding");
  checkRecipients();
  if (!errors_.empty()) {
    reportFailure();
    return false;
  }
  bytesToSend_ = send::estimateMailSize(mail_);
  if (mail_.messageId.empty()) {
    mail_.messageId = send::newMessageId(accountAddress_.empty() ? mail_.from : accountAddress_, context_.clock.now());
  }
  try {
    send::writeSpoolFile(file, mail_, context_.clock.now(), context_.log.info().version, context_.writes);
    return true;
  } catch (const send::AttachmentFailed& error) {
    logFailure(context_.log, error, log_places::kEncodeAndSendFile, kModule);
    addError(error.description());
  } catch (...) {
    // A file that can't be written at all, or not to its end: nothing is left behind.
    logFailure(context_.log, AppError::from(std::current_exception()), log_places::kSpoolToFile, kModule);
    addError("Unable to spool message. Disk full/error?");
  }
  reportFailure();
  return false;
}

}  // namespace vonel::smtp
