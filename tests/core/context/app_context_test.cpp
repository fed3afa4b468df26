#include "core/context/app_context.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/files/file_info.h"

namespace vonel {
namespace {

struct ContextHome {
  testing::TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 14, 5, 9}};
  ScriptedPrompt prompt;
};

TEST(DataFolders, DefaultsLieInTheHomeAndAreCreated) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()});
  ctx.folders.readMessageFolder();
  ctx.folders.readFilterFolder();
  ctx.folders.readDataFolder();
  const auto root = home.dir.path() / "Messages";
  EXPECT_EQ(ctx.folders.messageFolderPath, root);
  EXPECT_EQ(ctx.folders.sentFolderPath, root / "Sent Items");
  for (const char* folder : {"Inbox", "Outbox", "Sent Items", "Deleted", "Archive", "SpamBayes/BayesOld"}) {
    EXPECT_TRUE(files::folderExists(root / folder)) << folder;
  }
  EXPECT_EQ(ctx.folders.filterFolderPath, home.dir.path());
  EXPECT_EQ(ctx.folders.folderNamesFile, home.dir.path() / "foldernames.ini");
  EXPECT_EQ(ctx.pathSettings.get("MessageFolder").text(), root.string());  // stored back
}

TEST(DataFolders, ExactlyOneTrailingSeparatorIsRemovedAndSettersMoveEverything) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()});
  const std::string store = (home.dir.path() / "Store").string();
  ctx.pathSettings.set("MessageFolder", Value(store + "\\\\"));
  ctx.folders.readMessageFolder();
  EXPECT_EQ(ctx.folders.messageFolderPath.string(), store + "\\");
  ctx.folders.setMessageFolder(home.dir.path() / "Other");
  EXPECT_EQ(ctx.folders.inboxFolderPath, home.dir.path() / "Other" / "Inbox");
  EXPECT_TRUE(files::folderExists(home.dir.path() / "Other" / "Inbox"));
}

TEST(BayesSettings, ZeroOrMissingKeysKeepTheDefaults) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()});
  ctx.settings.loadSettingsFromText("SPAMMINESS, .95 \r\nHEADERWORDS, 0 \r\nSPAMWORDCOUNT,99999999\r\n", "m");
  ctx.readBayesSettings();
  EXPECT_FLOAT_EQ(ctx.spamThreshold, 0.95f);
  EXPECT_FLOAT_EQ(ctx.saveToSpamThreshold, 0.7f);
  EXPECT_EQ(ctx.headerWordCount, 12);
  EXPECT_EQ(ctx.spamWordMinimum, 32767);
}

TEST(LocaleDates, ReadTheOrderOfTheSystemsShortDate) {
  ContextHome home;
  AppContext british(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                     LocaleFacts{"25/12/2001", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(british.dates().dateFormatString, "DD/MM/YYYY");
  EXPECT_EQ(british.dates().dayField, 1);
  EXPECT_EQ(british.dates().monthField, 2);
  EXPECT_EQ(british.dates().shortFormatDate(home.clock.now()), "23/11/2026");

  AppContext american(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                      LocaleFacts{"12-25-01", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(american.dates().dateFormatString, "MM-DD-YY");
  EXPECT_EQ(american.dates().fullDateFormatString, "DD-MMM-YYYY");
  EXPECT_EQ(american.dates().dateSeparator, "-");

  AppContext german(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                    LocaleFacts{"25.12.01", {"JAN", "FEB", "MRZ", "APR", "MAI", "JUN", "JUL", "AUG", "SEP", "OKT",
                                             "NOV", "DEZ"}, "Wahr", "Falsch", ","});
  EXPECT_TRUE(german.dates().commaThousandSeparator);
  EXPECT_TRUE(german.dates().translateMonthNames);
  EXPECT_EQ(german.dates().dateFormatString, "DD.MM.YY");
  EXPECT_EQ(german.dates().trueWord, "WAHR");

  AppContext iso(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                 LocaleFacts{"2001-12-25", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(iso.dates().dateFormatString, "YYYY-MM-DD");
  EXPECT_EQ(iso.dates().yearField, 1);
}

TEST(LocaleDates, DateTokensAreReplacedInAnyCase) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                 LocaleFacts{"25/12/2001", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(ctx.dates().expandDateTokens("$weekday$ $Yyyy$"), "Mon 2026");
  EXPECT_EQ(ctx.dates().expandDateTokens("$DATE$|$MMM$|$DD$|$MM$|$MONTH$|$YY$|$TIME$"),
            "20261123|Nov|23|11|November|26|14.05.09");
  EXPECT_EQ(ctx.dates().expandDateTokens("$TODAY$ $7DAYSAGO$"), "23/11/2026 16/11/2026");
  EXPECT_EQ(ctx.dates().formatDate(home.clock.now()), "23/Nov/2026");
}

}  // namespace
}  // namespace vonel
