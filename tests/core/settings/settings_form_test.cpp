#include "core/settings/settings_form.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/files/path_text.h"

namespace vonel {
namespace {

// A home with its folders read, as after start-up, and a form read from it.
struct FormHome {
  testing::TestHome home;
  SettingsStore settings{home.log, home.prompt};
  SettingsStore pathSettings{home.log, home.prompt};
  DataFolders folders{pathSettings, home.log, home.dir.path()};
  SettingsForm form;

  FormHome() {
    folders.readMessageFolder();
    folders.readFilterFolder();
    folders.readDataFolder();
    form = readSettingsForm(settings, folders);
  }
  std::string root() const { return files::textFromPath(home.dir.path()); }
  FormReview review(const FolderTest& usable = folderUsable) { return reviewSettingsForm(form, folders, usable); }
  std::string refusal() { return review().refusal.value_or("accepted"); }
};

TEST(SettingsFormChecks, TheFirstFailureIsTheOnlyOneShown) {
  FormHome h;
  h.form.accounts[0].replyAddress = "nobody";
  h.form.ages = {"0", "0", "0"};
  h.form.timeout = "5000";
  EXPECT_EQ(h.refusal(), "Please enter a valid email for the reply address");
  h.form.accounts[0].replyAddress.clear();  // an account not in use
  EXPECT_EQ(h.refusal(), "Message ages cannot be zero or less");
}

TEST(SettingsFormChecks, OnlyTheShownAccountsReplyAddressCounts) {
  FormHome h;
  h.form.accounts[5].replyAddress = "nobody";
  EXPECT_EQ(h.refusal(), "accepted");
  h.form.shownAccount = 5;
  EXPECT_EQ(h.refusal(), "Please enter a valid email for the reply address");
}

TEST(SettingsFormChecks, AgesRunFromOldToRecentAndReadAsNumbers) {
  FormHome h;
  h.form.ages = {"14", "30", "1"};
  EXPECT_EQ(h.refusal(), "Age 1 is less than Age 2");
  h.form.ages = {"30", "1", "14"};
  EXPECT_EQ(h.refusal(), "Age 2 is less than Age 3");
  h.form.ages = {"30", "abc", "1"};
  EXPECT_EQ(h.refusal(), "Message ages cannot be zero or less");
  h.form.ages = {"30", "14", "-1"};
  EXPECT_EQ(h.refusal(), "Message ages cannot be zero or less");
  h.form.ages = {"30 days", "14", "14"};  // equal neighbours are fine
  EXPECT_EQ(h.refusal(), "accepted");
}

TEST(SettingsFormChecks, TimeoutIsZeroTo999AndABlankSizeIsZero) {
  FormHome h;
  for (const char* refused : {"1000", "-1"}) {
    h.form.timeout = refused;
    EXPECT_EQ(h.refusal(), "Timeout must be 0 to 999 seconds") << refused;
  }
  for (const char* kept : {"999", "0", "abc"}) {
    h.form.timeout = kept;
    EXPECT_EQ(h.refusal(), "accepted") << kept;
    EXPECT_EQ(h.form.timeout, kept);
  }
  h.form.maxSize = "  ";
  h.review();
  EXPECT_EQ(h.form.maxSize, "0");
}

TEST(SettingsFormChecks, TheStoreMustBeGivenAndUsable) {
  FormHome h;
  h.form.messageStore.clear();
  EXPECT_EQ(h.refusal(), "Please specify a message store location.");
  h.form.messageStore = "/dev/null/Store";  // under a file: can't be made
  EXPECT_EQ(h.refusal(), "Please specify a valid path to your message store folder");
  h.form.messageStore = h.root() + "/New Store/";
  EXPECT_EQ(h.refusal(), "accepted");
  EXPECT_EQ(h.form.messageStore, h.root() + "/New Store");
  EXPECT_TRUE(std::filesystem::is_directory(h.home.dir.path() / "New Store"));
}

TEST(SettingsFormChecks, UnusableFoldersAreResetWithANoticeEach) {
  FormHome h;
  h.form.messageStore = h.root() + "/Elsewhere";
  h.form.spamFolder = "/dev/null/spam";
  h.form.filterFolder = "/dev/null/filters";
  h.form.dataFolder = "/dev/null/data";
  const FormReview review = h.review();
  EXPECT_FALSE(review.refusal);
  ASSERT_EQ(review.notices.size(), 3u);
  EXPECT_EQ(review.notices[0], "Invalid spam archive path. Resetting to " + h.root() + "/Elsewhere/SpamBayes/");
  EXPECT_EQ(review.notices[1], "Invalid filters path. Resetting to " + h.root());
  EXPECT_EQ(review.notices[2], "Invalid data path. Resetting to " + h.root());
  EXPECT_EQ(h.form.spamFolder, h.root() + "/Elsewhere/SpamBayes");
  EXPECT_EQ(h.form.filterFolder, h.root());
}

TEST(SettingsFormText, LineBreaksAndNulsAreDropped) {
  EXPECT_EQ(storableText(std::string("a\r\nb\0c\n", 7)), "abc");
  EXPECT_EQ(withoutTrailingSeparator("C:\\Mail\\"), "C:\\Mail");
  EXPECT_EQ(withoutTrailingSeparator("/srv/mail//"), "/srv/mail/");
  EXPECT_EQ(withoutTrailingSeparator("/"), "/");
}

TEST(SettingsFormWrite, AccountsKeepTheirKeyOrderAndBoxesAreNumbers) {
  FormHome h;
  Account& first = h.form.accounts[0];
  first.replyAddress = "me@example.org";
  first.password = "abc";
  first.smtpAuth = true;
  first.displayName = "Jo\r\nSmith";
  h.form.startMinimised = true;
  h.form.audio = true;
  ASSERT_FALSE(h.review().refusal);
  writeSettingsForm(h.form, h.settings, h.folders);

  const std::string file = h.settings.fileText();
  EXPECT_EQ(file.find("SPAMFOLDER,"), 0u);
  EXPECT_NE(file.find("TITLE0,Account 1\r\nSERVER0,\r\nUNAME0,\r\nPWD0,\xC5\xC6\xC7\r\nCHECK0, 0 \r\nSTOPATLAST0, 0 \r\n"
                      "POPPORT0, 110 \r\nSMTP0,\r\nSMTPPORT0, 25 \r\nSMTPAUTH0, 1 \r\nSMTPUNAME0,\r\nSMTPPWD0,\r\n"
                      "REPLYADDRESS0,me@example.org\r\nDISPLAYNAME0,JoSmith\r\nEXCLUSIVE0_0,\r\nEXCLUSIVE1_0,\r\n"
                      "TITLE1,Account 2\r\n"),
            std::string::npos);
  EXPECT_NE(file.find("EXCLUSIVE1_19,\r\nDISABLEAUTOUPDATECHECK,"), std::string::npos);
  EXPECT_NE(file.find("\r\nAUDIO, 1 \r\nSTARTMIN,1\r\nDELETEONRETRIEVE, 0 \r\n"), std::string::npos);
  EXPECT_NE(file.find("\r\nSHOWSCANNERFIRST,-1 \r\nMAILTIMEOUT,30\r\nAGE0,30\r\nAGE1,14\r\nAGE2,1\r\n"), std::string::npos);
  EXPECT_EQ(h.pathSettings.get("MessageFolder").text(), h.root() + "/Messages");
}

TEST(SettingsFormWrite, WhatWasWrittenReadsBackTheSame) {
  FormHome h;
  h.form.accounts[3].title = "Work";
  h.form.accounts[3].check = true;
  h.form.accounts[3].smtpPassword = "p\xE4ss";
  h.form.scanOnStartup = false;
  h.form.autoUpdateCheck = false;
  h.form.showScannerFirst = false;
  h.form.seconds = "120";
  ASSERT_FALSE(h.review().refusal);
  writeSettingsForm(h.form, h.settings, h.folders);
  SettingsStore reloaded(h.home.log, h.home.prompt);
  reloaded.loadSettingsFromText(h.settings.fileText(), "memory");
  const SettingsForm back = readSettingsForm(reloaded, h.folders);
  EXPECT_EQ(back.accounts[3].title, "Work");
  EXPECT_TRUE(back.accounts[3].check);
  EXPECT_FALSE(back.accounts[2].check);
  EXPECT_EQ(back.accounts[3].smtpPassword, "p\xE4ss");
  EXPECT_FALSE(back.scanOnStartup);
  EXPECT_FALSE(back.autoUpdateCheck);
  EXPECT_FALSE(back.showScannerFirst);
  EXPECT_EQ(back.seconds, "120");
  EXPECT_EQ(back.spamFolder, h.form.spamFolder);
}

}  // namespace
}  // namespace vonel
