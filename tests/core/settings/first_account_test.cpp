#include "core/settings/first_account.h"

#include <gtest/gtest.h>

#include "../test_home.h"

namespace vonel {
namespace {

FirstAccount answers() {
  return {"Zo\xEB Smith", "zoe@example.org", "pop.example.org", "smtp.example.org", "zoe", "Home"};
}

TEST(FirstAccount, ANewFileHoldsAccountZeroInItsOrder) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  storeFirstAccount(settings, answers());
  EXPECT_EQ(settings.fileText(),
            "PWD0,\r\nUNAME0,zoe\r\nSERVER0,pop.example.org\r\nTITLE0,Home\r\nCHECK0,-1 \r\n"
            "SMTP0,smtp.example.org\r\nREPLYADDRESS0,zoe@example.org\r\nDISPLAYNAME0,Zo\xEB Smith\r\n");
}

TEST(FirstAccount, PastedLineBreaksAndNulsAreDropped) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  FirstAccount account = answers();
  account.server = "pop.\r\nexample.org\n";
  account.title = std::string("Ho\0me\r", 6);
  storeFirstAccount(settings, account);
  const std::string text = settings.fileText();
  EXPECT_NE(text.find("SERVER0,pop.example.org\r\nTITLE0,Home\r\n"), std::string::npos) << text;
  EXPECT_EQ(text.find('\0'), std::string::npos);
}

TEST(FirstAccount, KeysAlreadyThereKeepTheirPlaceAndTakeTheAnswers) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  settings.loadSettingsFromText("SCANONSTART,0\r\nSERVER0,old.example.org\r\nPWD0,\xD7\xC9\xC7\r\n", "Vonel.ini");
  storeFirstAccount(settings, answers());
  EXPECT_EQ(settings.fileText(),
            "SCANONSTART,0\r\nSERVER0,pop.example.org\r\nPWD0,\r\nUNAME0,zoe\r\nTITLE0,Home\r\nCHECK0,-1 \r\n"
            "SMTP0,smtp.example.org\r\nREPLYADDRESS0,zoe@example.org\r\nDISPLAYNAME0,Zo\xEB Smith\r\n");
}

}  // namespace
}  // namespace vonel
