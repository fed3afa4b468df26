#pragma once
// Puts TLS under an account's connection: TLS 1.2 or later, the system's
// certificate authorities (and VONEL_EXTRA_CA, a PEM file a test adds), the
// host name checked by Qt. A certificate Qt rejects is still accepted when
// the user trusted exactly that certificate for that account and host;
// anything else fails the handshake before a credential is sent, and the
// certificate is kept for the windows to show.
#include <QObject>
#include <QSslSocket>
#include <optional>
#include <string>

#include "app/untrusted_certificate.h"
#include "core/settings/accounts.h"

namespace vonel {

class SecureChannel final : public QObject {
  Q_OBJECT

 public:
  SecureChannel(QSslSocket& socket, MailService service);

  // Connects the socket for the account: TLS from the first byte, or plain
  // (for no security and for an upgrade later on).
  void open(const Account& account, const std::string& host, int port);
  void startTls();
  TransportSecurity security() const { return security_; }

  // The text a failed handshake reports: the trust failure, else Qt's own.
  std::string failureText() const;
  const std::optional<UntrustedCertificate>& untrusted() const { return untrusted_; }

 signals:
  void certificateUntrusted(const vonel::UntrustedCertificate& certificate);

 private:
  void onSslErrors(const QList<QSslError>& errors);

  QSslSocket& socket_;
  const MailService service_;
  TransportSecurity security_ = TransportSecurity::Plain;
  int account_ = 0;
  std::string host_;
  CertificatePin pin_;
  std::optional<UntrustedCertificate> untrusted_;
};

// The TLS settings every connection starts from.
QSslConfiguration secureConfiguration();
// "AB:CD:..." of the certificate's SHA-256.
std::string certificateFingerprint(const QSslCertificate& certificate);
// Subject, issuer, validity and fingerprint, one a line, then `errors`.
std::string certificateDetails(const QSslCertificate& certificate, const QString& errors);

}  // namespace vonel
