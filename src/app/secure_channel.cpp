#include "app/secure_channel.h"

#include <QCryptographicHash>
#include <QSslConfiguration>
#include <QStringList>

#include "app/qtext.h"

namespace vonel {
namespace {

QString joinedErrors(const QList<QSslError>& errors) {
  QStringList texts;
  for (const QSslError& error : errors) texts << error.errorString();
  return texts.join("; ");
}

QString names(const QSslCertificate& certificate, bool issuer) {
  const QStringList parts =
      issuer ? certificate.issuerInfo(QSslCertificate::CommonName) : certificate.subjectInfo(QSslCertificate::CommonName);
  const QStringList organisation = issuer ? certificate.issuerInfo(QSslCertificate::Organization)
                                          : certificate.subjectInfo(QSslCertificate::Organization);
  return (parts + organisation).join(", ");
}

}  // namespace

QSslConfiguration secureConfiguration() {
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setProtocol(QSsl::TlsV1_2OrLater);
  configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
  const QString extra = qEnvironmentVariable("VONEL_EXTRA_CA");
  if (!extra.isEmpty()) configuration.addCaCertificates(extra, QSsl::Pem);
  return configuration;
}

std::string certificateFingerprint(const QSslCertificate& certificate) {
  return fromQString(QString::fromLatin1(certificate.digest(QCryptographicHash::Sha256).toHex(':').toUpper()));
}

std::string certificateDetails(const QSslCertificate& certificate, const QString& errors) {
  const QString text = "Subject: " + names(certificate, false) + "\nIssuer: " + names(certificate, true) +
                       "\nValid from: " + certificate.effectiveDate().toUTC().toString(Qt::ISODate) +
                       "\nValid until: " + certificate.expiryDate().toUTC().toString(Qt::ISODate) +
                       "\nSHA-256: " + toQString(certificateFingerprint(certificate)) + "\nErrors: " + errors;
  return fromQString(text);
}

SecureChannel::SecureChannel(QSslSocket& socket, MailService service) : socket_(socket), service_(service) {
  QObject::connect(&socket_, &QSslSocket::sslErrors, this, &SecureChannel::onSslErrors);
}

void SecureChannel::open(const Account& account, const std::string& host, int port) {
  security_ = account.security(service_);
  account_ = account.index;
  host_ = host;
  pin_ = account.certificate(service_);
  untrusted_.reset();
  socket_.abort();
  socket_.setSslConfiguration(secureConfiguration());
  socket_.setPeerVerifyName(toQString(host));
  if (security_ == TransportSecurity::Tls) {
    socket_.connectToHostEncrypted(toQString(host), static_cast<quint16>(port));
  } else {
    socket_.connectToHost(toQString(host), static_cast<quint16>(port));
  }
}

void SecureChannel::startTls() { socket_.startClientEncryption(); }

void SecureChannel::onSslErrors(const QList<QSslError>& errors) {
  const QSslCertificate leaf = socket_.peerCertificate();
  const std::string fingerprint = certificateFingerprint(leaf);
  if (!leaf.isNull() && pin_.matches(host_, fingerprint)) {
    socket_.ignoreSslErrors(errors);
    return;
  }
  UntrustedCertificate untrusted;
  untrusted.service = service_;
  untrusted.account = account_;
  untrusted.host = host_;
  untrusted.fingerprint = fingerprint;
  untrusted.changed = pin_.matches(host_, pin_.fingerprint);
  untrusted.details = (untrusted.changed ? std::string("The certificate has changed since it was trusted.\n") : "") +
                      certificateDetails(leaf, joinedErrors(errors));
  untrusted.failure =
      "The certificate of " + host_ + " is not trusted: " + fromQString(joinedErrors(errors)) + " SHA-256 " + fingerprint;
  untrusted_ = untrusted;
  emit certificateUntrusted(untrusted);
}

std::string SecureChannel::failureText() const {
  return untrusted_ ? untrusted_->failure : fromQString(socket_.errorString());
}

}  // namespace vonel
