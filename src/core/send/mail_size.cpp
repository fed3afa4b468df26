#include "core/send/mail_size.h"

namespace vonel::send {
namespace {

std::int64_t len(const std::string& s) { return static_cast<std::int64_t>(s.size()); }

std::int64_t addressesSize(const std::vector<std::string>& addresses, std::int64_t perAddress, int lengthFactor) {
  std::int64_t size = 0;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    size += perAddress + lengthFactor * len(addresses[i]);
    if (i > 0) size += 6;
  }
  return size;
}

std::int64_t namesSize(const std::vector<std::string>& names) {
  std::int64_t size = 0;
  for (const auto& name : names) size += 11 + len(name);
  return size;
}

std::int64_t credentialSize(const std::string& credential) {
  return credential.empty() ? 0 : len(credential) * 4 / 3;
}

}  // namespace

std::int64_t estimateMailSize(const MailFields& mail) {
  std::int64_t size = len(mail.from) + 93;
  if (mail.useAuthentication) size += 25 + len(mail.from) + credentialSize(mail.username) + credentialSize(mail.password);
  size += addressesSize(mail.recipient, 15, 2) + addressesSize(mail.ccRecipient, 15, 2);
  size += namesSize(mail.recipientDisplayName) + namesSize(mail.ccDisplayName);
  size += addressesSize(mail.bccRecipient, 15, 1);
  if (!mail.fromDisplayName.empty()) size += len(mail.fromDisplayName) + 3;
  size += len(mail.from);
  if (!mail.replyToAddress.empty()) size += len(mail.replyToAddress) + 14;
  size += len(mail.subject) + len(mail.message);
  const std::int64_t fileBytes = mail.attachmentFileBytes;
  const bool attachments = !mail.attachmentPaths.empty();
  if (mail.encodeType == EncodeType::Mime) {
    size += 64;
    if (!mail.contentBase.empty() && mail.asHtml) size += 18 + len(mail.contentBase);
    if (mail.receipt) size += 36 + len(mail.fromDisplayName) + len(mail.from);
    if (attachments) {
      size += fileBytes * 4 / 3 + 42 + fileBytes / 57 * 2 + mail.attachmentNameBytes * 2 +
              182 * static_cast<std::int64_t>(mail.attachmentPaths.size()) + 290;
    }
  } else if (attachments) {
    size += fileBytes * 4 / 3 + fileBytes / 45 * 3 + mail.attachmentNameBytes +
            20 * static_cast<std::int64_t>(mail.attachmentPaths.size());
  }
  return size;
}

}  // namespace vonel::send
