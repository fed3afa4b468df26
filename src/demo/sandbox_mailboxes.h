#pragma once
// The sandbox's mail in files under the home's "Sandbox" folder: one folder
// per mailbox ("Sandbox/Home/0001.eml", ...), the name of each file its
// unique id, and "Sandbox/outgoing" for mail to anyone else. Used from the
// sandbox's thread only.
#include <filesystem>

#include "demo/maildrop.h"
#include "demo/smtp_sandbox_session.h"

namespace vonel::sandbox {

class SandboxMailboxes final : public Maildrop, public Delivery {
 public:
  explicit SandboxMailboxes(std::filesystem::path sandboxFolder) : folder_(std::move(sandboxFolder)) {}

  static std::filesystem::path outgoingFolder(const std::filesystem::path& sandboxFolder) {
    return sandboxFolder / "outgoing";
  }

  std::optional<std::vector<Mail>> open(std::string_view user, std::string_view password) override;
  void remove(std::string_view user, const std::vector<std::string>& uids) override;
  bool deliver(const Envelope& envelope) override;

 private:
  std::filesystem::path mailboxOf(std::string_view user) const;

  std::filesystem::path folder_;
};

// The next free "NNNN.eml" of a folder, after the highest number there.
std::filesystem::path nextMailFile(const std::filesystem::path& folder);

}  // namespace vonel::sandbox
