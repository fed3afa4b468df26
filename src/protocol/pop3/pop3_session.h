#pragma once
// The POP3 client: one session on one account at a time, driven wholly by the
// data that arrives. It walks the mailbox with "TOP n 1", has each header
// judged, and then deletes, lists or downloads the message. It knows no
// sockets and no windows: bytes come in, commands go out through the Link,
// and what it learns goes to its owner as events.
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/rules/message_check.h"
#include "core/context/app_context.h"
#include "core/settings/accounts.h"
#include "protocol/link.h"
#include "protocol/pop3/pop3_listener.h"

namespace vonel::pop3 {

enum class Mode { Headers = 1, Download = 2, OneMessage = 3, DeleteAll = 4 };

// The one reply record, reused for every reply.
struct Pop3Reply {
  long messageCount = 0;
  long currentMessage = 0;
  std::string replyBuffer;
  bool inMultiLine = false;
  long bytesReceived = 0;
  int fileHandle = 0;
  std::filesystem::path tempFileName;
  std::string packetTail;
};

class Pop3Session {
 public:
  Pop3Session(AppContext& context, protocol::Link& link, Pop3Listener& events, rules::MessageCheck& serverFilters,
             rules::MessageCheck& localFilters, PasswordPrompt& passwords);

  void getHeaders(int account, bool deleteSpam, bool force = false);
  void getMessages(int account, bool deleteSpam, bool force = false);
  void deleteAllMail(int account);
  void getSpecificMessage(int account, int number);
  void cancelMail();

  // From the connection: received bytes, split or joined anyhow; the
  // one-second tick; a socket error with its number.
  void onData(std::string_view bytes);
  void onTick();
  void onSocketError(int number, std::string_view description);

  int state() const { return state_; }
  const Pop3Reply& reply() const { return reply_; }

 private:
  void readSettings();
  void beginTransfer(int account, bool deleteSpam, bool force);
  bool takeUnit(std::string& unit);
  void dataArrival(const std::string& packet);
  void dispatch(const std::string& packet);
  void startSession();
  void onGreeting();
  void onListLines(const std::string& packet);
  void onStat(const std::string& packet);
  void onTopLines(const std::string& packet);
  void onRetrLines(const std::string& packet);
  void onRetrComplete();
  void onDeleteAllReply();
  void onQuitReply();
  void stepRule(bool withLog);
  void errorPath(const std::string& packet);
  void cleanupAndExit();
  void closeTempFile(bool erase);
  void send(const std::string& command);
  void setState(int state) { state_ = state; }
  void action(std::string_view text);
  const std::string& title() const { return accounts_[static_cast<std::size_t>(account_)].title; }
  std::string ofTotal(long n) const;

  AppContext& ctx_;
  protocol::Link& link_;
  Pop3Listener& events_;
  rules::MessageCheck& serverFilters_;
  rules::MessageCheck& localFilters_;
  PasswordPrompt& passwords_;

  std::array<Account, kAccountCount> accounts_{};
  bool tablesRead_ = false;
  Mode mode_ = Mode::Headers;
  int specificNumber_ = 0;
  int timeout_ = 30;
  int idleSeconds_ = 0;
  int account_ = 0;
  int handledCount_ = 0;
  long specificCount_ = 0;
  std::vector<std::string> sizeList_;
  bool deleteSpam_ = false;
  int state_ = 0;
  std::string lastData_;
  Pop3Reply reply_;

  std::string pending_;       // received bytes not yet handed to dataArrival
  std::size_t scanned_ = 0;   // how much of pending_ is known to hold no line end
  std::uint64_t session_ = 0;  // changes with every new session
  std::ofstream tempFile_;
};

}  // namespace vonel::pop3
