#include "protocol/pop3/frm_get_mail.h"

#include <algorithm>

#include "core/services/file_subs.h"
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

frmGetMail::frmGetMail(AppContext& context, protocol::Link& link, GetMailEvents& events,
                       rules::MessageCheck& serverFilters, rules::MessageCheck& localFilters,
                       PasswordPrompt& passwords)
    : ctx_(context),
      link_(link),
      events_(events),
      serverFilters_(serverFilters),
      localFilters_(localFilters),
      passwords_(passwords) {}

void frmGetMail::action(std::string_view text) { ctx_.log.AddAction(text); }

void frmGetMail::send(const std::string& command) { link_.send(command + "\r\n"); }

std::string frmGetMail::ofTotal(long n) const {
  return std::to_string(n) + " of " + std::to_string(reply_.MessageCount);
}

void frmGetMail::ReadSettings() {
  for (int n = 0; n < kAccountCount; ++n) {
    accounts_[static_cast<std::size_t>(n)] = readAccount(ctx_.Settings, n, AccountReader::Session);
  }
  tablesRead_ = true;
  idleSeconds_ = 0;
}

void frmGetMail::GetHeaders(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Headers;
  Begintransfer(account, deleteSpam, force);
}

void frmGetMail::GetMessages(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Download;
  Begintransfer(account, deleteSpam, force);
}

void frmGetMail::DeleteAllMail(int account) {
  mode_ = Mode::DeleteAll;
  account_ = account;
  Begintransfer(account, false, true);
}

void frmGetMail::GetSpecificMessage(int account, int number) {
  // The tables and the time-out stay those of the last transfer; a first
  // use reads them once so that there is a server to reach.
  if (!tablesRead_) ReadSettings();
  startSession();
  account_ = account;
  mode_ = Mode::OneMessage;
  specificNumber_ = number;
  setState(0);
  link_.close();
  const Account& a = accounts_[static_cast<std::size_t>(account)];
  idleSeconds_ = 0;
  link_.setTimer(true);
  events_.Caption("Retrieving message " + std::to_string(number));
  link_.connect(a.Server, a.PopPort);
}

// A message cut off by a lost connection never reaches the next session.
void frmGetMail::startSession() {
  ++session_;
  pending_.clear();
  scanned_ = 0;
  closeTempFile(true);
}

void frmGetMail::Begintransfer(int account, bool deleteSpam, bool force) {
  startSession();
  ReadSettings();
  Account& a = accounts_[static_cast<std::size_t>(account)];
  if (a.Server.empty() && a.Check) {
    ctx_.Settings.StoreSetting(accountKey("CHECK", account), Value(false));
    a.Check = false;
  }
  if (a.Server.empty()) {
    events_.NoMailServer();
    return;
  }
  if (!a.Check && !force) {
    ctx_.log.AddDebug("Mailserver " + std::to_string(account) + " not automatically checked");
    events_.NoMailServer();
    return;
  }
  if (a.Password.empty()) {
    bool cancelled = false;
    bool save = false;
    const std::string given = passwords_.getpassword(
        "Vonel", "Enter password for '" + a.UserName + "' on account '" + a.Title + "'", cancelled, save);
    if (!cancelled && !given.empty()) {
      a.Password = given;
      if (save) {
        ctx_.Settings.StoreSetting(accountKey("PWD", account), Value(Encrypt(given)));
        ctx_.Settings.SaveSettings(ctx_.settingsFile());
      }
    }
  }
  handledCount_ = 0;
  specificCount_ = 0;
  deleteSpam_ = deleteSpam;
  account_ = account;
  events_.Caption("Reading mail");
  sizeList_.clear();
  events_.DoingServer(a.Title);
  events_.Progress("Checking mail on " + a.Title);

  setState(0);
  link_.close();
  timeout_ = text::toWhole<int>(ctx_.Settings.RetrieveWithDefault("MailTimeout", Value(30)).numberOr(30));
  link_.setTimer(true);
  link_.connect(a.Server, a.PopPort);
}

void frmGetMail::onData(std::string_view bytes) {
  pending_.append(bytes);
  const std::uint64_t session = session_;
  std::string unit;
  // A handler may end this session or start the next one; then what is left belongs to nobody.
  while (session == session_ && takeUnit(unit)) DataArrival(unit);
}

// Cuts the next piece of received data that the session handles as one
// packet. Replies of one line are handed on whole, whatever the splitting;
// a list or header block goes line by line up to its terminator; a
// download goes on as it comes, straight to its file.
bool frmGetMail::takeUnit(std::string& unit) {
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

void frmGetMail::DataArrival(const std::string& packet) {
  try {
    idleSeconds_ = 0;
    link_.setTimer(true);
    lastData_ = packet;
    if (!(reply_.InMultiLine && state_ != 0 && state_ != 8 && state_ != 10)) action(title() + ": " + packet);

    // The normal end of a walk that ran past the last message.
    if (reply_.CurrentMessage > reply_.MessageCount && text::findNoCase(packet, "-err") != 0) {
      setState(10);
      send("QUIT");
      reply_.InMultiLine = false;
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
    ctx_.log.AddAction(error.description(),
                       "DataArrival (" + std::to_string(error.number()) + ") & STATE: " + std::to_string(state_),
                       kModule);
  }
}

void frmGetMail::dispatch(const std::string& packet) {
  const Account& a = accounts_[static_cast<std::size_t>(account_)];
  switch (state_) {
    case 0:
      onGreeting();
      break;
    case 1:
      events_.Progress("Authorising on " + a.Title + " ...");
      action("Sending PASS command");
      setState(2);
      send("PASS " + a.Password);
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
      events_.DeletedSpam(1);
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

void frmGetMail::onGreeting() {
  const Account& a = accounts_[static_cast<std::size_t>(account_)];
  reply_.InMultiLine = false;
  const std::string connecting = "Connecting to " + a.Title + " ...";
  if (mode_ != Mode::OneMessage) events_.Caption(connecting);
  reply_.MessageCount = 0;
  reply_.CurrentMessage = 0;
  events_.Progress(connecting);
  setState(1);
  send("USER " + a.UserName);
  action("Sending USER command");
}

void frmGetMail::onListLines(const std::string& packet) {
  reply_.InMultiLine = true;
  reply_.ReplyBuffer += packet;
  if (reply_.ReplyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.ReplyBuffer.size() > kLongestGatheredReply) errorPath("Reply too long");
    return;
  }
  sizeList_ = text::split(reply_.ReplyBuffer, "\r\n");
  reply_.ReplyBuffer.clear();
  action("Sending STAT command");
  events_.Progress("Listing messages");
  setState(4);
  send("STAT");
}

void frmGetMail::onStat(const std::string& packet) {
  events_.Progress("Getting Message Count");
  std::string reply = packet;
  reply.erase(std::remove_if(reply.begin(), reply.end(), [](char c) { return c == '\r' || c == '\n'; }),
              reply.end());
  reply = text::trim(reply);
  action("strData = '" + reply + "'");
  const std::size_t firstBlank = text::find(reply, " ");
  if (firstBlank == 0) {
    // Nothing more is sent: the session runs into its time-out.
    reply_.MessageCount = 0;
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
  reply_.MessageCount = text::toWhole<long>(Value(count).number());
  const double totalBytes = Value(size).number();
  const std::string& accountTitle = title();
  events_.NumberMessagesFound(accountTitle, reply_.MessageCount);

  switch (mode_) {
    case Mode::Headers:
    case Mode::Download:
      if (reply_.MessageCount < 1) {
        action("No mail. Sending QUIT command");
        events_.NoMail(accountTitle);
        setState(10);
        send("QUIT");
        return;
      }
      events_.ProgressBar(0, reply_.MessageCount);
      events_.Progress(std::to_string(reply_.MessageCount) + " message(s) on " + accountTitle + "   (" +
                       text::plainText(text::roundHalfEven(totalBytes / 1024, 2)) + " kb)");
      setState(6);
      ++reply_.CurrentMessage;
      send("TOP 1 1");
      return;
    case Mode::OneMessage:
      if (reply_.MessageCount < specificNumber_) {
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
      if (reply_.MessageCount < 1) {
        setState(10);
        send("QUIT");
        return;
      }
      reply_.CurrentMessage = 1;
      setState(9);
      send("DELE 1");
      return;
  }
}

void frmGetMail::onTopLines(const std::string& packet) {
  reply_.BytesReceived = 0;
  reply_.ReplyBuffer += packet;
  if (reply_.ReplyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.ReplyBuffer.size() > kLongestGatheredReply) errorPath("Reply too long");
    return;
  }
  std::string headers = withoutFirstLine(std::move(reply_.ReplyBuffer));
  headers.resize(headers.size() >= 3 ? headers.size() - 3 : 0);

  message::clsMessage message(&ctx_.log, &ctx_.clock);
  message.CreateFromText(std::move(headers), true);
  message.FromAccount = static_cast<std::int16_t>(account_);
  const long n = reply_.CurrentMessage;
  if (n >= 0 && static_cast<std::size_t>(n) < sizeList_.size()) {
    const std::string& line = sizeList_[static_cast<std::size_t>(n)];
    const std::size_t blank = text::find(line, " ");
    message.Size = blank == 0 ? 1.0f
                              : static_cast<float>(text::roundHalfEven(text::val(text::mid(line, blank + 1)) / 1024, 2));
  }
  ++handledCount_;
  message.MessageNumThisAcc = handledCount_;
  serverFilters_.CheckMessage(message, true);
  reply_.ReplyBuffer.clear();

  if (message.Deleted || message.BlockedSender || message.BlockedRecip) {
    if (deleteSpam_) {
      events_.Progress("Deleting message " + ofTotal(n));
      setState(8);
      send("DELE " + std::to_string(n));
      ++reply_.CurrentMessage;
      return;
    }
    events_.Progress("Skipping message " + ofTotal(n) + " (" + message.FilterReason + ")");
    events_.HeaderReceived(message);
    ++reply_.CurrentMessage;
    stepRule(true);
  } else if (message.Ignored) {
    events_.Progress("Ignoring message " + ofTotal(n));
    ++reply_.CurrentMessage;
    events_.HeaderReceived(message);
    stepRule(true);
  } else if (mode_ == Mode::Headers) {
    events_.Progress("Passed message " + ofTotal(n));
    events_.HeaderReceived(message);
    ++reply_.CurrentMessage;
    stepRule(true);
  } else {
    action("Sending RETR " + std::to_string(n));
    setState(7);
    send("RETR " + std::to_string(n));
  }
}

void frmGetMail::onRetrLines(const std::string& packet) {
  if (reply_.FileHandle == 0) {
    reply_.BytesReceived = 0;
    reply_.PacketTail.clear();
    action("Opening temporary output file for inbound message");
    const text::DateTime now = ctx_.clock.now();
    const int secondsSinceMidnight = now.hour * 3600 + now.minute * 60 + now.second;
    reply_.TempFileName = ctx_.folders.MessageFolderPath / ("mail_" + std::to_string(secondsSinceMidnight) + ".tmp");
    tempFile_.open(reply_.TempFileName, std::ios::binary | std::ios::trunc);
    if (!tempFile_) {
      events_.POPError(title(), "Unable to open temporary mail file");
      CleanupAndExit();
      return;
    }
    reply_.FileHandle = 1;
    action("Using file handle #" + std::to_string(reply_.FileHandle) + " for this message");
  }
  reply_.BytesReceived += static_cast<long>(packet.size());
  tempFile_.write(packet.data(), static_cast<std::streamsize>(packet.size()));
  if (!tempFile_) {
    errorPath("Unable to write temporary mail file");
    return;
  }

  // The terminator may be split between packets, even over several short
  // ones: the tail is the last three bytes received, whatever they are.
  std::string formed = reply_.PacketTail + packet;
  const bool complete = formed.find(kTerminator) != std::string::npos;
  reply_.PacketTail = formed.substr(formed.size() > 3 ? formed.size() - 3 : 0);
  if (complete) onRetrComplete();
}

void frmGetMail::onRetrComplete() {
  tempFile_.close();
  std::string text = withoutFirstLine(files::LoadTextFile(reply_.TempFileName));
  files::EraseFile(reply_.TempFileName);
  reply_.FileHandle = 0;
  reply_.BytesReceived = 0;

  const std::size_t end = text.find(kTerminator);
  if (end != std::string::npos) text.resize(end);  // the CR before the terminator stays

  message::clsMessage message(&ctx_.log, &ctx_.clock);
  message.CreateFromText(std::move(text), false);
  message.RemoveReceiveDate();
  message.ReceiveDate = text::formatStoreDate(ctx_.clock.now());
  message.FromAccount = static_cast<std::int16_t>(account_);
  message.Read = false;
  ++handledCount_;
  message.MessageNumThisAcc = handledCount_;
  reply_.ReplyBuffer.clear();

  if (mode_ == Mode::OneMessage) {
    events_.Progress("Selected message downloaded");
    handledCount_ = specificNumber_;
    ++specificCount_;
    events_.SpecificMessage(message);
    setState(10);
    send("QUIT");
    return;
  }
  action("Checking message against server filters");
  serverFilters_.CheckMessage(message, true);
  if (!message.Ignored && !message.Deleted && !message.BlockedSender && !message.BlockedRecip &&
      !message.Suspicious && message.DestFolder.empty()) {
    action("Checking message against local filters");
    localFilters_.CheckMessage(message, false);
  }
  action("Raising event to pass downloaded message to calling routine");
  const bool kept = events_.MessageReceived(message);
  const long n = reply_.CurrentMessage;
  events_.Progress("Downloaded Message " + ofTotal(n) + " to " +
                   (message.DestFolder.empty() ? std::string("Inbox") : message.DestFolder));
  if (reply_.CurrentMessage > reply_.MessageCount) reply_.MessageCount = reply_.CurrentMessage;
  events_.ProgressBar(reply_.CurrentMessage, reply_.MessageCount);
  // Sent without waiting: its "+OK" comes in ahead of the next reply.
  if (kept && !message.Ignored && ctx_.Settings.RetrieveSetting("DELETEONRETRIEVE", Value(0)).numberOr(0) == 1) {
    send("DELE " + std::to_string(n));
  }
  ++reply_.CurrentMessage;
  stepRule(false);
}

void frmGetMail::onDeleteAllReply() {
  events_.Progress("Deleted " + ofTotal(reply_.CurrentMessage));
  if (reply_.CurrentMessage < reply_.MessageCount) {
    ++reply_.CurrentMessage;
    setState(9);
    send("DELE " + std::to_string(reply_.CurrentMessage));
  } else {
    setState(10);
    send("QUIT");
  }
}

void frmGetMail::onQuitReply() {
  reply_.InMultiLine = false;
  if (mode_ != Mode::OneMessage) {
    events_.Progress(reply_.MessageCount != 0 ? title() + " scan complete" : "No mail on " + title());
  }
  CleanupAndExit();
}

void frmGetMail::stepRule(bool withLog) {
  if (accounts_[static_cast<std::size_t>(account_)].StopAtLast && reply_.CurrentMessage > reply_.MessageCount) {
    if (withLog) action("Got last message. Sending QUIT");
    setState(10);
    send("QUIT");
  } else {
    setState(6);
    send("TOP " + std::to_string(reply_.CurrentMessage) + " 1");
  }
}

void frmGetMail::closeTempFile(bool erase) {
  if (reply_.FileHandle == 0) return;
  tempFile_.close();
  reply_.FileHandle = 0;
  if (erase) files::EraseFile(reply_.TempFileName);
}

void frmGetMail::errorPath(const std::string& packet) {
  reply_.InMultiLine = false;
  closeTempFile(true);
  reply_.BytesReceived = 0;
  action("POP Error: " + packet);
  setState(10);
  send("QUIT");
  events_.POPError(title(), packet);
  CleanupAndExit();
}

void frmGetMail::CleanupAndExit() {
  ++session_;
  pending_.clear();
  scanned_ = 0;
  link_.setTimer(false);
  link_.close();
  sizeList_.clear();
  events_.ProgressBar(0, 0);
  events_.Caption("Checking mail");
  events_.Finished(title(), specificCount_);
}

void frmGetMail::CancelMail() {
  events_.Progress("Mail retrieval cancelled");
  events_.Cancelled(title());
  CleanupAndExit();
}

void frmGetMail::onTick() {
  ++idleSeconds_;
  if (idleSeconds_ > 5) events_.Progress(title() + " - Trying to connect: " + std::to_string(timeout_ - idleSeconds_));
  if (idleSeconds_ >= timeout_) {
    idleSeconds_ = 0;
    action("Last Data string: " + lastData_);
    action("Timed out");
    const std::string accountTitle = title();
    CancelMail();
    events_.TimedOut(accountTitle, timeout_);
  }
}

void frmGetMail::onSocketError(int number, std::string_view description) {
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
      events_.NoConnection();
      events_.Finished(title(), specificCount_);
      return;
    default:
      // The time-out ends the session.
      ctx_.prompt.ask("Error while connecting to server:\r\n[" + std::to_string(number) + "] " +
                          std::string(description),
                      Buttons::Ok, "Vonel");
  }
}

}  // namespace vonel::pop3
