// Mail that an earlier download stored: known by the server's unique ids
// (UIDL), passed over by the walk, and never stored twice.
#include <algorithm>
#include <charconv>

#include "core/store/fetched_ids.h"
#include "core/text/strings.h"
#include "protocol/pop3/pop3_reply_text.h"
#include "protocol/pop3/pop3_session.h"
#include "core/log/log_places.h"

namespace vonel::pop3 {
namespace {

// One line of the UIDL list, "number id", the id of printable characters
// only, as it goes into a file of lines; false for anything else.
bool readUidlLine(std::string_view line, long& number, std::string& id) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return false;
  const auto [end, error] = std::from_chars(line.data(), line.data() + blank, number);
  if (error != std::errc() || end != line.data() + blank) return false;
  std::string_view rest = line.substr(blank + 1);
  rest = rest.substr(0, rest.find(' '));
  if (rest.empty() || !std::all_of(rest.begin(), rest.end(), [](char c) { return c > ' ' && c < '\x7f'; })) {
    return false;
  }
  id.assign(rest);
  return true;
}

}  // namespace

void Pop3Session::onUidlLines(const std::string& packet) {
  // A server without UIDL refuses it, and the walk goes on as it always has.
  if (reply_.replyBuffer.empty() && (packet.empty() || packet.front() != '+')) {
    sendCommand(Pop3State::AwaitTopLines, "TOP 1 1");
    return;
  }
  reply_.inMultiLine = true;
  reply_.replyBuffer += packet;
  if (reply_.replyBuffer.find(kTerminator) == std::string::npos) {
    if (reply_.replyBuffer.size() > kLongestGatheredReply) endWithError(FailureKind::BadReply, "Reply too long");
    return;
  }
  std::unordered_set<std::string> listed;
  long number = 0;
  std::string id;
  for (const std::string& line : text::split(withoutFirstLine(std::move(reply_.replyBuffer)), "\r\n")) {
    if (!readUidlLine(line, number, id)) continue;
    listed.insert(id);
    uniqueIds_[number] = id;
  }
  reply_.replyBuffer.clear();
  matchStoredIds(listed);
  requestNextHeader(true);
}

// Notes which listed messages are in the store, and forgets the ids of
// those the server no longer holds.
void Pop3Session::matchStoredIds(const std::unordered_set<std::string>& listed) {
  // Without the file of stored ids, every message counts as new: stored twice beats lost.
  guardedStep(ctx_.log, log_places::kUIDL, kLogModule, [&] {
    store::FetchedIds fetched(ctx_.folders.dataFolderPath, account_, ctx_.writes);
    for (const auto& [message, uniqueId] : uniqueIds_) {
      if (fetched.contains(uniqueId)) storedBefore_.insert(message);
    }
    fetched.keepOnly(listed);
  });
}

// Passes over the messages an earlier download stored. With delete on
// retrieve it deletes them instead: that download was cut off before its
// QUIT, so the server never carried out their DELE. (A message that an
// ignore rule kept on the server at its download goes then too; it is in
// the store.) True when a command went out.
bool Pop3Session::skipStoredMessages() {
  while (storedBefore_.contains(reply_.currentMessage)) {
    const long n = reply_.currentMessage++;
    if (deleteOnRetrieve()) {
      events_.onProgress("Deleting message " + ofTotal(n) + " (downloaded before)");
      sendCommand(Pop3State::AwaitStoredDeleReply, "DELE " + std::to_string(n));
      return true;
    }
    events_.onProgress("Skipping message " + ofTotal(n) + " (downloaded before)");
  }
  return false;
}

bool Pop3Session::deleteOnRetrieve() const {
  return ctx_.settings.get("DELETEONRETRIEVE", Value(0)).numberOr(0) == 1;
}

}  // namespace vonel::pop3
