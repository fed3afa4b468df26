#pragma once
// The events of a POP3 session, raised to its owner. Every one has an empty
// default, so an owner overrides only what it handles.
#include <string>

#include "core/message/message.h"
#include "protocol/pop3/pop3_failure.h"

namespace vonel::pop3 {

class Pop3Listener {
 public:
  virtual ~Pop3Listener() = default;
  virtual void onHeaderReceived(message::Message&) {}
  // False when the message could not be kept: it then stays on the server.
  virtual bool onMessageReceived(message::Message&) { return true; }
  virtual void onSpecificMessage(message::Message&) {}
  // A header failed and its message is about to be deleted on the server,
  // once its trace is kept. False when it could not be: the message stays.
  virtual bool onScreenedDelete(message::Message&) { return true; }
  virtual void onProgress(const std::string&) {}
  virtual void onNumberMessagesFound(const std::string& /*title*/, long /*count*/) {}
  virtual void onPopError(const std::string& /*title*/, const std::string& /*text*/) {}
  virtual void onDoingServer(const std::string& /*title*/) {}
  virtual void onTimedOut(const std::string& /*title*/, int /*seconds*/) {}
  virtual void onFinished(const std::string& /*title*/, long /*count*/) {}
  virtual void onCancelled(const std::string& /*title*/) {}
  virtual void onNoMailServer() {}
  virtual void onDeletedSpam(int /*count*/) {}
  virtual void onNoMail(const std::string& /*title*/) {}
  virtual void onNoConnection() {}
  // Why the session did not go through; raised once per cause, before the
  // session ends, beside the documented events.
  virtual void onFailure(const Pop3Failure&) {}
  // The session's window: its caption and its progress bar.
  virtual void onCaption(const std::string&) {}
  virtual void onProgressBar(long /*value*/, long /*maximum*/) {}
};

}  // namespace vonel::pop3
