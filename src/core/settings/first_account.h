#pragma once
// The first account of a new installation, as the account wizard sets it up:
// account 0 with the wizard's answers and no password, which the first scan
// asks for.
#include <string>

#include "core/settings/settings_store.h"

namespace vonel {

struct FirstAccount {
  std::string displayName;  // the name in the From: field
  std::string replyAddress;
  std::string server;  // incoming, POP3
  std::string smtp;    // outgoing
  std::string userName;
  std::string title;
};

// Stores account 0 in the order in which a new settings file holds it:
// PWD0, UNAME0, SERVER0, TITLE0, CHECK0, SMTP0, REPLYADDRESS0, DISPLAYNAME0.
// Line breaks and NULs pasted into an answer are dropped, as a settings value
// can't hold them.
void storeFirstAccount(SettingsStore& settings, const FirstAccount& account);

}  // namespace vonel
