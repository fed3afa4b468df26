#include "app/pass_failures.h"

#include "app/status_line.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

// A server may send a reply of any length; a line names it, not the whole.
constexpr std::size_t kLongestDetail = 200;

// 1042 as "1,042".
std::string grouped(long number) {
  std::string digits = std::to_string(number < 0 ? -number : number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return number < 0 ? "-" + digits : digits;
}

std::string messages(long count) { return grouped(count) + (count == 1 ? " message" : " messages"); }

std::string shortDetail(const std::string& detail) {
  std::string line = text::trim(blanksForBreaks(detail));
  if (line.size() > kLongestDetail) line = line.substr(0, kLongestDetail) + "...";
  return line;
}

}  // namespace

void PassFailures::clear() { accounts_.fill({}); }

PassFailures::AccountTally* PassFailures::tally(int account) {
  return account >= 0 && account < kAccountCount ? &accounts_[static_cast<std::size_t>(account)] : nullptr;
}

void PassFailures::add(const pop3::Pop3Failure& failure) {
  AccountTally* t = tally(failure.account);
  if (!t) return;
  if (!t->failure) t->failure = failure;
  if (failure.kind == pop3::FailureKind::DiskFull || failure.kind == pop3::FailureKind::NotStored) ++t->notStored;
}

void PassFailures::countStored(int account) {
  if (AccountTally* t = tally(account)) ++t->stored;
}

void PassFailures::countDeleted(int account, long count) {
  if (AccountTally* t = tally(account)) t->deletedOnServer += count;
}

bool PassFailures::empty() const {
  for (const AccountTally& t : accounts_) {
    if (t.failure) return false;
  }
  return true;
}

bool PassFailures::failed(int account) const {
  return account >= 0 && account < kAccountCount && accounts_[static_cast<std::size_t>(account)].failure;
}

std::string PassFailures::cause(int account) const {
  if (!failed(account)) return {};
  const AccountTally& t = accounts_[static_cast<std::size_t>(account)];
  const pop3::Pop3Failure& f = *t.failure;
  using pop3::FailureKind;
  switch (f.kind) {
    case FailureKind::LoginRefused: return "login refused: " + shortDetail(f.detail);
    case FailureKind::ServerRefused: return "server refused: " + shortDetail(f.detail);
    case FailureKind::BadReply: return "bad reply from the server: " + shortDetail(f.detail);
    case FailureKind::HostNotFound: return "host not found";
    case FailureKind::ConnectionRefused: return "connection refused";
    case FailureKind::NetworkUnreachable: return "network unreachable";
    case FailureKind::ConnectionFailed: return "could not connect: " + shortDetail(f.detail);
    case FailureKind::TimedOut: return "timed out after " + std::to_string(f.seconds) + " s";
    case FailureKind::ConnectionLost:
      if (f.messageCount == 0) return "connection lost";
      return "connection lost after " + grouped(f.messagesDone) + " of " + messages(f.messageCount);
    case FailureKind::DiskFull:
      return "disk full: " + messages(t.stored) + " stored, " +
             (t.deletedOnServer == 0 ? std::string("nothing") : grouped(t.deletedOnServer)) + " deleted on the server";
    case FailureKind::NotStored:
      return "could not store " + messages(t.notStored) + ", left on the server: " + shortDetail(f.detail);
  }
  return {};
}

std::vector<std::string> PassFailures::lines(const SettingsStore& settings) const {
  std::vector<std::string> all;
  for (int account = 0; account < kAccountCount; ++account) {
    if (failed(account)) all.push_back(accountName(settings, account) + ": " + cause(account));
  }
  return all;
}

std::string PassFailures::summary(const SettingsStore& settings) const {
  std::string joined;
  for (const std::string& line : lines(settings)) joined += (joined.empty() ? "" : "; ") + line;
  return joined;
}

std::string accountName(const SettingsStore& settings, int account) {
  const std::string title = settings.get(accountKey("TITLE", account), Value("")).text();
  const std::string name = "Account " + std::to_string(account);
  return title.empty() ? name : name + " (" + title + ")";
}

}  // namespace vonel
