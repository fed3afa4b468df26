#include "demo/demo_home.h"

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <csignal>
#include <cstring>
#include <string>
#include <system_error>
#include <unistd.h>

#include <QLocalServer>

#include "app/single_instance.h"
#include "core/bayes/bayes_filter.h"
#include "core/bayes/bayes_trainer.h"
#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/interaction/progress.h"
#include "core/rules/address_list.h"
#include "core/rules/rule_file.h"
#include "core/settings/accounts.h"
#include "core/time/clock.h"
#include "demo/sample_mail.h"
#include "demo/sandbox_accounts.h"

namespace vonel::demo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPrefix = "vonel-demo-";
constexpr std::string_view kOwnerFile = "owner.pid";
// A home without its owner file is a start caught between making the
// folder and writing the file; only one older than this is left over.
constexpr auto kUnownedGrace = std::chrono::minutes(1);

// The demo is thrown away: its files need not wait for the disk.
void writeFile(const fs::path& file, std::string_view bytes) {
  files::writeTextFile(file, bytes, files::Durability::Unsynced);
}

rules::FilterRule rule(std::string name, std::string_view field, std::string value, std::string_view action,
                       std::string dest) {
  rules::FilterRule r;
  r.filterName = std::move(name);
  r.setFields(1, std::string(field));
  r.setComparisons(1, std::string(rules::kContains));
  r.setStrings(1, std::move(value));
  r.action = action;
  r.destFolder = std::move(dest);
  r.ruleCount = 1;
  r.stopProcessing = true;
  return r;
}

void writeRules(AppContext& context) {
  const rules::RuleSet rules{
      rule("Lottery winners", rules::field::kSubject, "lottery", rules::action::kDelete, ""),
      rule("Mailing lists", rules::field::kFrom, "@lists.example.net", rules::action::kMoveToFolder, "\\Lists"),
      rule("Receipts", rules::field::kSubject, "receipt", rules::action::kTag, "Receipts"),
  };
  if (!rules::saveFilters(context.folders.filterFolderPath / "Rules.txt", rules, false, context.log)) {
    throw std::runtime_error("could not write Rules.txt");
  }
}

void writeLists(AppContext& context) {
  const struct {
    const char* file;
    std::initializer_list<const char*> entries;
  } lists[] = {
      {"Blocked.txt", {"deals@bargain-mail.example.com", "promo@cheap-flights.example.com"}},
      {"BlockedDomains.txt", {"offers.example.net", "spam-farm.example.com"}},
      {"BlockedRecip.txt", {"everyone@example.org"}},
      {"BlockedRecipDomains.txt", {"old-isp.example.net"}},
      {"Ignore.txt", {"robin.old@example.org"}},
  };
  for (const auto& list : lists) {
    rules::AddressList addresses(context.folders.filterFolderPath / list.file, context.log, context.prompt);
    for (const char* entry : list.entries) addresses.add(entry);
  }
}

// A subject with one of these words is spam whatever its other words say.
void writeBlacklist(const AppContext& context) {
  writeFile(context.folders.dataFolderPath / "BlacklistedWords.txt", "viagra\r\n");
}

void writeSettings(AppContext& context, const SandboxPorts& ports) {
  int index = 0;
  for (const sandbox::SandboxAccount& sandboxAccount : sandbox::kSandboxAccounts) {
    Account account;
    account.index = index++;
    account.title = sandboxAccount.title;
    account.server = "127.0.0.1";
    account.popPort = ports.pop3;
    account.userName = sandboxAccount.user;
    account.password = sandboxAccount.password;
    account.smtp = "127.0.0.1";
    account.smtpPort = ports.smtp;
    account.replyAddress = sandboxAccount.address;
    account.displayName = sandboxAccount.displayName;
    writeAccount(context.settings, account);
  }
  context.settings.set("ScanOnStart", Value(true));
  context.settings.set("DisableAutoUpdateCheck", Value(true));
  context.settings.set("DELAY", Value(300));
  if (!context.settings.saveSettings(context.settingsFile())) throw std::runtime_error("could not write Vonel.ini");
}

void writeMail(const AppContext& context, const fs::path& sandboxFolder, const QDate& day) {
  const fs::path folders[] = {sandboxFolder / "Home", sandboxFolder / "Work", context.folders.inboxFolderPath,
                              context.folders.messageFolderPath / "SpamBayes"};
  for (const fs::path& folder : folders) fs::create_directories(folder);
  for (const sandbox::SampleMessage& m : sandbox::sampleMail(day)) {
    writeFile(folders[static_cast<int>(m.box)] / m.name, m.bytes);
  }
}

bool ownerGone(const fs::path& home) {
  try {
    const std::string text = files::loadTextFile(home / kOwnerFile);
    const long pid = std::stol(text);
    return pid > 0 && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
  } catch (...) {
    std::error_code error;
    const auto made = fs::last_write_time(home, error);
    return !error && fs::file_time_type::clock::now() - made > kUnownedGrace;
  }
}

}  // namespace

std::optional<DemoHome> DemoHome::create(const fs::path& temporaryFolder, QString& error) {
  std::string pattern = (temporaryFolder / (std::string(kPrefix) + "XXXXXX")).string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    error = QString::fromLocal8Bit(std::strerror(errno));
    return std::nullopt;
  }
  DemoHome home{fs::path(pattern)};
  try {
    writeFile(home.folder_ / kOwnerFile, std::to_string(::getpid()));
  } catch (const std::exception& e) {
    home.remove();
    error = QString::fromLocal8Bit(e.what());
    return std::nullopt;
  }
  return home;
}

void DemoHome::removeOrphans(const fs::path& temporaryFolder) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(temporaryFolder, error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(kPrefix) || !entry.is_directory(error) || entry.is_symlink(error)) continue;
    if (!ownerGone(entry.path())) continue;
    // A program killed outright leaves its socket in the session's runtime folder.
    QLocalServer::removeServer(SingleInstance::serverNameFor(entry.path()));
    fs::remove_all(entry.path(), error);
  }
}

void DemoHome::fill(const SandboxPorts& ports, const QDate& day) const {
  SystemClock clock;
  ScriptedPrompt prompt;
  AppInfo info;
  info.installFolder = folder_;
  AppContext context(clock, prompt, info);
  // The program's own log begins with its start on this home.
  context.log.loggingOff = true;
  context.folders.readMessageFolder();
  context.folders.readFilterFolder();
  context.folders.readDataFolder();
  writeMail(context, sandboxFolder(), day);
  writeRules(context);
  writeLists(context);
  writeBlacklist(context);
  writeSettings(context, ports);
  bayes::BayesFilter filter(context);
  SilentProgress progress;
  bayes::BayesTrainer trainer(context, filter, progress);
  if (!trainer.generateFilters(bayes::TrainingChoices{})) throw std::runtime_error("could not train the filter");
}

void DemoHome::remove() const {
  std::error_code error;
  fs::remove_all(folder_, error);
}

}  // namespace vonel::demo
