#include "core/send/bounce_notice.h"

#include "core/message/address.h"
#include "core/settings/accounts.h"
#include "core/text/strings.h"

namespace vonel::send {
namespace {

std::string withoutAngles(std::string_view text) {
  return text::replaceAll(text::replaceAll(text, "<", ""), ">", "");
}

std::string textBefore(std::string_view text, char stop) {
  const auto at = text.find(stop);
  return std::string(at == std::string_view::npos ? text : text.substr(0, at));
}

// The address the message came to, as the failing server would name it.
std::string bouncedAddress(const SettingsStore& settings, const message::Message& original) {
  std::string address = text::trim(original.xEnvelopeTo);
  if (address.empty()) address = original.toEmail();
  if (address.empty()) address = readAccount(settings, original.fromAccount, AccountReader::Session).replyAddress;
  address = textBefore(textBefore(withoutAngles(address), ' '), ',');
  return message::extractEmail(address);
}

// The original's headers as the copy below the notice shows them: no
// Delivered-To lines, which would loop the notice back, and no read mark.
std::string quotedHeaders(std::string headers) {
  for (auto at = headers.find("Delivered-To:"); at != std::string::npos; at = headers.find("Delivered-To:")) {
    const auto end = headers.find("\r\n", at);
    headers.erase(0, end == std::string::npos ? headers.size() : end + 2);
  }
  text::replaceAllInPlace(headers, "X-Message-Read: 1", "");
  return headers;
}

std::string senderOf(const message::Message& original) {
  for (const std::string* field : {&original.from, &original.replyTo, &original.sender, &original.returnPath}) {
    std::string address = message::extractEmail(*field);
    if (!address.empty()) return withoutAngles(address);
  }
  return {};
}

}  // namespace

std::optional<BounceNotice> bounceNotice(const SettingsStore& settings, const message::Message& original) {
  const std::string target = senderOf(original);
  if (target.empty()) return std::nullopt;
  const std::string subject = settings.get("BOUNCESUBJECT", Value("Failure Notice")).text();
  const std::string prefix = settings.get("BOUNCEPREFIX", Value("MAILER-DAEMON@")).text();
  const std::string bounced = bouncedAddress(settings, original);
  const auto at = bounced.find('@');
  const std::string host = at == std::string::npos ? std::string() : text::replaceAll(bounced.substr(at + 1), ">", "");

  BounceNotice notice;
  notice.sender = prefix + host;
  message::Message& reply = notice.message;
  reply.from = reply.sender = reply.returnPath = reply.replyTo = notice.sender;
  reply.subject = subject;
  reply.setToEmail(target);
  reply.fromAccount = original.fromAccount;
  reply.setMessageBody("Hi. This is the qmail-send program at " + host + ".\r\n" +
                       "I'm afraid I wasn't able to deliver your message to the following addresses.\r\n" +
                       "This is a permanent error; I've given up. Sorry it didn't work out.\r\n\r\n" + "<" +
                       bounced + ">:\r\n" + "Sorry, no mailbox here by that name. (#5.1.1)\r\n\r\n" +
                       "--- Below this line is a copy of the message.\r\n\r\n" + quotedHeaders(original.headers) +
                       "\r\n");
  return notice;
}

bool bounceMessage(const SettingsStore& settings, MessageSpooler& spooler, const message::Message& original) {
  auto notice = bounceNotice(settings, original);
  if (!notice) return false;
  spooler.spoolMessage(notice->message, notice->sender, notice->sender);
  return true;
}

}  // namespace vonel::send
