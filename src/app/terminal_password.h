#pragma once
// Asks for a missing password on the terminal, without echo; where there is
// no terminal, the question counts as cancelled and the password stays empty.
#include "core/settings/accounts.h"

namespace vonel {

class TerminalPasswordPrompt final : public PasswordPrompt {
 public:
  std::string askPassword(std::string_view title, std::string_view prompt, bool& cancelled, bool& save) override;
};

}  // namespace vonel
