// The walk through the mailbox: each header fetched with TOP, judged by the
// server filters, then deleted, listed, skipped or downloaded.
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "protocol/pop3/pop3_reply_text.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel::pop3 {

void Pop3Session::onTopLines(const std::string& packet) {
  reply_.replyBuffer += packet;
  if (reply_.replyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.replyBuffer.size() > kLongestGatheredReply) endWithError(FailureKind::BadReply, "Reply too long");
    return;
  }
  std::string headers = withoutFirstLine(std::move(reply_.replyBuffer));
  headers.resize(headers.size() >= 3 ? headers.size() - 3 : 0);
  const long n = reply_.currentMessage;
  switch (judgeHeader(std::move(headers))) {
    case HeaderStep::Delete:
      sendCommand(Pop3State::AwaitSpamDeleReply, "DELE " + std::to_string(n));
      break;
    case HeaderStep::Next:
      requestNextHeader(true);
      break;
    case HeaderStep::Download:
      logAction("Sending RETR " + std::to_string(n));
      sendCommand(Pop3State::AwaitRetrLines, "RETR " + std::to_string(n));
      break;
  }
}

// The verdict on the header of message `reply_.currentMessage`, with its
// events; the walk moves on to the next message unless it is downloaded.
// The caller sends what the verdict asks for.
Pop3Session::HeaderStep Pop3Session::judgeHeader(std::string headers) {
  message::Message message(&ctx_.log, &ctx_.clock);
  message.createFromText(std::move(headers), true);
  message.fromAccount = static_cast<std::int16_t>(account_);
  const long n = reply_.currentMessage;
  if (n >= 0 && static_cast<std::size_t>(n) < sizeList_.size()) {
    const std::string& line = sizeList_[static_cast<std::size_t>(n)];
    const std::size_t blank = text::find(line, " ");
    message.size = blank == 0 ? 1.0f
                              : static_cast<float>(text::roundHalfEven(text::val(text::mid(line, blank + 1)) / 1024, 2));
  }
  ++handledCount_;
  message.messageNumThisAcc = handledCount_;
  serverFilters_.checkMessage(message, true);
  reply_.replyBuffer.clear();

  if (message.deleted || message.blockedSender || message.blockedRecip) {
    if (deleteSpam_ && events_.onScreenedDelete(message)) {
      events_.onProgress("Deleting message " + ofTotal(n));
      ++reply_.currentMessage;
      return HeaderStep::Delete;
    }
    events_.onProgress("Skipping message " + ofTotal(n) + " (" + message.filterReason + ")");
    events_.onHeaderReceived(message);
    ++reply_.currentMessage;
  } else if (message.ignored) {
    events_.onProgress("Ignoring message " + ofTotal(n));
    ++reply_.currentMessage;
    events_.onHeaderReceived(message);
  } else if (mode_ == Mode::Headers) {
    events_.onProgress("Passed message " + ofTotal(n));
    events_.onHeaderReceived(message);
    ++reply_.currentMessage;
  } else {
    return HeaderStep::Download;
  }
  return HeaderStep::Next;
}

// With "stop at last" on, the walk quits after the counted messages;
// otherwise it asks on until the server refuses a number.
void Pop3Session::requestNextHeader(bool logLastMessage) {
  if (skipStoredMessages()) return;
  if (accounts_[static_cast<std::size_t>(account_)].stopAtLast && reply_.currentMessage > reply_.messageCount) {
    if (logLastMessage) logAction("Got last message. Sending QUIT");
    sendQuit();
  } else {
    sendCommand(Pop3State::AwaitTopLines, "TOP " + std::to_string(reply_.currentMessage) + " 1");
  }
}

}  // namespace vonel::pop3
