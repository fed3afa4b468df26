#pragma once
// What the running pass has seen, from its start.
#include <array>
#include <string>

#include "app/pass_failures.h"
#include "core/message/message_list.h"
#include "core/settings/accounts.h"

namespace vonel {

struct PassTally {
  // The listed headers, by Message-ID, made unique within the pass.
  message::MessageList messages;
  // Every header reported, listed or not: the row number in the list.
  long listed = 0;
  std::array<long, kAccountCount> byAccount{};
  // The server each account was polled on; kept from pass to pass.
  std::array<std::string, kAccountCount> serverNames;
  // A good message was listed: the chime at the end of the pass is due.
  bool passedMail = false;
  // Why accounts did not go through, with what was stored and deleted on each.
  PassFailures failures;

  // Empties all but the server names for a new pass.
  void restart() {
    passedMail = false;
    while (messages.count() > 0) messages.remove(std::size_t{1});
    listed = 0;
    byAccount.fill(0);
    failures.clear();
  }
};

}  // namespace vonel
