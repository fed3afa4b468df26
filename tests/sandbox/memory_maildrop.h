#pragma once
// A sandbox mailbox in memory for the session tests: one user, and the
// deletions a session commits.
#include <string>
#include <vector>

#include "demo/maildrop.h"

namespace vonel::sandbox {

class MemoryMaildrop final : public Maildrop {
 public:
  std::vector<Mail> mail;
  std::vector<std::string> removed;
  int opened = 0;

  std::optional<std::vector<Mail>> open(std::string_view user, std::string_view password) override {
    if (user != "jo" || password != "secret") return std::nullopt;
    ++opened;
    return mail;
  }
  void remove(std::string_view, const std::vector<std::string>& uids) override {
    removed.insert(removed.end(), uids.begin(), uids.end());
  }
};

}  // namespace vonel::sandbox
