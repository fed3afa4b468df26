#include "core/settings/accounts.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/settings/scramble.h"

namespace vonel {
namespace {

TEST(Scramble, EveryPasswordOfBytesOneTo255ComesBack) {
  std::string all;
  for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(Decrypt(Encrypt(all)), all);
  for (int b = 1; b < 256; ++b) {
    const std::string one(1, static_cast<char>(b));
    EXPECT_EQ(Decrypt(Encrypt(one)), one) << "byte " << b;
    const std::string framed = "a" + one + one + "z";
    EXPECT_EQ(Decrypt(Encrypt(framed)), framed) << "byte " << b;
  }
  for (const std::string tricky : {"&lt;", "&amp;", "&#65;", "   ", "a&b;c", "\xE0\xC0", "&nbsp"}) {
    EXPECT_EQ(Decrypt(Encrypt(tricky)), tricky) << tricky;
  }
}

TEST(Scramble, KeepsTheOldFormForPlainLettersAndReadsOldValues) {
  EXPECT_EQ(Encrypt("abc"), "\xC5\xC6\xC7");
  EXPECT_EQ(Encrypt("a b"), "\xC5\x8A\xD2\xC6\xD7\xD4\x9F\xC6");  // the blank as "&nbsp;"
  EXPECT_EQ(Decrypt("\xC5\xC6\xC7"), "abc");
  EXPECT_EQ(Decrypt("secret"), "secret");  // a plain value typed into the file
  EXPECT_EQ(Decrypt(""), "");
  // An old value whose entity decodes to the e acute.
  EXPECT_EQ(Decrypt(Encrypt("&eacute;")), "&eacute;");
  EXPECT_EQ(Decrypt("\x8A\xC9\xC5\xC7\xD9\xD8\xC9\x9F"), "\xE9");
}

TEST(Accounts, FirstAccountIsTheLowestWithAReplyAddress) {
  testing::TestHome home;
  cSHAREDSettings settings(home.log, home.prompt);
  EXPECT_EQ(FirstAccount(settings), -1);
  settings.StoreSetting("REPLYADDRESS3", Value("me@example.org"));
  EXPECT_EQ(FirstAccount(settings), 3);
  settings.StoreSetting("REPLYADDRESS12", Value("other@example.org"));
  EXPECT_EQ(FirstAccount(settings), 3);
}

TEST(Accounts, UnwrittenFlagsDependOnTheReader) {
  testing::TestHome home;
  cSHAREDSettings settings(home.log, home.prompt);
  const Account session = readAccount(settings, 4, AccountReader::Session);
  EXPECT_TRUE(session.Check);
  EXPECT_TRUE(session.StopAtLast);
  EXPECT_EQ(session.Title, "Account 5");
  EXPECT_EQ(session.PopPort, 110);
  EXPECT_EQ(session.SmtpPort, 25);
  const Account dialog = readAccount(settings, 4, AccountReader::Dialog);
  EXPECT_FALSE(dialog.Check);
  EXPECT_FALSE(dialog.StopAtLast);
}

TEST(Accounts, AWrittenAccountReadsBackWithScrambledPasswords) {
  testing::TestHome home;
  cSHAREDSettings settings(home.log, home.prompt);
  Account a;
  a.index = 7;
  a.Title = "Work";
  a.Server = "pop.example.org";
  a.Password = "p\xE4ss word";
  a.SmtpPassword = "s";
  a.PopPort = 1110;
  a.Check = false;
  a.ReplyAddress = "me@example.org";
  writeAccount(settings, a);
  EXPECT_NE(settings.RetrieveSetting("PWD7").text(), a.Password);
  cSHAREDSettings reloaded(home.log, home.prompt);
  reloaded.LoadSettingsFromText(settings.fileText(), "memory");
  const Account back = readAccount(reloaded, 7, AccountReader::Session);
  EXPECT_EQ(back.Password, a.Password);
  EXPECT_EQ(back.SmtpPassword, "s");
  EXPECT_EQ(back.PopPort, 1110);
  EXPECT_FALSE(back.Check);
  EXPECT_TRUE(back.inUse());
  EXPECT_TRUE(back.polled());
}

}  // namespace
}  // namespace vonel
