#include "core/store/cached_message.h"

namespace vonel::store {

CachedMessage CachedMessage::of(const message::Message& m) {
  CachedMessage c;
  c.filename = m.filename();
  c.size = m.size;
  c.bayes = m.bayes;
  c.fileDate = m.fileDate;
  c.sendDate = m.sendDate;
  c.receiveDate = m.receiveDate;
  c.from = m.from;
  c.toEmail = m.toEmail();
  c.messageId = m.messageId;
  c.tags = m.tags();
  c.subject = m.subject;
  c.read = m.read;
  c.replied = m.replied;
  c.highPriority = m.highPriority;
  c.hasAttachment = m.hasAttachment;
  return c;
}

message::Message CachedMessage::toMessage() const {
  message::Message m;
  m.headerOnly = true;
  m.setFilename(filename);
  m.size = size;
  m.bayes = bayes;
  m.fileDate = fileDate;
  m.sendDate = sendDate;
  m.receiveDate = receiveDate;
  m.from = from;
  m.setToEmail(toEmail);
  m.messageId = messageId;
  m.setTags(tags);
  m.subject = subject;
  m.read = read;
  m.replied = replied;
  m.highPriority = highPriority;
  m.hasAttachment = hasAttachment;
  return m;
}

std::string messageKey(std::string_view path) { return std::string(messageName(path)); }

std::string_view messageName(std::string_view path) {
  const std::size_t nameStart = path.find_last_of("\\/") + 1;  // npos + 1 is 0
  return path.substr(nameStart);
}

}  // namespace vonel::store
