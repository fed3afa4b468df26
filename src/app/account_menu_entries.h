#pragma once
// The accounts the toolbar's drop-down menus offer: those in use, each with
// the name a user knows it by.
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "core/settings/settings_store.h"

namespace vonel {

struct AccountMenuEntry {
  int index = 0;     // the account's number in the settings keys (TITLE<index>)
  std::string name;  // Windows-1252 bytes
};

// TITLE<n>; without a title "Account " + (n+1) + " " + UNAME<n>, numbered as
// accountTitle numbers accounts, and by number alone when there is no user
// name either.
std::vector<AccountMenuEntry> accountMenuEntries(const SettingsStore& settings);

// The account of a menu entry's key such as "Account3", "DLM3" or "DELALL3"
// for the given prefix; none for another prefix or a number out of range.
std::optional<int> accountOfEntry(const QString& entryKey, const QString& prefix);

}  // namespace vonel
