#pragma once
// A client's command line as the sandbox reads it: the verb, in capitals,
// and the rest after one blank; and the plain decimal numbers that POP3
// arguments are.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vonel::sandbox {

struct CommandWords {
  std::string verb;
  std::string_view argument;
};

CommandWords splitCommand(std::string_view line);

// Digits only, at most nine of them; nothing for anything else.
std::optional<std::size_t> plainNumber(std::string_view text);

}  // namespace vonel::sandbox
