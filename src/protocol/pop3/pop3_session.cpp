#include "protocol/pop3/pop3_session.h"

#include <algorithm>

#include "core/log/app_error.h"
#include "core/settings/scramble.h"
#include "core/text/numbers.h"

namespace vonel::pop3 {

Pop3Session::Pop3Session(AppContext& context, protocol::Link& link, Pop3Listener& events,
                       rules::MessageCheck& serverFilters, rules::MessageCheck& localFilters,
                       PasswordPrompt& passwords)
    : ctx_(context),
      link_(link),
      events_(events),
      serverFilters_(serverFilters),
      localFilters_(localFilters),
      passwords_(passwords) {}

void Pop3Session::logAction(std::string_view text) { ctx_.log.addAction(text); }

// Commands written ahead go out first, in their order.
void Pop3Session::send(const std::string& command) {
  aheadBatch_ += command;
  aheadBatch_ += "\r\n";
  flushAhead();
}

void Pop3Session::sendCommand(Pop3State awaited, const std::string& command) {
  state_ = awaited;
  send(command);
}

void Pop3Session::sendQuit() {
  if (!quitAfterBarrier()) endSession();
}

// QUIT carries out the DELEs sent, so every file the session stored reaches
// the disk first. A barrier that fails hangs up instead: the server keeps
// every message, and the failure is shown like any other.
bool Pop3Session::quitAfterBarrier() {
  try {
    ctx_.writes.commit();
  } catch (const AppError& error) {
    aheadBatch_.clear();
    state_ = Pop3State::AwaitQuitReply;
    logAction("POP Error: " + error.description());
    events_.onPopError(title(), error.description());
    reportFailure(Pop3Failure(storeFailure(error.number()), error.description()));
    return false;
  }
  sendCommand(Pop3State::AwaitQuitReply, "QUIT");
  return true;
}

std::string Pop3Session::ofTotal(long n) const {
  return std::to_string(n) + " of " + std::to_string(reply_.messageCount);
}

void Pop3Session::readAccounts() {
  for (int n = 0; n < kAccountCount; ++n) {
    accounts_[static_cast<std::size_t>(n)] = readAccount(ctx_.settings, n, AccountReader::Session);
  }
  accountsRead_ = true;
  idleSeconds_ = 0;
}

void Pop3Session::getHeaders(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Headers;
  startTransfer(account, deleteSpam, force);
}

void Pop3Session::getMessages(int account, bool deleteSpam, bool force) {
  mode_ = Mode::Download;
  startTransfer(account, deleteSpam, force);
}

void Pop3Session::deleteAllMail(int account) {
  mode_ = Mode::DeleteAll;
  account_ = account;
  startTransfer(account, false, true);
}

void Pop3Session::getSpecificMessage(int account, int number) {
  // The tables and the time-out stay those of the last transfer; a first
  // use reads them once so that there is a server to reach.
  if (!accountsRead_) readAccounts();
  startSession();
  account_ = account;
  mode_ = Mode::OneMessage;
  specificNumber_ = number;
  state_ = Pop3State::AwaitGreeting;
  link_.close();
  const Account& a = accounts_[static_cast<std::size_t>(account)];
  idleSeconds_ = 0;
  link_.setTimer(true);
  events_.onCaption("Retrieving message " + std::to_string(number));
  link_.connect(a.server, a.popPort);
}

// A message cut off by a lost connection never reaches the next session.
void Pop3Session::startSession() {
  ++sessionNumber_;
  pending_.clear();
  scanned_ = 0;
  aheadBatch_.clear();
  closeTempFile(true);
  uniqueIds_.clear();
  storedBefore_.clear();
}

void Pop3Session::startTransfer(int account, bool deleteSpam, bool force) {
  startSession();
  readAccounts();
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
  // Only the header scan sends commands ahead: a download's RETR and its DELE don't mix with queued TOPs.
  askCapa_ = mode_ == Mode::Headers && !ctx_.popLockstep && a.pipelining;
  pipelining_ = false;
  events_.onCaption("Reading mail");
  sizeList_.clear();
  events_.onDoingServer(a.title);
  events_.onProgress("Checking mail on " + a.title);

  state_ = Pop3State::AwaitGreeting;
  link_.close();
  timeout_ = text::toWhole<int>(ctx_.settings.getOrDefault("MailTimeout", Value(30)).numberOr(30));
  link_.setTimer(true);
  ctx_.writes.open();
  link_.connect(a.server, a.popPort);
}

void Pop3Session::endSession() {
  // A session that hung up before its QUIT still leaves what it stored on the disk.
  try {
    ctx_.writes.commit();
  } catch (const AppError& error) {
    logAction("POP Error: " + error.description());
  }
  ++sessionNumber_;
  pending_.clear();
  scanned_ = 0;
  aheadBatch_.clear();
  link_.setTimer(false);
  link_.close();
  sizeList_.clear();
  events_.onProgressBar(0, 0);
  events_.onCaption("Checking mail");
  events_.onFinished(title(), specificCount_);
}

void Pop3Session::endWithError(FailureKind kind, const std::string& text, Parting parting) {
  reply_.inMultiLine = false;
  closeTempFile(true);
  logAction("POP Error: " + text);
  if (parting == Parting::Quit) {
    quitAfterBarrier();
  } else {
    aheadBatch_.clear();
    state_ = Pop3State::AwaitQuitReply;
  }
  events_.onPopError(title(), text);
  reportFailure(Pop3Failure(kind, text));
  endSession();
}

void Pop3Session::reportFailure(Pop3Failure failure) {
  failure.account = account_;
  failure.messagesDone = std::max(0L, reply_.currentMessage - 1);
  failure.messageCount = reply_.messageCount;
  events_.onFailure(failure);
}

void Pop3Session::cancelMail() {
  events_.onProgress("Mail retrieval cancelled");
  events_.onCancelled(title());
  endSession();
}

void Pop3Session::onTick() {
  ++idleSeconds_;
  if (idleSeconds_ > 5) events_.onProgress(title() + " - Trying to connect: " + std::to_string(timeout_ - idleSeconds_));
  if (idleSeconds_ >= timeout_) {
    idleSeconds_ = 0;
    logAction("Last Data string: " + lastPacket_);
    logAction("Timed out");
    const std::string accountTitle = title();
    Pop3Failure silence(FailureKind::TimedOut);
    silence.seconds = timeout_;
    reportFailure(std::move(silence));
    cancelMail();
    events_.onTimedOut(accountTitle, timeout_);
  }
}

void Pop3Session::onSocketError(protocol::SocketError error, std::string_view description) {
  using protocol::SocketError;
  logAction("Winsock Error " + std::to_string(protocol::number(error)));
  switch (error) {
    case SocketError::HostNotFound:
    case SocketError::NoAddressForName:
    case SocketError::TimedOut:
    case SocketError::NetworkUnreachable:
    case SocketError::HostUnreachable:
    case SocketError::ConnectionAborted:
      link_.setTimer(false);
      closeTempFile(true);
      events_.onNoConnection();
      reportFailure(socketFailure(error, description, idleSeconds_));
      events_.onFinished(title(), specificCount_);
      return;
    default:
      // The owner shows the error; the time-out ends the session.
      reportFailure(socketFailure(error, description, idleSeconds_));
  }
}

}  // namespace vonel::pop3
