#pragma once
// What the folder cache keeps of one message: the fields its file holds and
// nothing more, so that a folder of 50,000 messages stays small in memory.
#include <string>

#include "core/message/message.h"
#include "core/text/dates.h"

namespace vonel::store {

struct CachedMessage {
  std::string Filename;  // the path as stored; its name's case is not the read state
  float Size = 0.0f;
  float Bayes = 0.0f;
  text::DateTime FileDate;
  std::string SendDate;
  std::string ReceiveDate;
  std::string From;
  std::string To_Email;
  std::string MessageID;
  std::string Tags;
  std::string Subject;
  bool Read = false;
  bool Replied = false;
  bool HighPriority = false;
  bool HasAttachment = false;

  static CachedMessage from(const message::clsMessage& message);
  // A header-only message with the kept fields filled in.
  message::clsMessage toMessage() const;
  // The path with the name in the case of the read state, as a message gives it.
  std::string PathInReadCase() const { return message::PathInReadCase(Filename, Read); }
};

// The name part of a path: the cache's key for a message, compared ignoring case.
std::string MessageKey(std::string_view path);

}  // namespace vonel::store
