#include "core/settings/accounts.h"

#include "core/settings/scramble.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {

std::string accountKey(std::string_view name, int account) { return std::string(name) + std::to_string(account); }

bool Account::polled() const { return !text::trimView(Server).empty(); }

Account readAccount(const cSHAREDSettings& settings, int n, AccountReader reader) {
  const bool unsetFlag = reader == AccountReader::Session;
  auto text = [&](std::string_view name) { return settings.RetrieveSetting(accountKey(name, n), Value("")).text(); };
  auto flag = [&](std::string_view name, bool fallback) {
    return settings.RetrieveSetting(accountKey(name, n), Value(fallback)).flag();
  };
  auto number = [&](std::string_view name, int fallback) {
    const double value = settings.RetrieveSetting(accountKey(name, n), Value(fallback)).numberOr(fallback);
    return value > 0 ? text::toWhole<int>(value) : fallback;
  };

  Account a;
  a.index = n;
  a.Title = AccountTitle(settings, n);
  a.Server = text("SERVER");
  a.UserName = text("UNAME");
  a.Password = Decrypt(text("PWD"));
  a.Check = flag("CHECK", unsetFlag);
  a.StopAtLast = flag("STOPATLAST", unsetFlag);
  a.PopPort = number("POPPORT", 110);
  a.Smtp = text("SMTP");
  a.SmtpPort = number("SMTPPORT", 25);
  a.SmtpAuth = flag("SMTPAuth", false);
  a.SmtpUserName = text("SMTPUNAME");
  a.SmtpPassword = Decrypt(text("SMTPPWD"));
  a.ReplyAddress = text("REPLYADDRESS");
  a.DisplayName = text("DISPLAYNAME");
  a.Exclusive0 = settings.RetrieveSetting("EXCLUSIVE0_" + std::to_string(n), Value("")).text();
  a.Exclusive1 = settings.RetrieveSetting("EXCLUSIVE1_" + std::to_string(n), Value("")).text();
  return a;
}

void writeAccount(cSHAREDSettings& settings, const Account& a) {
  const int n = a.index;
  settings.StoreSetting(accountKey("TITLE", n), Value(a.Title));
  settings.StoreSetting(accountKey("SERVER", n), Value(a.Server));
  settings.StoreSetting(accountKey("UNAME", n), Value(a.UserName));
  settings.StoreSetting(accountKey("PWD", n), Value(Encrypt(a.Password)));
  settings.StoreSetting(accountKey("CHECK", n), Value(a.Check));
  settings.StoreSetting(accountKey("STOPATLAST", n), Value(a.StopAtLast));
  settings.StoreSetting(accountKey("POPPORT", n), Value(a.PopPort));
  settings.StoreSetting(accountKey("SMTP", n), Value(a.Smtp));
  settings.StoreSetting(accountKey("SMTPPORT", n), Value(a.SmtpPort));
  settings.StoreSetting(accountKey("SMTPAuth", n), Value(a.SmtpAuth));
  settings.StoreSetting(accountKey("SMTPUNAME", n), Value(a.SmtpUserName));
  settings.StoreSetting(accountKey("SMTPPWD", n), Value(Encrypt(a.SmtpPassword)));
  settings.StoreSetting(accountKey("REPLYADDRESS", n), Value(a.ReplyAddress));
  settings.StoreSetting(accountKey("DISPLAYNAME", n), Value(a.DisplayName));
  settings.StoreSetting("EXCLUSIVE0_" + std::to_string(n), Value(a.Exclusive0));
  settings.StoreSetting("EXCLUSIVE1_" + std::to_string(n), Value(a.Exclusive1));
}

std::string AccountTitle(const cSHAREDSettings& settings, int n) {
  return settings.RetrieveSetting(accountKey("TITLE", n), Value("Account " + std::to_string(n + 1))).text();
}

int FirstAccount(const cSHAREDSettings& settings) {
  for (int n = 0; n < kAccountCount; ++n) {
    if (!settings.RetrieveSetting(accountKey("REPLYADDRESS", n), Value("")).text().empty()) return n;
  }
  return -1;
}

}  // namespace vonel
