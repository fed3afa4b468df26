#pragma once
// Fetches the certificate an account's POP3 or SMTP server shows, as far as
// the handshake and no further: nothing is logged in and no mail is read or
// sent. For the command line's --trust-cert.
#include <QObject>
#include <QSslSocket>
#include <QTimer>
#include <string>

#include "app/secure_channel.h"
#include "core/context/app_context.h"
#include "protocol/pop3/stls_gate.h"
#include "protocol/smtp/smtp_reply_reader.h"

namespace vonel {

struct ProbeResult {
  bool shown = false;    // a certificate came in the handshake
  bool trusted = false;  // Qt or the account's pin accepted it
  UntrustedCertificate certificate;
  std::string error;     // why no certificate could be had
};

class CertificateProbe final : public QObject, private pop3::GatePeer {
  Q_OBJECT

 public:
  CertificateProbe(AppContext& context, int account, MailService service);
  // Runs the event loop until the handshake ends, fails or the time-out passes.
  ProbeResult run();

 private:
  void writeToServer(std::string_view bytes) override;
  void deliverToSession(std::string_view bytes) override;
  void startTls() override { channel_.startTls(); }
  void onSmtpData(std::string_view bytes);
  void finish(std::string error = {});

  AppContext& ctx_;
  const int account_;
  const MailService service_;
  QSslSocket socket_;
  SecureChannel channel_{socket_, service_};
  pop3::StlsGate gate_{*this};
  smtp::SmtpReplyReader replies_;
  int smtpStep_ = 0;  // greeting, EHLO, STARTTLS, handshake
  bool handshaking_ = false;
  ProbeResult result_;
  QTimer timeout_;
  bool done_ = false;
};

}  // namespace vonel
