// Received bytes cut into packets, and the replies of the session's frame:
// greeting, log-in, list, count, delete-all and quit.
#include <algorithm>
#include <utility>

#include "core/log/log_places.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/pop3/pop3_reply_text.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel::pop3 {
namespace {

// A line this long without its end is handed on unfinished, so that a
// server that never ends a line can't fill the memory.
constexpr std::size_t kLongestLine = 1 << 20;

bool isMultiLineState(Pop3State state) {
  return state == Pop3State::AwaitListLines || state == Pop3State::AwaitTopLines ||
         state == Pop3State::AwaitRetrLines || state == Pop3State::AwaitUidlLines ||
         state == Pop3State::AwaitCapaLines;
}

// Lines inside a list, header or message start with anything, and a server
// without UIDL or CAPA refuses it. A STAT reply and each DELE reply of the
// delete-all run are read whatever their status, so a refused DELE doesn't
// stop the run from deleting the rest; nor does a refused DELE of a message
// stored before stop a download.
bool readsAnyStatus(Pop3State state) {
  return isMultiLineState(state) || state == Pop3State::AwaitStat || state == Pop3State::AwaitDeleteAllReply ||
         state == Pop3State::AwaitStoredDeleReply;
}

}  // namespace

void Pop3Session::onData(std::string_view bytes) {
  const std::uint64_t session = sessionNumber_;
  // Replies to commands sent ahead are cut straight from the chunk, without a copy.
  if (state_ == Pop3State::AwaitAheadReplies && pending_.empty()) {
    bytes.remove_prefix(onAheadReplies(bytes));
    if (session != sessionNumber_) return;
  }
  pending_.append(bytes);
  std::string packet;
  // A handler may end this session or start the next one; then what is left belongs to nobody.
  while (session == sessionNumber_ && !pending_.empty()) {
    if (state_ == Pop3State::AwaitAheadReplies) {
      // Taken out first: ending the session clears pending_, and the replies point into it.
      const std::string held = std::exchange(pending_, {});
      const std::size_t used = onAheadReplies(held);
      if (session == sessionNumber_) pending_.assign(held, used);
    } else if (takePacket(packet)) {
      onPacket(packet);
    } else {
      break;
    }
  }
}

// Cuts the next piece of received data that the session handles as one
// packet. Replies of one line are handed on whole, whatever the splitting;
// a list or header block goes line by line up to its terminator; a
// download goes on as it comes, straight to its file.
bool Pop3Session::takePacket(std::string& packet) {
  if (pending_.empty()) return false;
  // Bytes before `scanned_` are known to hold no line end: a long line is searched once, not per chunk.
  std::size_t length = 0;
  if (state_ == Pop3State::AwaitRetrLines) {
    length = pending_.size();
  } else if (isMultiLineState(state_)) {
    std::size_t lineStart = 0;
    for (std::size_t lineEnd; (lineEnd = pending_.find('\n', std::max(lineStart, scanned_))) != std::string::npos;) {
      const bool terminator = pending_.compare(lineStart, lineEnd + 1 - lineStart, ".\r\n") == 0;
      lineStart = lineEnd + 1;
      if (terminator) break;
    }
    length = lineStart;
  } else {
    const std::size_t lineEnd = pending_.find('\n', scanned_);
    length = lineEnd == std::string::npos ? 0 : lineEnd + 1;
  }
  if (length == 0 && pending_.size() >= kLongestLine) length = pending_.size();
  if (length == 0) {
    scanned_ = pending_.size();
    return false;
  }
  packet.assign(pending_, 0, length);
  pending_.erase(0, length);
  scanned_ = 0;
  return true;
}

void Pop3Session::onPacket(const std::string& packet) {
  try {
    idleSeconds_ = 0;
    link_.setTimer(true);
    lastPacket_ = packet;
    // Once the list has begun, only the greeting, a spam DELE and the QUIT
    // reply are logged: a mailbox's worth of lines would swamp the log.
    if (!reply_.inMultiLine || state_ == Pop3State::AwaitGreeting || state_ == Pop3State::AwaitSpamDeleReply ||
        state_ == Pop3State::AwaitQuitReply) {
      logAction(title() + ": " + packet);
    }

    // The normal end of a walk that ran past the last message.
    if (reply_.currentMessage > reply_.messageCount && text::findNoCase(packet, "-err") != 0) {
      sendQuit();
      reply_.inMultiLine = false;
      return;
    }
    if ((packet.empty() || packet.front() != '+') && !readsAnyStatus(state_)) {
      const bool loggingIn = state_ == Pop3State::AwaitUserReply || state_ == Pop3State::AwaitPassReply;
      endWithError(loggingIn ? FailureKind::LoginRefused : FailureKind::ServerRefused, packet);
      return;
    }
    dispatch(packet);
  } catch (...) {
    logArrivalError(std::current_exception());
  }
}

void Pop3Session::logArrivalError(std::exception_ptr caught) {
  const AppError error = AppError::from(caught);
  ctx_.log.addAction(error.description(),
                     "DataArrival (" + std::to_string(error.number()) +
                         ") & STATE: " + std::to_string(static_cast<int>(state_)),
                     kLogModule);
}

void Pop3Session::dispatch(const std::string& packet) {
  const Account& a = accounts_[static_cast<std::size_t>(account_)];
  switch (state_) {
    case Pop3State::AwaitGreeting:
      onGreeting();
      break;
    case Pop3State::AwaitUserReply:
      events_.onProgress("Authorising on " + a.title + " ...");
      logAction("Sending PASS command");
      sendCommand(Pop3State::AwaitPassReply, "PASS " + a.password);
      break;
    case Pop3State::AwaitPassReply:
      sendCapaOrList();
      break;
    case Pop3State::AwaitCapaLines:
      onCapaLines(packet);
      break;
    case Pop3State::AwaitListLines:
      onListLines(packet);
      break;
    case Pop3State::AwaitStat:
      onStat(packet);
      break;
    case Pop3State::AwaitUidlLines:
      onUidlLines(packet);
      break;
    case Pop3State::AwaitTopLines:
      onTopLines(packet);
      break;
    case Pop3State::AwaitRetrLines:
      onRetrLines(packet);
      break;
    case Pop3State::AwaitSpamDeleReply:
      requestNextHeader(true);
      events_.onDeletedSpam(1);
      break;
    case Pop3State::AwaitStoredDeleReply:
      requestNextHeader(true);
      break;
    case Pop3State::AwaitDeleteAllReply:
      onDeleteAllReply();
      break;
    case Pop3State::AwaitAheadReplies:
      break;  // taken by onData before any packet is cut
    case Pop3State::AwaitQuitReply:
      onQuitReply();
      break;
  }
}

void Pop3Session::onGreeting() {
  const Account& a = accounts_[static_cast<std::size_t>(account_)];
  reply_.inMultiLine = false;
  const std::string connecting = "Connecting to " + a.title + " ...";
  if (mode_ != Mode::OneMessage) events_.onCaption(connecting);
  reply_.messageCount = 0;
  reply_.currentMessage = 0;
  events_.onProgress(connecting);
  sendCommand(Pop3State::AwaitUserReply, "USER " + a.userName);
  logAction("Sending USER command");
}

void Pop3Session::onListLines(const std::string& packet) {
  reply_.inMultiLine = true;
  reply_.replyBuffer += packet;
  if (reply_.replyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.replyBuffer.size() > kLongestGatheredReply) endWithError(FailureKind::BadReply, "Reply too long");
    return;
  }
  sizeList_ = text::split(reply_.replyBuffer, "\r\n");
  reply_.replyBuffer.clear();
  logAction("Sending STAT command");
  events_.onProgress("Listing messages");
  sendCommand(Pop3State::AwaitStat, "STAT");
}

void Pop3Session::onStat(const std::string& packet) {
  events_.onProgress("Getting Message Count");
  std::string reply = packet;
  reply.erase(std::remove_if(reply.begin(), reply.end(), [](char c) { return c == '\r' || c == '\n'; }),
              reply.end());
  reply = text::trim(reply);
  logAction("strData = '" + reply + "'");
  const std::size_t firstBlank = text::find(reply, " ");
  if (firstBlank == 0) {
    // Nothing more is sent: the session runs into its time-out.
    reply_.messageCount = 0;
    return;
  }
  const std::size_t secondBlank = text::find(reply, " ", firstBlank + 1);
  std::string count;
  std::string size;
  if (secondBlank != 0) {
    count = text::mid(reply, firstBlank + 1, secondBlank - firstBlank - 1);
    size = text::mid(reply, text::findLast(reply, " ") + 1);
  } else {
    count = text::left(reply, firstBlank - 1);
    size = text::mid(reply, firstBlank + 1);
  }
  logAction("intMessages = '" + count + "'");
  logAction("TotalSize = '" + size + "'");
  reply_.messageCount = text::toWhole<long>(Value(count).number());
  const double totalBytes = Value(size).number();
  const std::string& accountTitle = title();
  events_.onNumberMessagesFound(accountTitle, reply_.messageCount);

  switch (mode_) {
    case Mode::Headers:
    case Mode::Download:
      if (reply_.messageCount < 1) {
        logAction("No mail. Sending QUIT command");
        if (mode_ == Mode::Download) matchStoredIds({});
        events_.onNoMail(accountTitle);
        sendQuit();
        return;
      }
      events_.onProgressBar(0, reply_.messageCount);
      events_.onProgress(std::to_string(reply_.messageCount) + " message(s) on " + accountTitle + "   (" +
                       text::plainText(text::roundHalfEven(totalBytes / 1024, 2)) + " kb)");
      ++reply_.currentMessage;
      if (mode_ == Mode::Download) {
        logAction("Sending UIDL command");
        sendCommand(Pop3State::AwaitUidlLines, "UIDL");
        return;
      }
      if (pipelining_) {
        startAheadWalk();
        return;
      }
      state_ = Pop3State::AwaitTopLines;
      send("TOP 1 1");
      return;
    case Mode::OneMessage:
      if (reply_.messageCount < specificNumber_) {
        logAction("Invalid msg number. Sending QUIT command");
        sendQuit();
        return;
      }
      logAction("Sending RETR " + std::to_string(specificNumber_) + " command");
      sendCommand(Pop3State::AwaitRetrLines, "RETR " + std::to_string(specificNumber_));
      return;
    case Mode::DeleteAll:
      if (reply_.messageCount < 1) {
        sendQuit();
        return;
      }
      reply_.currentMessage = 1;
      sendCommand(Pop3State::AwaitDeleteAllReply, "DELE 1");
      return;
  }
}

void Pop3Session::onDeleteAllReply() {
  events_.onProgress("Deleted " + ofTotal(reply_.currentMessage));
  if (reply_.currentMessage < reply_.messageCount) {
    ++reply_.currentMessage;
    sendCommand(Pop3State::AwaitDeleteAllReply, "DELE " + std::to_string(reply_.currentMessage));
  } else {
    sendQuit();
  }
}

void Pop3Session::onQuitReply() {
  reply_.inMultiLine = false;
  if (mode_ != Mode::OneMessage) {
    events_.onProgress(reply_.messageCount != 0 ? title() + " scan complete" : "No mail on " + title());
  }
  endSession();
}

}  // namespace vonel::pop3
