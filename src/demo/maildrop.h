#pragma once
// Where the sandbox's POP3 server finds a user's mail and removes what a
// session deleted. The program's sandbox keeps it in files; the fuzz target
// and the tests in memory.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vonel::sandbox {

struct Mail {
  std::string uid;    // unique in its mailbox, printable, without blanks
  std::string bytes;  // the whole message, lines ended by CR LF
};

class Maildrop {
 public:
  virtual ~Maildrop() = default;
  // The user's mail in its order, or nothing when the password is not the user's.
  virtual std::optional<std::vector<Mail>> open(std::string_view user, std::string_view password) = 0;
  virtual void remove(std::string_view user, const std::vector<std::string>& uids) = 0;
};

}  // namespace vonel::sandbox
