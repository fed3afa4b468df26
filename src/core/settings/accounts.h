#pragma once
// Up to twenty mail accounts, kept as numbered keys of the general settings
// (SERVER0, TITLE12, ...). An account is in use when it has a reply address
// and is polled when it has a POP3 server.
#include <optional>
#include <string>
#include <string_view>

#include "core/settings/settings_store.h"
#include "core/settings/transport_security.h"

namespace vonel {

inline constexpr int kAccountCount = 20;

// The settings key of one account's field: the name and the plain number.
std::string accountKey(std::string_view name, int account);

// Two readers give never-written CHECK and STOPATLAST keys different
// defaults: a mail session takes them as true, the settings dialog as false.
enum class AccountReader { Session, Dialog };

struct Account {
  int index = 0;
  std::string title;
  std::string server;
  std::string userName;
  std::string password;  // plain in memory, scrambled in the file
  bool check = true;
  bool stopAtLast = true;
  int popPort = 110;  // without POPPORT<n>: 995 with TLS, else 110
  TransportSecurity popSecurity = TransportSecurity::Plain;
  CertificatePin popCertificate;
  // Header scans send their commands ahead when the server allows it.
  bool pipelining = true;
  std::string smtp;
  int smtpPort = 25;  // without SMTPPORT<n>: 465 with TLS, 587 with STARTTLS, else 25
  TransportSecurity smtpSecurity = TransportSecurity::Plain;
  // The standard SMTP dialogue (multi-line replies, STARTTLS, AUTH PLAIN or
  // LOGIN) instead of the one that takes 250 throughout.
  bool smtpStandard = false;
  CertificatePin smtpCertificate;
  bool smtpAuth = false;
  std::string smtpUserName;
  std::string smtpPassword;
  std::string replyAddress;
  std::string displayName;
  std::string exclusive0;
  std::string exclusive1;

  TransportSecurity security(MailService service) const;
  const CertificatePin& certificate(MailService service) const;
  bool inUse() const { return !replyAddress.empty(); }
  bool polled() const;
};

Account readAccount(const SettingsStore& settings, int account, AccountReader reader);
void writeAccount(SettingsStore& settings, const Account& account);

// Stores the certificate trusted for one server of the account, or forgets
// it when the pin is empty.
void storeCertificatePin(SettingsStore& settings, int account, MailService service, const CertificatePin& pin);

// The name shown for an account: TITLE<n>, or "Account " + (n+1).
std::string accountTitle(const SettingsStore& settings, int account);

// The lowest account in use; none when no account has a reply address.
std::optional<int> firstAccount(const SettingsStore& settings);

// Asks for a password the file doesn't hold.
class PasswordPrompt {
 public:
  virtual ~PasswordPrompt() = default;
  virtual std::string askPassword(std::string_view title, std::string_view prompt, bool& cancelled, bool& save) = 0;
};

}  // namespace vonel
