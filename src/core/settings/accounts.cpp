#include "core/settings/accounts.h"

#include "core/settings/scramble.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {

std::string accountKey(std::string_view name, int account) { return std::string(name) + std::to_string(account); }

namespace {

std::string certificateKey(MailService service, int account) {
  return accountKey(service == MailService::Pop3 ? "POPCERT" : "SMTPCERT", account);
}

// Kept out of the file while at their defaults, so that files of users who
// never touch them stay byte for byte as they were.
void setUnlessDefault(SettingsStore& settings, const std::string& key, const Value& value, bool isDefault) {
  if (!isDefault || settings.isSettingPresent(key)) settings.set(key, value);
}

}  // namespace

bool Account::polled() const { return !text::trimView(server).empty(); }

TransportSecurity Account::security(MailService service) const {
  return service == MailService::Pop3 ? popSecurity : smtpSecurity;
}

const CertificatePin& Account::certificate(MailService service) const {
  return service == MailService::Pop3 ? popCertificate : smtpCertificate;
}

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
  a.popSecurity = transportSecurity(settings.get(accountKey("POPSECURITY", n), Value(0)).numberOr(0));
  a.popPort = number("POPPORT", defaultPort(MailService::Pop3, a.popSecurity));
  a.popCertificate = CertificatePin::fromStored(settings.get(certificateKey(MailService::Pop3, n), Value("")).text());
  a.pipelining = flag("POPPIPELINING", true);
  a.smtp = text("SMTP");
  a.smtpSecurity = transportSecurity(settings.get(accountKey("SMTPSECURITY", n), Value(0)).numberOr(0));
  a.smtpPort = number("SMTPPORT", defaultPort(MailService::Smtp, a.smtpSecurity));
  a.smtpStandard = flag("SMTPSTANDARD", false);
  a.smtpCertificate = CertificatePin::fromStored(settings.get(certificateKey(MailService::Smtp, n), Value("")).text());
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
  setUnlessDefault(settings, accountKey("POPPIPELINING", n), Value(a.pipelining), a.pipelining);
  setUnlessDefault(settings, accountKey("POPSECURITY", n), Value(static_cast<int>(a.popSecurity)),
                   a.popSecurity == TransportSecurity::Plain);
  storeCertificatePin(settings, n, MailService::Pop3, a.popCertificate);
  settings.set(accountKey("SMTP", n), Value(a.smtp));
  settings.set(accountKey("SMTPPORT", n), Value(a.smtpPort));
  setUnlessDefault(settings, accountKey("SMTPSECURITY", n), Value(static_cast<int>(a.smtpSecurity)),
                   a.smtpSecurity == TransportSecurity::Plain);
  setUnlessDefault(settings, accountKey("SMTPSTANDARD", n), Value(a.smtpStandard), !a.smtpStandard);
  storeCertificatePin(settings, n, MailService::Smtp, a.smtpCertificate);
  settings.set(accountKey("SMTPAuth", n), Value(a.smtpAuth));
  settings.set(accountKey("SMTPUNAME", n), Value(a.smtpUserName));
  settings.set(accountKey("SMTPPWD", n), Value(encrypt(a.smtpPassword)));
  settings.set(accountKey("REPLYADDRESS", n), Value(a.replyAddress));
  settings.set(accountKey("DISPLAYNAME", n), Value(a.displayName));
  settings.set("EXCLUSIVE0_" + std::to_string(n), Value(a.exclusive0));
  settings.set("EXCLUSIVE1_" + std::to_string(n), Value(a.exclusive1));
}

void storeCertificatePin(SettingsStore& settings, int account, MailService service, const CertificatePin& pin) {
  const std::string key = certificateKey(service, account);
  if (pin.fingerprint.empty()) {
    settings.deleteSettingByName(key);
  } else {
    settings.set(key, Value(pin.stored()));
  }
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
