#include "ui/security/certificate_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/certificate_trust.h"
#include "app/qtext.h"
#include "core/settings/accounts.h"

namespace vonel {

CertificateDialog::CertificateDialog(AppContext& context, UntrustedCertificate certificate, QWidget* parent)
    : QDialog(parent), ctx_(context), certificate_(std::move(certificate)) {
  setObjectName("frmCertificate");
  setWindowTitle("Certificate not trusted");

  const std::string server = certificate_.service == MailService::Pop3 ? "POP3" : "SMTP";
  auto* intro = new QLabel(toQString("The " + server + " server " + certificate_.host + " of account '" +
                                     accountTitle(ctx_.settings, certificate_.account) +
                                     "' showed this certificate, which is not trusted:"));
  intro->setWordWrap(true);

  auto* details = new QPlainTextEdit(toQString(certificate_.details));
  details->setObjectName("txtCertificate");
  details->setReadOnly(true);
  details->setTabChangesFocus(true);
  details->setAccessibleName("Certificate");
  details->setLineWrapMode(QPlainTextEdit::NoWrap);
  intro->setBuddy(details);

  auto* buttons = new QDialogButtonBox;
  auto* trust = buttons->addButton("Trust this certificate", QDialogButtonBox::AcceptRole);
  trust->setObjectName("cmdTrust");
  auto* cancel = buttons->addButton(QDialogButtonBox::Cancel);
  cancel->setObjectName("cmdCancel");
  // Return never trusts by accident: it cancels unless Trust is pressed itself.
  trust->setAutoDefault(false);
  cancel->setDefault(true);
  connect(trust, &QPushButton::clicked, this, &CertificateDialog::onTrustClicked);
  connect(cancel, &QPushButton::clicked, this, &CertificateDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(intro);
  layout->addWidget(details, 1);
  layout->addWidget(buttons);
  resize(560, 320);
}

void CertificateDialog::onTrustClicked() {
  trustCertificate(ctx_, certificate_);
  accept();
}

}  // namespace vonel
