#include "core/settings/accounts.h"

#include "core/settings/scramble.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {

std::string accountKey(std::string_view name, int account) { return std::string(name) + std::to_string(account); }

bool Account::polled() const { return !text::trimView(server).empty(); }

Account readAccount(const SettingsStore& settings, int n, AccountReader reader) {
  const bool unsetFlag = reader == AccountReader::Session;
  auto text = [&](std::string_view name) { return settings.get(accountKey(name, n), Value("")).text(); };
  auto flag = [&](std::string_view name, bool fallback) {
    return settings.get(accountKey(name, n), Value(fallback)).flag();
  };
  auto number = [&](std::string_view name, int fallback) {
    const double value = settings.get(accountKey(name, n), Value(fallback)).numberOr(fallback);
    return value > 0 ? text::toWhole<int>(value) : fallback;
  };

  Account a;
  a.index = n;
  a.title = accountTitle(settings, n);
  a.server = text("SERVER");
  a.userName = text("UNAME");
  a.password = decrypt(text("PWD"));
  a.check = flag("CHECK", unsetFlag);
  a.stopAtLast = flag("STOPATLAST", unsetFlag);
  a.popPort = number("POPPORT", 110);
  a.pipelining = flag("POPPIPELINING", true);
  a.smtp = text("SMTP");
  a.smtpPort = number("SMTPPORT", 25);
  a.smtpAuth = flag("SMTPAuth", false);
  a.smtpUserName = text("SMTPUNAME");
  a.smtpPassword = decrypt(text("SMTPPWD"));
  a.replyAddress = text("REPLYADDRESS");
  a.displayName = text("DISPLAYNAME");
  a.exclusive0 = settings.get("EXCLUSIVE0_" + std::to_string(n), Value("")).text();
  a.exclusive1 = settings.get("EXCLUSIVE1_" + std::to_string(n), Value("")).text();
  return a;
}

void writeAccount(SettingsStore& settings, const Account& a) {
  const int n = a.index;
  settings.set(accountKey("TITLE", n), Value(a.title));
  settings.set(accountKey("SERVER", n), Value(a.server));
  settings.set(accountKey("UNAME", n), Value(a.userName));
  settings.set(accountKey("PWD", n), Value(encrypt(a.password)));
  settings.set(accountKey("CHECK", n), Value(a.check));
  settings.set(accountKey("STOPATLAST", n), Value(a.stopAtLast));
  settings.set(accountKey("POPPORT", n), Value(a.popPort));
  // Written once it differs from its default, so files of users who never
  // touch it stay as they were.
  if (!a.pipelining || settings.isSettingPresent(accountKey("POPPIPELINING", n))) {
    settings.set(accountKey("POPPIPELINING", n), Value(a.pipelining));
  }
  settings.set(accountKey("SMTP", n), Value(a.smtp));
  settings.set(accountKey("SMTPPORT", n), Value(a.smtpPort));
  settings.set(accountKey("SMTPAuth", n), Value(a.smtpAuth));
  settings.set(accountKey("SMTPUNAME", n), Value(a.smtpUserName));
  settings.set(accountKey("SMTPPWD", n), Value(encrypt(a.smtpPassword)));
  settings.set(accountKey("REPLYADDRESS", n), Value(a.replyAddress));
  settings.set(accountKey("DISPLAYNAME", n), Value(a.displayName));
  settings.set("EXCLUSIVE0_" + std::to_string(n), Value(a.exclusive0));
  settings.set("EXCLUSIVE1_" + std::to_string(n), Value(a.exclusive1));
}

std::string accountTitle(const SettingsStore& settings, int n) {
  return settings.get(accountKey("TITLE", n), Value("Account " + std::to_string(n + 1))).text();
}

std::optional<int> firstAccount(const SettingsStore& settings) {
  for (int n = 0; n < kAccountCount; ++n) {
    if (!settings.get(accountKey("REPLYADDRESS", n), Value("")).text().empty()) return n;
  }
  return std::nullopt;
}

}  // namespace vonel
