#pragma once
// What went wrong in one pass over the servers, an account at a time, and
// how it reads: a line on the error stream, the status bar, the account's row.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/settings/accounts.h"
#include "protocol/pop3/pop3_failure.h"

namespace vonel {

class PassFailures {
 public:
  void clear();
  // An account's first failure is its cause; what follows from it, such as
  // the time-out after a refused connection, is not reported again. Each
  // message that could not be stored is counted.
  void add(const pop3::Pop3Failure& failure);
  void countStored(int account);
  void countDeleted(int account, long count);

  bool empty() const;
  bool failed(int account) const;
  // "login refused: -ERR [AUTH] Authentication failed."
  std::string cause(int account) const;
  // "Account 2 (Work): login refused: ...", for each failed account in order.
  std::vector<std::string> lines(const SettingsStore& settings) const;
  // The lines as one, for the status bar.
  std::string summary(const SettingsStore& settings) const;

 private:
  struct AccountTally {
    std::optional<pop3::Pop3Failure> failure;
    long stored = 0;
    long notStored = 0;
    long deletedOnServer = 0;
  };
  AccountTally* tally(int account);

  std::array<AccountTally, kAccountCount> accounts_{};
};

// "Account 2 (Work)": the number of the settings keys and of --account, and
// the account's own title when it has one.
std::string accountName(const SettingsStore& settings, int account);

}  // namespace vonel
