#pragma once
// How an account's connection to its POP3 or SMTP server is protected, and
// the port each way uses when the account names none.
#include <string>
#include <string_view>

namespace vonel {

// The numbers are what POPSECURITY<n> and SMTPSECURITY<n> hold.
enum class TransportSecurity { Plain = 0, Tls = 1, Upgrade = 2 };

// The two servers of an account.
enum class MailService { Pop3, Smtp };

// A stored number outside 0..2 reads as Plain, so a damaged file never
// sends a password anywhere it wasn't sent before.
TransportSecurity transportSecurity(double stored);

// 110/995 for POP3; 25/465/587 for SMTP.
int defaultPort(MailService service, TransportSecurity security);

// "pop" and "smtp", as the command line names them.
std::string_view serviceName(MailService service);

// A certificate the user trusted for one host: kept as "HOST FINGERPRINT" so
// that the same certificate on another host asks again.
struct CertificatePin {
  std::string host;
  std::string fingerprint;

  bool matches(std::string_view peerHost, std::string_view peerFingerprint) const;
  std::string stored() const;
  static CertificatePin fromStored(std::string_view text);
};

}  // namespace vonel
