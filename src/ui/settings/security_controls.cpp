#include "ui/settings/security_controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vonel {
namespace {

QComboBox* securityBox(const QString& name, const QString& accessibleName, const QString& upgrade) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  box->setAccessibleName(accessibleName);
  // In the order of the stored numbers.
  box->addItems({"None", "TLS", upgrade});
  return box;
}

TransportSecurity picked(const QComboBox* box) { return transportSecurity(box->currentIndex()); }

}  // namespace

SecurityControls::SecurityControls(AccountBoxes boxes, QFormLayout* incoming, QFormLayout* outgoing, QObject* parent)
    : QObject(parent), boxes_(boxes) {
  popSecurity_ = securityBox("cmbPOPSecurity", "POP3 security", "STLS");
  incoming->insertRow(3, "POP3 security:", popSecurity_);
  smtpSecurity_ = securityBox("cmbSMTPSecurity", "SMTP security", "STARTTLS");
  outgoing->insertRow(2, "SMTP security:", smtpSecurity_);
  smtpStandard_ = new QCheckBox("Standard SMTP dialogue (EHLO, STARTTLS, AUTH PLAIN or LOGIN)");
  smtpStandard_->setObjectName("chkSMTPStandard");
  outgoing->insertRow(3, smtpStandard_);

  forget_ = new QPushButton("Forget trusted certificates");
  forget_->setObjectName("cmdForgetCertificate");
  plainWarning_ = new QLabel("The password will be sent in plain text: anyone on the way can read it.");
  plainWarning_->setObjectName("lblPlainWarning");
  plainWarning_->setWordWrap(true);
  footer_ = new QWidget;
  auto* row = new QHBoxLayout(footer_);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(plainWarning_, 1);
  row->addWidget(forget_);

  connect(popSecurity_, &QComboBox::activated, this, [this](int index) { onSecurityPicked(MailService::Pop3, index); });
  connect(smtpSecurity_, &QComboBox::activated, this, [this](int index) { onSecurityPicked(MailService::Smtp, index); });
  connect(forget_, &QPushButton::clicked, this, &SecurityControls::onForgetClicked);
  connect(boxes_.password, &QLineEdit::textChanged, this, &SecurityControls::showPlainWarning);
  connect(boxes_.smtpAuth, &QCheckBox::toggled, this, &SecurityControls::showPlainWarning);
}

void SecurityControls::orderTabs() {
  QWidget::setTabOrder(boxes_.popPort, popSecurity_);
  QWidget::setTabOrder(boxes_.smtpPort, smtpSecurity_);
  QWidget::setTabOrder(smtpSecurity_, smtpStandard_);
}

void SecurityControls::show(const Account& account) {
  popSecurity_->setCurrentIndex(static_cast<int>(account.popSecurity));
  smtpSecurity_->setCurrentIndex(static_cast<int>(account.smtpSecurity));
  shownPopSecurity_ = account.popSecurity;
  shownSmtpSecurity_ = account.smtpSecurity;
  smtpStandard_->setChecked(account.smtpStandard);
  popPin_ = account.popCertificate;
  smtpPin_ = account.smtpCertificate;
  forget_->setEnabled(!popPin_.fingerprint.empty() || !smtpPin_.fingerprint.empty());
  showPlainWarning();
}

void SecurityControls::keep(Account& account) const {
  account.popSecurity = picked(popSecurity_);
  account.smtpSecurity = picked(smtpSecurity_);
  account.smtpStandard = smtpStandard_->isChecked();
  account.popCertificate = popPin_;
  account.smtpCertificate = smtpPin_;
}

void SecurityControls::onSecurityPicked(MailService service, int index) {
  const bool pop = service == MailService::Pop3;
  QLineEdit* port = pop ? boxes_.popPort : boxes_.smtpPort;
  TransportSecurity& before = pop ? shownPopSecurity_ : shownSmtpSecurity_;
  const TransportSecurity now = transportSecurity(index);
  const QString typed = port->text().trimmed();
  if (typed.isEmpty() || typed == QString::number(defaultPort(service, before))) {
    port->setText(QString::number(defaultPort(service, now)));
  }
  before = now;
  // STARTTLS is part of the standard dialogue only.
  if (!pop && now == TransportSecurity::Upgrade) smtpStandard_->setChecked(true);
  showPlainWarning();
}

void SecurityControls::showPlainWarning() {
  const bool popInClear = picked(popSecurity_) == TransportSecurity::Plain && !boxes_.password->text().isEmpty();
  const bool smtpInClear = picked(smtpSecurity_) == TransportSecurity::Plain && boxes_.smtpAuth->isChecked();
  plainWarning_->setVisible(popInClear || smtpInClear);
}

void SecurityControls::onForgetClicked() {
  popPin_ = {};
  smtpPin_ = {};
  forget_->setEnabled(false);
}

}  // namespace vonel
