#include "core/settings/first_account.h"

#include <algorithm>

#include "core/settings/accounts.h"
#include "core/settings/scramble.h"

namespace vonel {
namespace {

std::string singleLine(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
  return text;
}

}  // namespace

void storeFirstAccount(SettingsStore& settings, const FirstAccount& account) {
  constexpr int kFirst = 0;
  auto store = [&](std::string_view name, const Value& value) { settings.set(accountKey(name, kFirst), value); };
  store("PWD", Value(encrypt("")));
  store("UNAME", Value(singleLine(account.userName)));
  store("SERVER", Value(singleLine(account.server)));
  store("TITLE", Value(singleLine(account.title)));
  store("CHECK", Value(true));
  store("SMTP", Value(singleLine(account.smtp)));
  store("REPLYADDRESS", Value(singleLine(account.replyAddress)));
  store("DISPLAYNAME", Value(singleLine(account.displayName)));
}

}  // namespace vonel
