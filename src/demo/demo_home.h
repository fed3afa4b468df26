#pragma once
// The demo's home: a fresh folder in the temporary folder
// ("vonel-demo-XXXXXX", only its owner may enter) filled through the
// program's own writers, so the program finds there what a user's set-up
// would hold. A file names the process that owns it; homes whose owner is
// gone are removed by the next demo.
#include <QDate>
#include <QString>
#include <filesystem>
#include <optional>

namespace vonel::demo {

struct SandboxPorts {
  int pop3 = 0;
  int smtp = 0;
};

class DemoHome {
 public:
  // Makes the folder and names this process its owner; nothing and the
  // reason in `error` when the temporary folder can't hold it.
  static std::optional<DemoHome> create(const std::filesystem::path& temporaryFolder, QString& error);
  // Removes the demo homes of the folder whose owner process has ended.
  static void removeOrphans(const std::filesystem::path& temporaryFolder);

  const std::filesystem::path& folder() const { return folder_; }
  std::filesystem::path sandboxFolder() const { return folder_ / "Sandbox"; }

  // Writes the sample mail, the two mailboxes, the settings, the rules and
  // lists, and trains the filter on the stored mail. Throws on a failed write.
  void fill(const SandboxPorts& ports, const QDate& day) const;
  // Removes the whole folder.
  void remove() const;

 private:
  explicit DemoHome(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::filesystem::path folder_;
};

}  // namespace vonel::demo
