#pragma once
// The POP3 client: one session on one account at a time, driven wholly by the
// data that arrives. It walks the mailbox with "TOP n 1", has each header
// judged, and then deletes, lists or downloads the message; a download
// passes over what an earlier one stored, known by UIDL. It knows no
// sockets and no windows: bytes come in, commands go out through the Link,
// and what it learns goes to its owner as events. A header scan of a server
// that announces PIPELINING sends its TOPs ahead (POPPIPELINING<n>, on
// unless switched off), with the same verdicts, events and deletes.
#include <array>
#include <exception>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/rules/message_check.h"
#include "core/context/app_context.h"
#include "core/settings/accounts.h"
#include "protocol/link.h"
#include "protocol/pop3/multi_line_decoder.h"
#include "protocol/pop3/pop3_listener.h"
#include "protocol/pop3/pop3_reply_matcher.h"
#include "protocol/pop3/pop3_reply_text.h"
#include "protocol/socket_error.h"
#include "core/log/log_places.h"

namespace vonel::pop3 {

enum class Mode { Headers = 1, Download = 2, OneMessage = 3, DeleteAll = 4 };

// What the session waits for next. The error log prints the number.
enum class Pop3State {
  AwaitGreeting = 0,
  AwaitUserReply = 1,
  AwaitPassReply = 2,
  AwaitListLines = 3,
  AwaitStat = 4,
  AwaitTopLines = 6,
  AwaitRetrLines = 7,
  AwaitSpamDeleReply = 8,   // a failing header's message deleted during the walk
  AwaitDeleteAllReply = 9,  // one DELE of the run that empties the mailbox
  AwaitQuitReply = 10,
  AwaitUidlLines = 11,
  AwaitStoredDeleReply = 12,  // a message stored by an earlier, cut-off run, deleted on retrieve
  AwaitCapaLines = 13,        // whether the server takes commands sent ahead
  AwaitAheadReplies = 14,     // replies to the header walk's commands sent ahead
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
  // one-second tick; a socket error.
  void onData(std::string_view bytes);
  void onTick();
  void onSocketError(protocol::SocketError error, std::string_view description);

  Pop3State state() const { return state_; }
  // The account of the running session, or of the last one.
  int account() const { return account_; }

 private:
  // Where the walk through the mailbox stands, and the reply being gathered.
  struct Pop3Reply {
    long messageCount = 0;
    long currentMessage = 0;
    std::string replyBuffer;
    bool inMultiLine = false;
    // From the temporary file's opening until the download is read back
    // from it: a read that fails leaves it set, so the next session's start
    // still erases the file.
    bool downloading = false;
    std::filesystem::path tempFileName;
    MultiLineDecoder download;  // the RETR reply's data, on its way to the file
    std::size_t bytesWritten = 0;  // of the download, to the file
  };

  // Starting and ending (pop3_session.cpp).
  void readAccounts();
  void startTransfer(int account, bool deleteSpam, bool force);
  void startSession();
  void endSession();
  // Whether a session that ends on an error says QUIT, and so commits its deletes.
  enum class Parting { Quit, HangUp };
  void endWithError(FailureKind kind, const std::string& text, Parting parting = Parting::Quit);
  // Raises onFailure with the account and how far the walk got.
  void reportFailure(Pop3Failure failure);

  // Cutting received bytes into packets and handing them on (pop3_session_replies.cpp).
  bool takePacket(std::string& packet);
  void onPacket(const std::string& packet);
  void logArrivalError(std::exception_ptr error);
  void dispatch(const std::string& packet);
  void onGreeting();
  void onListLines(const std::string& packet);
  void onStat(const std::string& packet);
  void onDeleteAllReply();
  void onQuitReply();

  // The header walk and each header's verdict (pop3_session_headers.cpp).
  enum class HeaderStep { Delete, Next, Download };
  void onTopLines(const std::string& packet);
  HeaderStep judgeHeader(std::string headers);
  void requestNextHeader(bool logLastMessage);

  // The header walk with its commands sent ahead (pop3_session_ahead.cpp).
  void sendCapaOrList();
  void sendList();
  void onCapaLines(const std::string& packet);
  void startAheadWalk();
  std::size_t onAheadReplies(std::string_view chunk);
  bool onAheadReply(const MatchedReply& reply);
  bool onAheadTopReply(const MatchedReply& reply);
  bool onAheadDeleReply(const MatchedReply& reply);
  bool refillOrHandOver();
  Parting partingMidWalk() const;
  void sendAhead(SentAhead command, long number);
  void flushAhead();

  // A download through a temporary file (pop3_session_download.cpp).
  void onRetrLines(const std::string& packet);
  void onRetrComplete();
  void closeTempFile(bool erase);

  // Mail that an earlier download stored, known by UIDL (pop3_session_fetched.cpp).
  void onUidlLines(const std::string& packet);
  void matchStoredIds(const std::unordered_set<std::string>& listed);
  bool skipStoredMessages();
  bool deleteOnRetrieve() const;

  void send(const std::string& command);
  void sendCommand(Pop3State awaited, const std::string& command);
  void sendQuit();
  bool quitAfterBarrier();
  void logAction(std::string_view text);
  const std::string& title() const { return accounts_[static_cast<std::size_t>(account_)].title; }
  std::string ofTotal(long n) const;

  // The module that the session's error lines name.
  static constexpr std::string_view kLogModule = log_places::kPop3Module;

  AppContext& ctx_;
  protocol::Link& link_;
  Pop3Listener& events_;
  rules::MessageCheck& serverFilters_;
  rules::MessageCheck& localFilters_;
  PasswordPrompt& passwords_;

  std::array<Account, kAccountCount> accounts_{};
  bool accountsRead_ = false;
  Mode mode_ = Mode::Headers;
  int specificNumber_ = 0;
  int timeout_ = 30;
  int idleSeconds_ = 0;
  int account_ = 0;
  int handledCount_ = 0;
  long specificCount_ = 0;
  std::vector<std::string> sizeList_;
  bool deleteSpam_ = false;
  Pop3State state_ = Pop3State::AwaitGreeting;
  std::string lastPacket_;
  Pop3Reply reply_;
  // From UIDL in a download: each message's unique id, and the numbers of
  // those already in the store.
  std::unordered_map<long, std::string> uniqueIds_;
  std::unordered_set<long> storedBefore_;

  std::string pending_;              // received bytes not yet handed to onPacket
  std::size_t scanned_ = 0;          // how much of pending_ is known to hold no line end
  std::uint64_t sessionNumber_ = 0;  // changes with every new session
  std::ofstream tempFile_;

  // The walk with commands sent ahead: asked for with CAPA, chosen by its
  // reply; the commands written but not yet handed to the link; the next
  // TOP to send; set once a TOP inside the range was refused.
  bool askCapa_ = false;
  struct CapaReply {
    bool statusSeen = false;
    bool pipelining = false;
    std::size_t bytes = 0;
  } capa_;
  bool pipelining_ = false;
  ReplyMatcher aheadReplies_{kPipelineBound, kLongestGatheredReply};
  std::string aheadBatch_;
  long nextTop_ = 0;
  bool aheadStopped_ = false;
};

}  // namespace vonel::pop3
