#include "app/account_menu_entries.h"

#include "core/settings/accounts.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

std::string menuName(const SettingsStore& settings, int n) {
  const std::string title = settings.get(accountKey("TITLE", n), Value("")).text();
  // A title of blanks would leave an entry nobody can tell apart.
  if (!text::trimView(title).empty()) return title;
  const std::string userName = settings.get(accountKey("UNAME", n), Value("")).text();
  std::string name = "Account " + std::to_string(n + 1);
  if (!userName.empty()) name += " " + userName;
  return name;
}

}  // namespace

std::vector<AccountMenuEntry> accountMenuEntries(const SettingsStore& settings) {
  std::vector<AccountMenuEntry> entries;
  for (int n = 0; n < kAccountCount; ++n) {
    if (!readAccount(settings, n, AccountReader::Session).inUse()) continue;
    entries.push_back({n, menuName(settings, n)});
  }
  return entries;
}

std::optional<int> accountOfEntry(const QString& entryKey, const QString& prefix) {
  if (!entryKey.startsWith(prefix)) return std::nullopt;
  bool ok = false;
  const int account = entryKey.mid(prefix.size()).toInt(&ok);
  if (!ok || account < 0 || account >= kAccountCount) return std::nullopt;
  return account;
}

}  // namespace vonel
