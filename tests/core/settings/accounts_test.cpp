#include "core/settings/accounts.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/settings/scramble.h"

namespace vonel {
namespace {

TEST(Scramble, EveryPasswordOfBytesOneTo255ComesBack) {
  std::string all;
  for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(decrypt(encrypt(all)), all);
  for (int b = 1; b < 256; ++b) {
    const std::string one(1, static_cast<char>(b));
    EXPECT_EQ(decrypt(encrypt(one)), one) << "byte " << b;
    const std::string framed = "a" + one + one + "z";
    EXPECT_EQ(decrypt(encrypt(framed)), framed) << "byte " << b;
  }
  for (const std::string tricky : {"&lt;", "&amp;", "&#65;", "   ", "a&b;c", "\xE0\xC0", "&nbsp"}) {
    EXPECT_EQ(decrypt(encrypt(tricky)), tricky) << tricky;
  }
}

TEST(Scramble, KeepsTheOldFormForPlainLettersAndReadsOldValues) {
  EXPECT_EQ(encrypt("abc"), "\xC5\xC6\xC7");
  EXPECT_EQ(encrypt("a b"), "\xC5\x8A\xD2\xC6\xD7\xD4\x9F\xC6");  // the blank as "&nbsp;"
  EXPECT_EQ(decrypt("\xC5\xC6\xC7"), "abc");
  EXPECT_EQ(decrypt("secret"), "secret");  // a plain value typed into the file
  EXPECT_EQ(decrypt(""), "");
  // An old value whose entity decodes to the e acute.
  EXPECT_EQ(decrypt(encrypt("&eacute;")), "&eacute;");
  EXPECT_EQ(decrypt("\x8A\xC9\xC5\xC7\xD9\xD8\xC9\x9F"), "\xE9");
}

TEST(Accounts, FirstAccountIsTheLowestWithAReplyAddress) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  EXPECT_EQ(firstAccount(settings), std::nullopt);
  settings.set("REPLYADDRESS3", Value("me@example.org"));
  EXPECT_EQ(firstAccount(settings), 3);
  settings.set("REPLYADDRESS12", Value("other@example.org"));
  EXPECT_EQ(firstAccount(settings), 3);
}

TEST(Accounts, UnwrittenFlagsDependOnTheReader) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  const Account session = readAccount(settings, 4, AccountReader::Session);
  EXPECT_TRUE(session.check);
  EXPECT_TRUE(session.stopAtLast);
  EXPECT_EQ(session.title, "Account 5");
  EXPECT_EQ(session.popPort, 110);
  EXPECT_EQ(session.smtpPort, 25);
  const Account dialog = readAccount(settings, 4, AccountReader::Dialog);
  EXPECT_FALSE(dialog.check);
  EXPECT_FALSE(dialog.stopAtLast);
}

TEST(Accounts, AWrittenAccountReadsBackWithScrambledPasswords) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  Account a;
  a.index = 7;
  a.title = "Work";
  a.server = "pop.example.org";
  a.password = "p\xE4ss word";
  a.smtpPassword = "s";
  a.popPort = 1110;
  a.check = false;
  a.replyAddress = "me@example.org";
  writeAccount(settings, a);
  EXPECT_NE(settings.get("PWD7").text(), a.password);
  SettingsStore reloaded(home.log, home.prompt);
  reloaded.loadSettingsFromText(settings.fileText(), "memory");
  const Account back = readAccount(reloaded, 7, AccountReader::Session);
  EXPECT_EQ(back.password, a.password);
  EXPECT_EQ(back.smtpPassword, "s");
  EXPECT_EQ(back.popPort, 1110);
  EXPECT_FALSE(back.check);
  EXPECT_TRUE(back.inUse());
  EXPECT_TRUE(back.polled());
}

}  // namespace
}  // namespace vonel
