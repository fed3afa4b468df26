#pragma once
// The account tab's security controls: how each server is reached
// (cmbPOPSecurity, cmbSMTPSecurity), the standard SMTP dialogue
// (chkSMTPStandard), forgetting trusted certificates (cmdForgetCertificate)
// and the warning shown while a password would go out in plain text
// (lblPlainWarning). Choosing a security fills a port the user hasn't typed.
#include <QObject>

#include "core/settings/accounts.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vonel {

// The boxes of the tab the controls watch.
struct AccountBoxes {
  QLineEdit* popPort;
  QLineEdit* password;
  QLineEdit* smtpPort;
  QCheckBox* smtpAuth;
};

class SecurityControls final : public QObject {
  Q_OBJECT

 public:
  SecurityControls(AccountBoxes boxes, QFormLayout* incoming, QFormLayout* outgoing, QObject* parent);

  // Put below the two server groups.
  QWidget* footer() const { return footer_; }

  // Each box right after its port in the tab order, once all are on the page.
  void orderTabs();

  void show(const Account& account);
  void keep(Account& account) const;

 private:
  void onSecurityPicked(MailService service, int index);
  void showPlainWarning();
  void onForgetClicked();

  AccountBoxes boxes_;
  QComboBox* popSecurity_;
  QComboBox* smtpSecurity_;
  QCheckBox* smtpStandard_;
  QPushButton* forget_;
  QLabel* plainWarning_;
  QWidget* footer_;
  // The shown account's pins, until forgotten.
  CertificatePin popPin_;
  CertificatePin smtpPin_;
  // What each box held before the last pick, to tell a default port from a typed one.
  TransportSecurity shownPopSecurity_ = TransportSecurity::Plain;
  TransportSecurity shownSmtpSecurity_ = TransportSecurity::Plain;
};

}  // namespace vonel
