#include "app/certificate_probe.h"

#include <QEventLoop>

#include "app/qtext.h"
#include "core/settings/accounts.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr int kTimeoutMs = 30000;

}  // namespace

CertificateProbe::CertificateProbe(AppContext& context, int account, MailService service)
    : ctx_(context), account_(account), service_(service) {
  timeout_.setSingleShot(true);
  timeout_.setInterval(kTimeoutMs);
  connect(&timeout_, &QTimer::timeout, this, [this] { finish("The server did not answer"); });
  connect(&socket_, &QSslSocket::connected, this, [this] {
    handshaking_ = channel_.security() == TransportSecurity::Tls;
    gate_.onConnected();
  });
  connect(&socket_, &QSslSocket::readyRead, this, [this] {
    const QByteArray bytes = socket_.readAll();
    const std::string_view chunk(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    service_ == MailService::Pop3 ? gate_.onData(chunk) : onSmtpData(chunk);
  });
  connect(&socket_, &QSslSocket::encrypted, this, [this] {
    result_.shown = result_.trusted = true;
    result_.certificate.host = fromQString(socket_.peerName());
    result_.certificate.fingerprint = certificateFingerprint(socket_.peerCertificate());
    result_.certificate.details = certificateDetails(socket_.peerCertificate(), "none");
    finish();
  });
  connect(&channel_, &SecureChannel::certificateUntrusted, this, [this](const UntrustedCertificate& certificate) {
    result_.shown = true;
    result_.certificate = certificate;
    finish();
  });
  connect(&socket_, &QSslSocket::errorOccurred, this, [this] { finish(channel_.failureText()); });
}

ProbeResult CertificateProbe::run() {
  const Account account = readAccount(ctx_.settings, account_, AccountReader::Session);
  const bool pop = service_ == MailService::Pop3;
  if (account.security(service_) == TransportSecurity::Plain) {
    result_.error = "the account reaches its " + std::string(pop ? "POP3" : "SMTP") + " server without TLS";
    return result_;
  }
  // The port as the sessions take it: RemotePort overrides the SMTP port.
  const int remotePort = text::toWhole<int>(ctx_.settings.get("RemotePort", Value(25)).numberOr(25));
  const int port = pop ? account.popPort : remotePort != 25 ? remotePort : account.smtpPort;
  gate_.begin(pop ? account.popSecurity : TransportSecurity::Plain);
  timeout_.start();
  channel_.open(account, pop ? account.server : account.smtp, port);
  QEventLoop loop;
  while (!done_) loop.processEvents(QEventLoop::WaitForMoreEvents);
  socket_.abort();
  return result_;
}

void CertificateProbe::finish(std::string error) {
  if (done_) return;
  done_ = true;
  if (!result_.shown && result_.error.empty()) result_.error = error.empty() ? "no certificate" : error;
  timeout_.stop();
}

void CertificateProbe::writeToServer(std::string_view bytes) {
  socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

// The gate hands on only a refusal before the handshake.
void CertificateProbe::deliverToSession(std::string_view bytes) {
  if (!gate_.open()) finish(text::trim(bytes));
}

// Greeting, EHLO, STARTTLS: as far as the handshake of an upgrade.
void CertificateProbe::onSmtpData(std::string_view bytes) {
  if (channel_.security() != TransportSecurity::Upgrade || handshaking_) return;
  replies_.add(bytes);
  while (replies_.hasReply() && !handshaking_) {
    const smtp::SmtpReply reply = replies_.take();
    const int expected = smtpStep_ == 1 ? 250 : 220;
    if (reply.code != expected) return finish(reply.whole());
    if (smtpStep_ == 0) writeToServer("EHLO vonel\r\n");
    if (smtpStep_ == 1) writeToServer("STARTTLS\r\n");
    if (smtpStep_ == 2) {
      handshaking_ = true;
      channel_.startTls();
    }
    ++smtpStep_;
  }
}

}  // namespace vonel
