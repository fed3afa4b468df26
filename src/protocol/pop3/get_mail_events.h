#pragma once
// The events of a POP3 session, raised to its owner. Every one has an empty
// default, so an owner overrides only what it handles.
#include <string>

#include "core/message/message.h"

namespace vonel::pop3 {

class GetMailEvents {
 public:
  virtual ~GetMailEvents() = default;
  virtual void HeaderReceived(message::clsMessage&) {}
  // False when the message could not be kept: it then stays on the server.
  virtual bool MessageReceived(message::clsMessage&) { return true; }
  virtual void SpecificMessage(message::clsMessage&) {}
  virtual void Progress(const std::string&) {}
  virtual void NumberMessagesFound(const std::string& /*title*/, long /*count*/) {}
  virtual void POPError(const std::string& /*title*/, const std::string& /*text*/) {}
  virtual void DoingServer(const std::string& /*title*/) {}
  virtual void TimedOut(const std::string& /*title*/, int /*seconds*/) {}
  virtual void Finished(const std::string& /*title*/, long /*count*/) {}
  virtual void Cancelled(const std::string& /*title*/) {}
  virtual void NoMailServer() {}
  virtual void DeletedSpam(int /*count*/) {}
  virtual void NoMail(const std::string& /*title*/) {}
  virtual void NoConnection() {}
  // The session's window: its caption and its progress bar.
  virtual void Caption(const std::string&) {}
  virtual void ProgressBar(long /*value*/, long /*maximum*/) {}
};

}  // namespace vonel::pop3
