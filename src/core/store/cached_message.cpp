#include "core/store/cached_message.h"

namespace vonel::store {

CachedMessage CachedMessage::from(const message::clsMessage& m) {
  CachedMessage c;
  c.Filename = m.Filename();
  c.Size = m.Size;
  c.Bayes = m.Bayes;
  c.FileDate = m.FileDate;
  c.SendDate = m.SendDate;
  c.ReceiveDate = m.ReceiveDate;
  c.From = m.From;
  c.To_Email = m.To_Email();
  c.MessageID = m.MessageID;
  c.Tags = m.Tags();
  c.Subject = m.Subject;
  c.Read = m.Read;
  c.Replied = m.Replied;
  c.HighPriority = m.HighPriority;
  c.HasAttachment = m.HasAttachment;
  return c;
}

message::clsMessage CachedMessage::toMessage() const {
  message::clsMessage m;
  m.HeaderOnly = true;
  m.setFilename(Filename);
  m.Size = Size;
  m.Bayes = Bayes;
  m.FileDate = FileDate;
  m.SendDate = SendDate;
  m.ReceiveDate = ReceiveDate;
  m.From = From;
  m.setTo_Email(To_Email);
  m.MessageID = MessageID;
  m.setTags(Tags);
  m.Subject = Subject;
  m.Read = Read;
  m.Replied = Replied;
  m.HighPriority = HighPriority;
  m.HasAttachment = HasAttachment;
  return m;
}

std::string MessageKey(std::string_view path) {
  const std::size_t nameStart = path.find_last_of("\\/") + 1;  // npos + 1 is 0
  return std::string(path.substr(nameStart));
}

}  // namespace vonel::store
