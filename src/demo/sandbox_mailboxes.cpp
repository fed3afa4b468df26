#include "demo/sandbox_mailboxes.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"
#include "demo/sandbox_accounts.h"

namespace vonel::sandbox {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> mailFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".eml") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

fs::path nextMailFile(const fs::path& folder) {
  const std::vector<fs::path> files = mailFiles(folder);
  const int last = files.empty() ? 0 : std::atoi(files.back().stem().string().c_str());
  char name[24];
  std::snprintf(name, sizeof name, "%04d.eml", last + 1);
  return folder / name;
}

fs::path SandboxMailboxes::mailboxOf(std::string_view user) const {
  for (const SandboxAccount& account : kSandboxAccounts) {
    if (account.user == user) return folder_ / account.title;
  }
  return {};
}

std::optional<std::vector<Mail>> SandboxMailboxes::open(std::string_view user, std::string_view password) {
  const auto account = std::find_if(kSandboxAccounts.begin(), kSandboxAccounts.end(),
                                    [&](const SandboxAccount& a) { return a.user == user; });
  if (account == kSandboxAccounts.end() || account->password != password) return std::nullopt;
  std::vector<Mail> mail;
  for (const fs::path& file : mailFiles(folder_ / account->title)) {
    try {
      mail.push_back({file.stem().string(), files::loadTextFile(file)});
    } catch (...) {
      // A file removed under the server is simply no longer in the mailbox.
    }
  }
  return mail;
}

void SandboxMailboxes::remove(std::string_view user, const std::vector<std::string>& uids) {
  const fs::path mailbox = mailboxOf(user);
  std::error_code error;
  for (const std::string& uid : uids) fs::remove(mailbox / (uid + ".eml"), error);
}

bool SandboxMailboxes::deliver(const Envelope& envelope) {
  try {
    bool outside = false;
    for (const std::string& recipient : envelope.recipients) {
      const auto account = std::find_if(kSandboxAccounts.begin(), kSandboxAccounts.end(),
                                        [&](const SandboxAccount& a) { return text::equalsNoCase(a.address, recipient); });
      if (account == kSandboxAccounts.end()) {
        outside = true;
        continue;
      }
      const fs::path mailbox = folder_ / account->title;
      fs::create_directories(mailbox);
      files::writeTextFile(nextMailFile(mailbox), envelope.bytes, files::Durability::Unsynced);
    }
    if (outside) {
      const fs::path outgoing = outgoingFolder(folder_);
      fs::create_directories(outgoing);
      files::writeTextFile(nextMailFile(outgoing), envelope.bytes, files::Durability::Unsynced);
    }
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace vonel::sandbox
