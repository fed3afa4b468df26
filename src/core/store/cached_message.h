#pragma once
// What the folder cache keeps of one message: the fields its file holds and
// nothing more, so that a folder of 50,000 messages stays small in memory.
#include <string>

#include "core/message/message.h"
#include "core/text/dates.h"

namespace vonel::store {

struct CachedMessage {
  std::string filename;  // the path as stored; its name's case is not the read state
  float size = 0.0f;
  float bayes = 0.0f;
  text::DateTime fileDate;
  std::string sendDate;
  std::string receiveDate;
  std::string from;
  std::string toEmail;
  std::string messageId;
  std::string tags;
  std::string subject;
  bool read = false;
  bool replied = false;
  bool highPriority = false;
  bool hasAttachment = false;

  static CachedMessage of(const message::Message& message);
  // A header-only message with the kept fields filled in.
  message::Message toMessage() const;
  // The path with the name in the case of the read state, as a message gives it.
  std::string pathInReadCase() const { return message::pathInReadCase(filename, read); }
};

// The name part of a path: the cache's key for a message, compared ignoring case.
std::string messageKey(std::string_view path);
// The same, as a view into the path.
std::string_view messageName(std::string_view path);

}  // namespace vonel::store
