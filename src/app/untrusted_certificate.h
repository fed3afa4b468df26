#pragma once
// A certificate a server showed that the account doesn't trust: what the
// windows show and what Trust stores.
#include <string>

#include "core/settings/transport_security.h"

namespace vonel {

struct UntrustedCertificate {
  MailService service = MailService::Pop3;
  int account = 0;
  std::string host;
  std::string fingerprint;  // SHA-256 of the leaf, "AB:CD:..."
  std::string details;      // subject, issuer, dates, fingerprint and errors, one a line
  std::string failure;      // what the session reports
  bool changed = false;     // the account trusted another certificate of this host
};

}  // namespace vonel
