#include "ui/security/certificate_dialog.h"

#include <QAccessible>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "core/files/file_text.h"
#include "core/settings/accounts.h"

using namespace vonel;

namespace {

struct Home {
  QTemporaryDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", dir.path().toStdString()}};
};

UntrustedCertificate selfSigned(MailService service) {
  UntrustedCertificate c;
  c.service = service;
  c.account = 2;
  c.host = "mail.example.org";
  c.fingerprint = "AB:CD:EF";
  c.details = "Subject: mail.example.org\nIssuer: mail.example.org\nValid from: 2026-01-01T00:00:00Z\n"
              "Valid until: 2036-01-01T00:00:00Z\nSHA-256: AB:CD:EF\nErrors: The certificate is self-signed, and untrusted";
  return c;
}

template <typename T>
T* control(const QWidget& dialog, const char* name) {
  T* found = dialog.findChild<T*>(name);
  if (!found) qFatal("no control %s", name);
  return found;
}

}  // namespace

class CertificateDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void showsTheCertificateAndTrustsOnlyOnTrust() {
    Home home;
    {
      CertificateDialog dialog(home.context, selfSigned(MailService::Smtp));
      QCOMPARE(dialog.windowTitle(), QString("Certificate not trusted"));
      QVERIFY(control<QPlainTextEdit>(dialog, "txtCertificate")->toPlainText().contains("SHA-256: AB:CD:EF"));
      QCOMPARE(control<QPushButton>(dialog, "cmdTrust")->text(), QString("Trust this certificate"));
      dialog.show();
      // Enter takes the cautious way.
      QTest::keyClick(&dialog, Qt::Key_Return);
      QCOMPARE(dialog.result(), int(QDialog::Rejected));
      QVERIFY(!home.context.settings.isSettingPresent("SMTPCERT2"));
    }
    CertificateDialog dialog(home.context, selfSigned(MailService::Smtp));
    dialog.show();
    control<QPushButton>(dialog, "cmdTrust")->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const Account a = readAccount(home.context.settings, 2, AccountReader::Session);
    QVERIFY(a.smtpCertificate.matches("mail.example.org", "AB:CD:EF"));
    QVERIFY(a.popCertificate.fingerprint.empty());
    // Stored in the file at once, so the run that follows finds it.
    QVERIFY(files::loadTextFile(home.context.settingsFile()).find("SMTPCERT2,mail.example.org AB:CD:EF") !=
            std::string::npos);
  }

  void everyControlHasARoleAndAName() {
    Home home;
    CertificateDialog dialog(home.context, selfSigned(MailService::Pop3));
    dialog.show();
    for (const char* name : {"txtCertificate", "cmdTrust", "cmdCancel"}) {
      QAccessibleInterface* face = QAccessible::queryAccessibleInterface(control<QWidget>(dialog, name));
      QVERIFY2(face && !face->text(QAccessible::Name).isEmpty(), name);
      QVERIFY2(control<QWidget>(dialog, name)->focusPolicy() & Qt::TabFocus, name);
    }
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
      QVERIFY(QTest::qWaitForWindowExposed(&dialog));
      dialog.grab().save(shots + "/tls-certificate-dialog.png");
    }
  }
};

QTEST_MAIN(CertificateDialogTest)
#include "certificate_dialog_test.moc"
