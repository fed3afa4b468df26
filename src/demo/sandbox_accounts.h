#pragma once
// The two mailboxes the sandbox serves, as the home's settings name them.
#include <array>
#include <string_view>

namespace vonel::sandbox {

struct SandboxAccount {
  std::string_view title;  // also the name of its folder under Sandbox/
  std::string_view user;
  std::string_view password;
  std::string_view address;
  std::string_view displayName;
};

inline constexpr std::array<SandboxAccount, 2> kSandboxAccounts{{
    {"Home", "robin", "harbour-home", "robin@example.org", "Robin Ashdown"},
    {"Work", "rashdown", "river-work", "r.ashdown@example.com", "Robin Ashdown"},
}};

}  // namespace vonel::sandbox
