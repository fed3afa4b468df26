#include "protocol/pop3/pop3_session.h"

#include <algorithm>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/settings/scramble.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::pop3 {
namespace {

constexpr const char* kModule = "frmGetMail";
constexpr std::string_view kTerminator = "\n.\r\n";
// A line this long without its end is handed on as it stands, so that a
// server that never ends a line can't fill the memory.
constexpr std::size_t kLongestLine = 1 << 20;
// A list or header block beyond this is not a reply any more.
constexpr std::size_t kLongestGatheredReply = std::size_t{64} << 20;

bool isMultiLineState(int state) { return state == 3 || state == 6 || state == 7; }

// Everything up to and including the first CR LF goes; without one, the first character.
// The status line goes; the rest stays where it is, as a message may be very large.
std::string withoutFirstLine(std::string text) {
  const std::size_t lineEnd = text::find(text, "\r\n");
  text.erase(0, lineEnd + 1);  // with no line end, the first byte, as it always was
  return text;
}

}  // namespace

Pop3Session::Pop3Session(AppContext& context, protocol::Link& link, Pop3Listener& events,
                       rules::MessageCheck& serverFilters, rules::MessageCheck& localFilters,
                       PasswordPrompt& passwords)
    : ctx_(context),
      link_(link),
      events_(events),
      serverFilters_(serverFilters),
      localFilters_(localFilters),
      passwords_(passwords) {}

void Pop3Session::action(std::string_view text) { ctx_.log.addAction(text); }

void Pop3Session::send(const std::string& command) { link_.send(command + "\r\n"); }

std::string Pop3Session::ofTotal(long n) const {
  return std::to_string(n) + " of " + std::to_string(reply_.messageCount);
}

void Pop3Session::readSettings() {
  for (int n = 0; n < kAccountCount; ++n) {
    accounts_[static_cast<std::size_t>(n)] = readAccount(ctx_.settings, n, AccountReader::Session);
  }
  tablesRead_ = true;
  idleSeconds_ = 0;
}

void Pop3Session::getHeaders(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Headers;
  beginTransfer(account, deleteSpam, force);
}

void Pop3Session::getMessages(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Download;
  beginTransfer(account, deleteSpam, force);
}

void Pop3Session::deleteAllMail(int account) {
  mode_ = Mode::DeleteAll;
  account_ = account;
  beginTransfer(account, false, true);
}

void Pop3Session::getSpecificMessage(int account, int number) {
  // The tables and the time-out stay those of the last transfer; a first
  // use reads them once so that there is a server to reach.
  if (!tablesRead_) readSettings();
  startSession();
  account_ = account;
  mode_ = Mode::OneMessage;
  specificNumber_ = number;
  setState(0);
  link_.close();
  const Account& a = accounts_[static_cast<std::size_t>(account)];
  idleSeconds_ = 0;
  link_.setTimer(true);
  events_.onCaption("Retrieving message " + std::to_string(number));
  link_.connect(a.server, a.popPort);
}

// A message cut off by a lost connection never reaches the next session.
void Pop3Session::startSession() {
  ++session_;
  pending_.clear();
  scanned_ = 0;
  closeTempFile(true);
}

void Pop3Session::beginTransfer(int account, bool deleteSpam, bool force) {
  startSession();
  readSettings();
  Account& a = accounts_[static_cast<std::size_t>(account)];
  if (a.server.empty() && a.check) {
    ctx_.settings.set(accountKey("CHECK", account), Value(false));
    a.check = false;
  }
  if (a.server.empty()) {
    events_.onNoMailServer();
    return;
  }
  if (!a.check && !force) {
    ctx_.log.addDebug("Mailserver " + std::to_string(account) + " not automatically checked");
    events_.onNoMailServer();
    return;
  }
  if (a.password.empty()) {
    bool cancelled = false;
    bool save = false;
    const std::string given = passwords_.askPassword(
        "Vonel", "Enter password for '" + a.userName + "' on account '" + a.title + "'", cancelled, save);
    if (!cancelled && !given.empty()) {
      a.password = given;
      if (save) {
        ctx_.settings.set(accountKey("PWD", account), Value(encrypt(given)));
        ctx_.settings.saveSettings(ctx_.settingsFile());
      }
    }
  }
  handledCount_ = 0;
  specificCount_ = 0;
  deleteSpam_ = deleteSpam;
  account_ = account;
  events_.onCaption("Reading mail");
  sizeList_.clear();
  events_.onDoingServer(a.title);
  events_.onProgress("Checking mail on " + a.title);

  setState(0);
  link_.close();
  timeout_ = text::toWhole<int>(ctx_.settings.getOrDefault("MailTimeout", Value(30)).numberOr(30));
  link_.setTimer(true);
  link_.connect(a.server, a.popPort);
}

void Pop3Session::onData(std::string_view bytes) {
  pending_.append(bytes);
  const std::uint64_t session = session_;
  std::string unit;
  // A handler may end this session or start the next one; then what is left belongs to nobody.
  while (session == session_ && takeUnit(unit)) dataArrival(unit);
}

// Cuts the next piece of received data that the session handles as one
// packet. Replies of one line are handed on whole, whatever the splitting;
// a list or header block goes line by line up to its terminator; a
// download goes on as it comes, straight to its file.
bool Pop3Session::takeUnit(std::string& unit) {
  if (pending_.empty()) return false;
  // Bytes before `scanned_` are known to hold no line end: a long line is searched once, not per chunk.
  std::size_t length = 0;
  if (state_ == 7) {
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
  unit.assign(pending_, 0, length);
  pending_.erase(0, length);
  scanned_ = 0;
  return true;
}

void Pop3Session::dataArrival(const std::string& packet) {
  try {
    idleSeconds_ = 0;
    link_.setTimer(true);
    lastData_ = packet;
    if (!(reply_.inMultiLine && state_ != 0 && state_ != 8 && state_ != 10)) action(title() + ": " + packet);

    // The normal end of a walk that ran past the last message.
    if (reply_.currentMessage > reply_.messageCount && text::findNoCase(packet, "-err") != 0) {
      setState(10);
      send("QUIT");
      reply_.inMultiLine = false;
      return;
    }
    const bool good = (!packet.empty() && packet.front() == '+') || state_ == 3 || state_ == 4 || state_ == 5 ||
                      state_ == 6 || state_ == 7 || state_ == 9;
    if (!good) {
      errorPath(packet);
      return;
    }
    dispatch(packet);
  } catch (...) {
    const AppError error = AppError::from(std::current_exception());
    ctx_.log.addAction(error.description(),
                       "DataArrival (" + std::to_string(error.number()) + ") & STATE: " + std::to_string(state_),
                       kModule);
  }
}

void Pop3Session::dispatch(const std::string& packet) {
  const Account& a = accounts_[static_cast<std::size_t>(account_)];
  switch (state_) {
    case 0:
      onGreeting();
      break;
    case 1:
      events_.onProgress("Authorising on " + a.title + " ...");
      action("Sending PASS command");
      setState(2);
      send("PASS " + a.password);
      break;
    case 2:
      setState(3);
      action("Sending LIST command");
      send("LIST");
      break;
    case 3:
      onListLines(packet);
      break;
    case 4:
      onStat(packet);
      break;
    case 6:
      onTopLines(packet);
      break;
    case 7:
      onRetrLines(packet);
      break;
    case 8:
      stepRule(true);
      events_.onDeletedSpam(1);
      break;
    case 9:
      onDeleteAllReply();
      break;
    case 10:
      onQuitReply();
      break;
    default:
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
  setState(1);
  send("USER " + a.userName);
  action("Sending USER command");
}

void Pop3Session::onListLines(const std::string& packet) {
  reply_.inMultiLine = true;
  reply_.replyBuffer += packet;
  if (reply_.replyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.replyBuffer.size() > kLongestGatheredReply) errorPath("Reply too long");
    return;
  }
  sizeList_ = text::split(reply_.replyBuffer, "\r\n");
  reply_.replyBuffer.clear();
  action("Sending STAT command");
  events_.onProgress("Listing messages");
  setState(4);
  send("STAT");
}

void Pop3Session::onStat(const std::string& packet) {
  events_.onProgress("Getting Message Count");
  std::string reply = packet;
  reply.erase(std::remove_if(reply.begin(), reply.end(), [](char c) { return c == '\r' || c == '\n'; }),
              reply.end());
  reply = text::trim(reply);
  action("strData = '" + reply + "'");
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
  action("intMessages = '" + count + "'");
  action("TotalSize = '" + size + "'");
  reply_.messageCount = text::toWhole<long>(Value(count).number());
  const double totalBytes = Value(size).number();
  const std::string& accountTitle = title();
  events_.onNumberMessagesFound(accountTitle, reply_.messageCount);

  switch (mode_) {
    case Mode::Headers:
    case Mode::Download:
      if (reply_.messageCount < 1) {
        action("No mail. Sending QUIT command");
        events_.onNoMail(accountTitle);
        setState(10);
        send("QUIT");
        return;
      }
      events_.onProgressBar(0, reply_.messageCount);
      events_.onProgress(std::to_string(reply_.messageCount) + " message(s) on " + accountTitle + "   (" +
                       text::plainText(text::roundHalfEven(totalBytes / 1024, 2)) + " kb)");
      setState(6);
      ++reply_.currentMessage;
      send("TOP 1 1");
      return;
    case Mode::OneMessage:
      if (reply_.messageCount < specificNumber_) {
        action("Invalid msg number. Sending QUIT command");
        setState(10);
        send("QUIT");
        return;
      }
      action("Sending RETR " + std::to_string(specificNumber_) + " command");
      setState(7);
      send("RETR " + std::to_string(specificNumber_));
      return;
    case Mode::DeleteAll:
      if (reply_.messageCount < 1) {
        setState(10);
        send("QUIT");
        return;
      }
      reply_.currentMessage = 1;
      setState(9);
      send("DELE 1");
      return;
  }
}

void Pop3Session::onTopLines(const std::string& packet) {
  reply_.bytesReceived = 0;
  reply_.replyBuffer += packet;
  if (reply_.replyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.replyBuffer.size() > kLongestGatheredReply) errorPath("Reply too long");
    return;
  }
  std::string headers = withoutFirstLine(std::move(reply_.replyBuffer));
  headers.resize(headers.size() >= 3 ? headers.size() - 3 : 0);

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
    if (deleteSpam_) {
      events_.onProgress("Deleting message " + ofTotal(n));
      setState(8);
      send("DELE " + std::to_string(n));
      ++reply_.currentMessage;
      return;
    }
    events_.onProgress("Skipping message " + ofTotal(n) + " (" + message.filterReason + ")");
    events_.onHeaderReceived(message);
    ++reply_.currentMessage;
    stepRule(true);
  } else if (message.ignored) {
    events_.onProgress("Ignoring message " + ofTotal(n));
    ++reply_.currentMessage;
    events_.onHeaderReceived(message);
    stepRule(true);
  } else if (mode_ == Mode::Headers) {
    events_.onProgress("Passed message " + ofTotal(n));
    events_.onHeaderReceived(message);
    ++reply_.currentMessage;
    stepRule(true);
  } else {
    action("Sending RETR " + std::to_string(n));
    setState(7);
    send("RETR " + std::to_string(n));
  }
}

void Pop3Session::onRetrLines(const std::string& packet) {
  if (reply_.fileHandle == 0) {
    reply_.bytesReceived = 0;
    reply_.packetTail.clear();
    action("Opening temporary output file for inbound message");
    const text::DateTime now = ctx_.clock.now();
    const int secondsSinceMidnight = now.hour * 3600 + now.minute * 60 + now.second;
    reply_.tempFileName = ctx_.folders.messageFolderPath / ("mail_" + std::to_string(secondsSinceMidnight) + ".tmp");
    tempFile_.open(reply_.tempFileName, std::ios::binary | std::ios::trunc);
    if (!tempFile_) {
      events_.onPopError(title(), "Unable to open temporary mail file");
      cleanupAndExit();
      return;
    }
    reply_.fileHandle = 1;
    action("Using file handle #" + std::to_string(reply_.fileHandle) + " for this message");
  }
  reply_.bytesReceived += static_cast<long>(packet.size());
  tempFile_.write(packet.data(), static_cast<std::streamsize>(packet.size()));
  if (!tempFile_) {
    errorPath("Unable to write temporary mail file");
    return;
  }

  // The terminator may be split between packets, even over several short
  // ones: the tail is the last three bytes received, whatever they are.
  std::string formed = reply_.packetTail + packet;
  const bool complete = formed.find(kTerminator) != std::string::npos;
  reply_.packetTail = formed.substr(formed.size() > 3 ? formed.size() - 3 : 0);
  if (complete) onRetrComplete();
}

void Pop3Session::onRetrComplete() {
  tempFile_.close();
  std::string text = withoutFirstLine(files::loadTextFile(reply_.tempFileName));
  files::eraseFile(reply_.tempFileName);
  reply_.fileHandle = 0;
  reply_.bytesReceived = 0;

  const std::size_t end = text.find(kTerminator);
  if (end != std::string::npos) text.resize(end);  // the CR before the terminator stays

  message::Message message(&ctx_.log, &ctx_.clock);
  message.createFromText(std::move(text), false);
  message.removeReceiveDate();
  message.receiveDate = text::formatStoreDate(ctx_.clock.now());
  message.fromAccount = static_cast<std::int16_t>(account_);
  message.read = false;
  ++handledCount_;
  message.messageNumThisAcc = handledCount_;
  reply_.replyBuffer.clear();

  if (mode_ == Mode::OneMessage) {
    events_.onProgress("Selected message downloaded");
    handledCount_ = specificNumber_;
    ++specificCount_;
    events_.onSpecificMessage(message);
    setState(10);
    send("QUIT");
    return;
  }
  action("Checking message against server filters");
  serverFilters_.checkMessage(message, true);
  if (!message.ignored && !message.deleted && !message.blockedSender && !message.blockedRecip &&
      !message.suspicious && message.destFolder.empty()) {
    action("Checking message against local filters");
    localFilters_.checkMessage(message, false);
  }
  action("Raising event to pass downloaded message to calling routine");
  const bool kept = events_.onMessageReceived(message);
  const long n = reply_.currentMessage;
  events_.onProgress("Downloaded Message " + ofTotal(n) + " to " +
                   (message.destFolder.empty() ? std::string("Inbox") : message.destFolder));
  if (reply_.currentMessage > reply_.messageCount) reply_.messageCount = reply_.currentMessage;
  events_.onProgressBar(reply_.currentMessage, reply_.messageCount);
  // Sent without waiting: its "+OK" comes in ahead of the next reply.
  if (kept && !message.ignored && ctx_.settings.get("DELETEONRETRIEVE", Value(0)).numberOr(0) == 1) {
    send("DELE " + std::to_string(n));
  }
  ++reply_.currentMessage;
  stepRule(false);
}

void Pop3Session::onDeleteAllReply() {
  events_.onProgress("Deleted " + ofTotal(reply_.currentMessage));
  if (reply_.currentMessage < reply_.messageCount) {
    ++reply_.currentMessage;
    setState(9);
    send("DELE " + std::to_string(reply_.currentMessage));
  } else {
    setState(10);
    send("QUIT");
  }
}

void Pop3Session::onQuitReply() {
  reply_.inMultiLine = false;
  if (mode_ != Mode::OneMessage) {
    events_.onProgress(reply_.messageCount != 0 ? title() + " scan complete" : "No mail on " + title());
  }
  cleanupAndExit();
}

void Pop3Session::stepRule(bool withLog) {
  if (accounts_[static_cast<std::size_t>(account_)].stopAtLast && reply_.currentMessage > reply_.messageCount) {
    if (withLog) action("Got last message. Sending QUIT");
    setState(10);
    send("QUIT");
  } else {
    setState(6);
    send("TOP " + std::to_string(reply_.currentMessage) + " 1");
  }
}

void Pop3Session::closeTempFile(bool erase) {
  if (reply_.fileHandle == 0) return;
  tempFile_.close();
  reply_.fileHandle = 0;
  if (erase) files::eraseFile(reply_.tempFileName);
}

void Pop3Session::errorPath(const std::string& packet) {
  reply_.inMultiLine = false;
  closeTempFile(true);
  reply_.bytesReceived = 0;
  action("POP Error: " + packet);
  setState(10);
  send("QUIT");
  events_.onPopError(title(), packet);
  cleanupAndExit();
}

void Pop3Session::cleanupAndExit() {
  ++session_;
  pending_.clear();
  scanned_ = 0;
  link_.setTimer(false);
  link_.close();
  sizeList_.clear();
  events_.onProgressBar(0, 0);
  events_.onCaption("Checking mail");
  events_.onFinished(title(), specificCount_);
}

void Pop3Session::cancelMail() {
  events_.onProgress("Mail retrieval cancelled");
  events_.onCancelled(title());
  cleanupAndExit();
}

void Pop3Session::onTick() {
  ++idleSeconds_;
  if (idleSeconds_ > 5) events_.onProgress(title() + " - Trying to connect: " + std::to_string(timeout_ - idleSeconds_));
  if (idleSeconds_ >= timeout_) {
    idleSeconds_ = 0;
    action("Last Data string: " + lastData_);
    action("Timed out");
    const std::string accountTitle = title();
    cancelMail();
    events_.onTimedOut(accountTitle, timeout_);
  }
}

void Pop3Session::onSocketError(int number, std::string_view description) {
  action("Winsock Error " + std::to_string(number));
  switch (number) {
    case 11001:
    case 11004:
    case 10060:
    case 10051:
    case 10065:
    case 10053:
      link_.setTimer(false);
      closeTempFile(true);
      events_.onNoConnection();
      events_.onFinished(title(), specificCount_);
      return;
    default:
      // The time-out ends the session.
      ctx_.prompt.ask("Error while connecting to server:\r\n[" + std::to_string(number) + "] " +
                          std::string(description),
                      Buttons::Ok, "Vonel");
  }
}

}  // namespace vonel::pop3
