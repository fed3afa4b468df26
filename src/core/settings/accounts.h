#pragma once
// Up to twenty mail accounts, kept as numbered keys of the general settings
// (SERVER0, TITLE12, ...). An account is in use when it has a reply address
// and is polled when it has a POP3 server.
#include <string>
#include <string_view>

#include "core/settings/settings.h"

namespace vonel {

inline constexpr int kAccountCount = 20;

// The settings key of one account's field: the name and the plain number.
std::string accountKey(std::string_view name, int account);

// Two readers give never-written CHECK and STOPATLAST keys different
// defaults: a mail session takes them as true, the settings dialog as false.
enum class AccountReader { Session, Dialog };

struct Account {
  int index = 0;
  std::string Title;
  std::string Server;
  std::string UserName;
  std::string Password;  // plain in memory, scrambled in the file
  bool Check = true;
  bool StopAtLast = true;
  int PopPort = 110;
  std::string Smtp;
  int SmtpPort = 25;
  bool SmtpAuth = false;
  std::string SmtpUserName;
  std::string SmtpPassword;
  std::string ReplyAddress;
  std::string DisplayName;
  std::string Exclusive0;
  std::string Exclusive1;

  bool inUse() const { return !ReplyAddress.empty(); }
  bool polled() const;
};

Account readAccount(const cSHAREDSettings& settings, int account, AccountReader reader);
void writeAccount(cSHAREDSettings& settings, const Account& account);

// The name shown for an account: TITLE<n>, or "Account " + (n+1).
std::string AccountTitle(const cSHAREDSettings& settings, int account);

// The lowest account in use, or -1 when there is none.
int FirstAccount(const cSHAREDSettings& settings);

// Asks for a password the file doesn't hold.
class PasswordPrompt {
 public:
  virtual ~PasswordPrompt() = default;
  virtual std::string getpassword(std::string_view title, std::string_view prompt, bool& cancelled, bool& save) = 0;
};

}  // namespace vonel
