#include "core/settings/transport_security.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/settings/accounts.h"

namespace vonel {
namespace {

TEST(TransportSecurity, AbsentPortsFollowTheSecurityAndWrittenPortsWin) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  const auto ports = [&] {
    const Account a = readAccount(settings, 2, AccountReader::Session);
    return std::pair(a.popPort, a.smtpPort);
  };
  EXPECT_EQ(ports(), std::pair(110, 25));
  settings.set("POPSECURITY2", Value(1));
  settings.set("SMTPSECURITY2", Value(1));
  EXPECT_EQ(ports(), std::pair(995, 465));
  settings.set("POPSECURITY2", Value("2"));
  settings.set("SMTPSECURITY2", Value("2"));
  EXPECT_EQ(ports(), std::pair(110, 587));
  settings.set("POPPORT2", Value(1110));
  settings.set("SMTPPORT2", Value(2525));
  EXPECT_EQ(ports(), std::pair(1110, 2525));
  // A damaged number never turns into a security nobody chose.
  settings.set("SMTPSECURITY2", Value("7"));
  EXPECT_EQ(readAccount(settings, 2, AccountReader::Session).smtpSecurity, TransportSecurity::Plain);
}

TEST(TransportSecurity, UntouchedAccountsWriteNoNewKeys) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  writeAccount(settings, readAccount(settings, 0, AccountReader::Dialog));
  for (const char* key : {"POPSECURITY0", "SMTPSECURITY0", "SMTPSTANDARD0", "POPCERT0", "SMTPCERT0"}) {
    EXPECT_FALSE(settings.isSettingPresent(key)) << key;
  }
  Account a = readAccount(settings, 0, AccountReader::Dialog);
  a.popSecurity = TransportSecurity::Tls;
  a.smtpSecurity = TransportSecurity::Upgrade;
  a.smtpStandard = true;
  writeAccount(settings, a);
  const Account back = readAccount(settings, 0, AccountReader::Session);
  EXPECT_EQ(back.popSecurity, TransportSecurity::Tls);
  EXPECT_EQ(back.smtpSecurity, TransportSecurity::Upgrade);
  EXPECT_TRUE(back.smtpStandard);
  // Once written, going back to the default writes the default rather than leaving the old value.
  a.smtpStandard = false;
  writeAccount(settings, a);
  EXPECT_TRUE(settings.isSettingPresent("SMTPSTANDARD0"));
  EXPECT_FALSE(readAccount(settings, 0, AccountReader::Session).smtpStandard);
}

TEST(CertificatePin, CountsForItsHostOnlyAndIsForgotten) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  storeCertificatePin(settings, 3, MailService::Smtp, {"mail.example.org", "AB:CD"});
  EXPECT_EQ(settings.get("SMTPCERT3").text(), "mail.example.org AB:CD");
  const Account a = readAccount(settings, 3, AccountReader::Session);
  EXPECT_TRUE(a.certificate(MailService::Smtp).matches("MAIL.example.org", "ab:cd"));
  EXPECT_FALSE(a.certificate(MailService::Smtp).matches("other.example.org", "AB:CD"));
  EXPECT_FALSE(a.certificate(MailService::Smtp).matches("mail.example.org", "AB:CE"));
  EXPECT_FALSE(a.certificate(MailService::Pop3).matches("mail.example.org", "AB:CD"));
  storeCertificatePin(settings, 3, MailService::Smtp, {});
  EXPECT_FALSE(settings.isSettingPresent("SMTPCERT3"));
  // Values typed by hand: no blank, or nothing at all, trust nothing.
  for (const char* typed : {"AB:CD", "", "   "}) {
    EXPECT_FALSE(CertificatePin::fromStored(typed).matches("", "AB:CD")) << typed;
  }
}

}  // namespace
}  // namespace vonel
