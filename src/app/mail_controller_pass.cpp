// A pass over the servers: its start, one account after another, its end, and
// what the POP3 session reports along the way.
#include "app/mail_controller.h"

#include <utility>

#include "app/qtext.h"
#include "app/status_line.h"
#include "core/log/log_places.h"
#include "core/store/screened_folder.h"
#include "core/store/suppress_message.h"
#include "core/text/strings.h"

namespace vonel {

void MailController::startPass(const PassRequest& request) {
  if (passRunning_ || !pop3_) return;
  pass_ = request;
  passOpen_ = true;
  guardedStep(ctx_.log, log_places::kProcessMail, kLogModule, [&] { store::removeOldScreened(ctx_); });
  windows_.showPassRunning(true);
  autoScan_.stop();
  tray_.start();
  tally_.restart();
  windows_.setupListView();
  currentAccount_ = request.account.value_or(0);
  lastAccount_ = request.account.value_or(kAccountCount - 1);
  startAccount(request.account.has_value());
}

void MailController::stopPass() {
  if (pop3_) pop3_->session().cancelMail();
  windows_.showPassRunning(false);
}

void MailController::startAccount(bool evenIfUnchecked) {
  guardedStep(ctx_.log, log_places::kCheckNextAccount, kLogModule, [&] {
    const int account = *currentAccount_;
    const std::string server = text::trim(ctx_.settings.get(accountKey("SERVER", account), Value("")).text());
    if (server.empty()) {
      onAccountFinished();
      return;
    }
    passRunning_ = true;
    sessionAccount_ = account;
    tally_.serverNames[static_cast<std::size_t>(account)] = server;
    auto& session = pop3_->session();
    switch (pass_.kind) {
      case PassKind::Download: session.getMessages(account, pass_.deleteSpam, evenIfUnchecked); break;
      case PassKind::DeleteAll: session.deleteAllMail(account); break;
      case PassKind::Scan: session.getHeaders(account, pass_.deleteSpam, evenIfUnchecked); break;
    }
  });
}

// Safe to run again after the pass has ended: a time-out reports more than once.
void MailController::onAccountFinished() {
  passRunning_ = false;
  // A cancelled pass and a pass on one account before the last end here; one
  // on the last account ends as a full pass does: the spam count saved, the
  // chime, "Process complete".
  if (!currentAccount_ || lastAccount_ < kAccountCount - 1) {
    showPassIdle();
    resumeAutoScan();
    endPass("Finished getting mail");
    return;
  }
  ctx_.settings.set("SpamCount", Value(totalSpamCount_));
  if (++*currentAccount_ < kAccountCount) {
    startAccount(false);
    return;
  }
  currentAccount_.reset();
  showPassIdle();
  if (!firstAccount(ctx_.settings)) {
    // The auto scan stays off until there is an account to scan.
    if (ctx_.prompt.ask("You need to set up your email account(s). Would you like to open the settings screen?",
                        Buttons::YesNo, "Vonel") == Answer::Yes) {
      windows_.showSettings();
    }
    if (std::exchange(passOpen_, false)) emit passEnded(QString());
    return;
  }
  if (tally_.passedMail && soundOn_) windows_.playSound(ctx_.installFolder() / "ClockChime.wav");
  resumeAutoScan();
  endPass("Process complete");
}

// After a failure the status bar keeps saying why, not just "Done".
void MailController::showPassIdle() {
  windows_.setStatusText(tally_.failures.empty() ? std::string("Done") : tally_.failures.summary(ctx_.settings));
  tray_.stop();
}

void MailController::resumeAutoScan() {
  autoScan_.restart();
  windows_.showPassRunning(false);
}

void MailController::endPass(const std::string& text) {
  windows_.showPassRunning(false);
  // A time-out ends its session more than once; the pass ends once.
  if (std::exchange(passOpen_, false)) emit passEnded(toQString(text));
}

void MailController::onAutoScanDue(PassKind kind) {
  startPass({.kind = kind, .deleteSpam = autoDelete_, .account = std::nullopt});
}

void MailController::onHeaderReceived(message::Message& received) {
  auto message = std::make_shared<message::Message>(received);
  const bool goingAway = message->deleted && pass_.deleteSpam;
  if (!goingAway) {
    if (message->messageId.empty()) {
      const text::DateTime now = ctx_.clock.now();
      message->messageId = std::to_string(tally_.listed) + "." +
                           std::to_string(now.hour * 3600 + now.minute * 60 + now.second) + "." + message->sender;
    }
    while (tally_.messages.contains(message->messageId)) message->messageId += "1";
    tally_.messages.add(message, message->messageId);
  }
  countAndList(*message);
}

void MailController::countAndList(const message::Message& message) {
  ++tally_.listed;
  if (message.fromAccount >= 0 && message.fromAccount < kAccountCount) ++tally_.byAccount[message.fromAccount];
  if (!message.deleted && !message.ignored && message.bayes < ctx_.saveToSpamThreshold) tray_.countGoodMessage();
  if (store::suppressMessage(message, ctx_.settings) || (message.deleted && pass_.deleteSpam)) return;
  if (!message.deleted && !message.ignored) tally_.passedMail = true;
  windows_.addServerMessage(message, tally_.listed, accountTitle(ctx_.settings, message.fromAccount),
                            serverOf(message.fromAccount));
}

std::string MailController::serverOf(int account) const {
  return account >= 0 && account < kAccountCount ? tally_.serverNames[static_cast<std::size_t>(account)]
                                                 : std::string();
}

void MailController::onDoingServer(const std::string& title) { windows_.addServerToLists(title); }

void MailController::onNumberMessagesFound(const std::string& title, long count) {
  showServerStatus(title, count == 0   ? std::string("No messages")
                          : count == 1 ? std::string("1 message")
                                       : std::to_string(count) + " messages");
}

void MailController::showServerStatus(const std::string& title, std::string_view text) {
  if (!windows_.setServerStatus(title, text)) {
    logAction("Was trying to display " + std::string(text) + " for server " + title);
  }
}

void MailController::onNoMail(const std::string& title) { showServerStatus(title, "No messages"); }

void MailController::onProgress(const std::string& text) { windows_.setStatusText(text); }

void MailController::onDeletedSpam(int count) {
  totalSpamCount_ += count;
  if (currentAccount_) tally_.failures.countDeleted(*currentAccount_, count);
}

void MailController::onPopError(const std::string& title, const std::string& text) {
  const std::string shown = withoutLineEnds(text);
  windows_.setStatusText(shown);
  windows_.showStatusError(true);
  showServerStatus(title, shown);
}

void MailController::onCancelled(const std::string& title) {
  showServerStatus(title, "Communications cancelled");
  currentAccount_.reset();
  onAccountFinished();
}

// The session has reported why first: the silence, or what went before it,
// such as a refused connection.
void MailController::onTimedOut(const std::string&, int) {
  showFailure(sessionAccount_);
  onAccountFinished();
}

void MailController::onNoMailServer() { onAccountFinished(); }

void MailController::onNoConnection() {
  showPassIdle();
  resumeAutoScan();
  tray_.showError();
  windows_.showTrayError("No internet connection");
  windows_.setStatusText("No Internet Connection");
  windows_.showStatusError(true);
}

void MailController::onFailure(const pop3::Pop3Failure& failure) {
  tally_.failures.add(failure);
  showFailure(failure.account);
  // A server that can't be reached for a reason of its own gets the box; the time-out ends the session.
  if (failure.socketError &&
      (failure.kind == pop3::FailureKind::ConnectionRefused || failure.kind == pop3::FailureKind::ConnectionFailed)) {
    windows_.showConnectionError("Error while connecting to server:\r\n[" +
                                 std::to_string(protocol::number(*failure.socketError)) + "] " + failure.detail);
  }
}

void MailController::showFailure(int account) {
  if (!tally_.failures.failed(account)) return;
  const std::string cause = tally_.failures.cause(account);
  showServerStatus(accountTitle(ctx_.settings, account), cause);
  windows_.setStatusText(accountName(ctx_.settings, account) + ": " + cause);
}

void MailController::onFinished(const std::string&, long) {
  windows_.setStatusText("");
  windows_.showStatusError(false);
  // Again with the account's final counts.
  if (currentAccount_) showFailure(*currentAccount_);
  onAccountFinished();
}

}  // namespace vonel
