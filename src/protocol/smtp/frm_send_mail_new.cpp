#include "protocol/smtp/frm_send_mail_new.h"

#include <cstdlib>

#include "core/send/format_mail.h"
#include "core/send/mail_size.h"
#include "core/send/spool_writer.h"
#include "core/services/file_subs.h"
#include "core/settings/accounts.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/smtp/date_line.h"

namespace vonel::smtp {
namespace {

constexpr const char* kInvalidPort = "Invalid Remote Port";
constexpr const char* kMissingAttachment = "The file you tried to attach does not exist";

std::int32_t wholeSetting(cSHAREDSettings& settings, std::string_view key, double fallback) {
  return text::toWhole<std::int32_t>(settings.sGet(key, Value(fallback)).numberOr(fallback));
}

// The last piece of a path; both separators count, since paths come from
// either kind of system.
std::string lastPathPiece(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return text::trim(slash == std::string::npos ? path : path.substr(slash + 1));
}

}  // namespace

frmSendMailNew::frmSendMailNew(AppContext& context, Link& link, SendMailListener& listener, int standardBiasMinutes)
    : context_(context), link_(link), listener_(listener), standardBiasMinutes_(standardBiasMinutes) {}

frmSendMailNew::~frmSendMailNew() {
  if (link_.state() > kSocketClosed) link_.close();
}

void frmSendMailNew::Initialise(std::int16_t account) {
  cSHAREDSettings& settings = context_.Settings;
  const auto text = [&](std::string_view name) { return settings.sGet(accountKey(name, account), Value("")).text(); };
  mail_ = send::MailFields{};
  mail_.From = text("ReplyAddress");
  mail_.FromDisplayName = text("DisplayName");
  mail_.Username = text("Uname");
  mail_.UseAuthentication = settings.sGet("UseAuthentication", Value(false)).flag();
  mail_.encodeType = static_cast<send::EncodeType>(wholeSetting(settings, "EncodeType", 0));
  SMTPHost_ = text("SMTP");
  SMTPPort_ = wholeSetting(settings, "RemotePort", 25);
  if (SMTPPort_ == 25) SMTPPort_ = wholeSetting(settings, accountKey("SMTPPort", account), 25);
  ConnectTimeout_ = wholeSetting(settings, "ConnectTimeout", 10);
  ConnectRetry_ = wholeSetting(settings, "ConnectRetry", 3);
  MessageTimeout_ = wholeSetting(settings, "MessageTimeout", 60);
  PersistentSettings_ = false;
  Delimiter_ = ";";
  timeZone_ = timeZoneText(standardBiasMinutes_);
  initialised_ = true;
}

void frmSendMailNew::setSMTPPort(std::int32_t value) {
  if (value < 1 || value > 65535) {
    AddError(kInvalidPort);
    return;
  }
  SMTPPort_ = value;
  context_.Settings.sSet("RemotePort", value);
  errors_.remove(kInvalidPort);
}

void frmSendMailNew::setConnectTimeout(std::int32_t value) {
  if (value < 1 || value > 120) return;
  ConnectTimeout_ = value;
  context_.Settings.sSet("ConnectTimeout", value);
}

void frmSendMailNew::setConnectRetry(std::int32_t value) {
  if (value < 1 || value > 20) return;
  ConnectRetry_ = value;
  context_.Settings.sSet("ConnectRetry", value);
}

void frmSendMailNew::setMessageTimeout(std::int32_t value) { MessageTimeout_ = std::abs(value); }

void frmSendMailNew::setEncodeType(std::int32_t value) {
  mail_.encodeType = static_cast<send::EncodeType>(value);
  context_.Settings.sSet("EncodeType", value);
}

void frmSendMailNew::setUseAuthentication(bool value) {
  mail_.UseAuthentication = value;
  context_.Settings.sSet("UseAuthentication", value);
}

void frmSendMailNew::setPersistentSettings(bool value) {
  PersistentSettings_ = value;
  context_.Settings.sSet("DefaultsSet", value);
}

void frmSendMailNew::setPriority(std::int32_t value) {
  mail_.Priority = value;
  if (value == 1) mail_.priorityWord = "High";
  if (value == 3) mail_.priorityWord = "Normal";
  if (value == 5) mail_.priorityWord = "Low";
}

std::vector<std::string> frmSendMailNew::splitList(std::string_view value) const {
  if (value.empty()) return {};
  if (Delimiter_.empty()) return {std::string(value)};
  return text::split(value, Delimiter_);
}

void frmSendMailNew::setAttachment(std::string_view value) {
  mail_.attachmentPaths = splitList(value);
  mail_.attachmentNames = mail_.attachmentPaths;
  mail_.attachmentNameBytes = 0;
  mail_.attachmentFileBytes = 0;
  errors_.remove(kMissingAttachment);
  for (std::size_t i = 0; i < mail_.attachmentPaths.size(); ++i) {
    std::string& path = mail_.attachmentPaths[i];
    path = text::trim(path);
    const auto size = path.empty() ? std::nullopt : files::FileSize(files::PathFromText(path));
    if (!size || !files::FileExists(files::PathFromText(path))) {
      AddError(kMissingAttachment);
      return;
    }
    mail_.attachmentNames[i] = lastPathPiece(path);
    mail_.attachmentFileBytes += static_cast<std::int64_t>(*size);
    mail_.attachmentNameBytes += static_cast<std::int64_t>(mail_.attachmentNames[i].size());
  }
}

void frmSendMailNew::setMessage(std::string_view value) {
  mail_.Message = send::FormatMail(value);
  mail_.eightBit = send::hasEightBit(mail_.Message);
}

void frmSendMailNew::setContentBase(std::string_view value) {
  if (value.empty()) {
    mail_.ContentBase.clear();
    return;
  }
  std::string base = text::replaceAll(value, "\\", "/");
  if (text::findNoCase(base, "http://") == 0) base = "http://" + base;
  if (!base.ends_with('/')) base += '/';
  mail_.ContentBase = base;
}

void frmSendMailNew::AddError(std::string_view text) {
  context_.log.AddDebug(text, "AddError", kModule);
  errors_.add(text);
}

void frmSendMailNew::SendFail() {
  link_.setTimer(false);
  const std::string all = errors_.joined();
  if (link_.state() > kSocketClosed) link_.close();
  failed_ = true;
  context_.log.AddAction(all, "SendFail", kModule);
  errors_.clear();
  listener_.SendFailed(all);
}

void frmSendMailNew::checkRecipients() {
  if (mail_.Recipient.empty()) AddError(send::kNoRecipient);
  const std::size_t addresses = mail_.Recipient.size() + mail_.CcRecipient.size() + mail_.BccRecipient.size();
  if (addresses > send::kMaxRecipients) AddError(send::kTooManyRecipients);
}

bool frmSendMailNew::SpoolToFile(const std::filesystem::path& file) {
  if (mail_.AsHTML && mail_.encodeType == send::EncodeType::UUEncode) AddError("Sending HTML requires MIME encoding");
  checkRecipients();
  if (!errors_.empty()) {
    SendFail();
    return false;
  }
  bytesToSend_ = send::EstimateMailSize(mail_);
  try {
    send::writeSpoolFile(file, mail_, context_.clock.now(), context_.log.info().version);
    return true;
  } catch (const send::AttachmentFailed& error) {
    logFailure(context_.log, error, "EncodeAndSendFile", kModule);
    AddError(error.description());
  } catch (...) {
    // A file that can't be written at all, or not to its end: nothing is left behind.
    logFailure(context_.log, AppError::from(std::current_exception()), "SpoolToFile", kModule);
    AddError("Unable to spool message. Disk full/error?");
  }
  SendFail();
  return false;
}

}  // namespace vonel::smtp
