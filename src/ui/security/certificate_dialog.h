#pragma once
// Shows a server certificate the account doesn't trust, with what is wrong
// with it, and lets the user trust exactly that certificate for that
// account and host. Nothing is trusted unless the user says so here or on
// the command line.
#include <QDialog>

#include "app/untrusted_certificate.h"
#include "core/context/app_context.h"

class QPlainTextEdit;
class QPushButton;

namespace vonel {

class CertificateDialog final : public QDialog {
  Q_OBJECT

 public:
  CertificateDialog(AppContext& context, UntrustedCertificate certificate, QWidget* parent = nullptr);

  const UntrustedCertificate& certificate() const { return certificate_; }

 private:
  void onTrustClicked();

  AppContext& ctx_;
  UntrustedCertificate certificate_;
};

}  // namespace vonel
