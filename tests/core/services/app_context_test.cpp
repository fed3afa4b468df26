#include "core/services/app_context.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/services/file_subs.h"

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
  ctx.folders.ReadMessageFolder();
  ctx.folders.ReadFilterFolder();
  ctx.folders.ReadDataFolder();
  const auto root = home.dir.path() / "Messages";
  EXPECT_EQ(ctx.folders.MessageFolderPath, root);
  EXPECT_EQ(ctx.folders.SentFolderPath, root / "Sent Items");
  for (const char* folder : {"Inbox", "Outbox", "Sent Items", "Deleted", "Archive", "SpamBayes/BayesOld"}) {
    EXPECT_TRUE(files::FolderExists(root / folder)) << folder;
  }
  EXPECT_EQ(ctx.folders.FilterFolderPath, home.dir.path());
  EXPECT_EQ(ctx.folders.FolderNamesIni, home.dir.path() / "foldernames.ini");
  EXPECT_EQ(ctx.PathSettings.RetrieveSetting("MessageFolder").text(), root.string());  // stored back
}

TEST(DataFolders, ExactlyOneTrailingSeparatorIsRemovedAndSettersMoveEverything) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()});
  const std::string store = (home.dir.path() / "Store").string();
  ctx.PathSettings.StoreSetting("MessageFolder", Value(store + "\\\\"));
  ctx.folders.ReadMessageFolder();
  EXPECT_EQ(ctx.folders.MessageFolderPath.string(), store + "\\");
  ctx.folders.SetMessageFolder(home.dir.path() / "Other");
  EXPECT_EQ(ctx.folders.InboxFolderPath, home.dir.path() / "Other" / "Inbox");
  EXPECT_TRUE(files::FolderExists(home.dir.path() / "Other" / "Inbox"));
}

TEST(BayesSettings, ZeroOrMissingKeysKeepTheDefaults) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()});
  ctx.Settings.LoadSettingsFromText("SPAMMINESS, .95 \r\nHEADERWORDS, 0 \r\nSPAMWORDCOUNT,99999999\r\n", "m");
  ctx.ReadBayesSettings();
  EXPECT_FLOAT_EQ(ctx.SpamThreshold, 0.95f);
  EXPECT_FLOAT_EQ(ctx.SaveToSpamThreshold, 0.7f);
  EXPECT_EQ(ctx.HeaderWordCount, 12);
  EXPECT_EQ(ctx.SpamWordMinimum, 32767);
}

TEST(DateSubs, ReadTheOrderOfTheSystemsShortDate) {
  ContextHome home;
  AppContext british(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                     LocaleFacts{"25/12/2001", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(british.dates().DateFormatString, "DD/MM/YYYY");
  EXPECT_EQ(british.dates().SysDateDayField, 1);
  EXPECT_EQ(british.dates().SysDateMonthField, 2);
  EXPECT_EQ(british.dates().ShortFormatDate(home.clock.now()), "23/11/2026");

  AppContext american(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                      LocaleFacts{"12-25-01", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(american.dates().DateFormatString, "MM-DD-YY");
  EXPECT_EQ(american.dates().FullDateFormatString, "DD-MMM-YYYY");
  EXPECT_EQ(american.dates().DateSeparator, "-");

  AppContext german(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                    LocaleFacts{"25.12.01", {"JAN", "FEB", "MRZ", "APR", "MAI", "JUN", "JUL", "AUG", "SEP", "OKT",
                                             "NOV", "DEZ"}, "Wahr", "Falsch", ","});
  EXPECT_TRUE(german.dates().CommaThousandSeparator);
  EXPECT_TRUE(german.dates().TranslateMonthNames);
  EXPECT_EQ(german.dates().DateFormatString, "DD.MM.YY");
  EXPECT_EQ(german.dates().TrueStr, "WAHR");

  AppContext iso(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                 LocaleFacts{"2001-12-25", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(iso.dates().DateFormatString, "YYYY-MM-DD");
  EXPECT_EQ(iso.dates().SysDateYearField, 1);
}

TEST(DateSubs, DateTokensAreReplacedInAnyCase) {
  ContextHome home;
  AppContext ctx(home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()},
                 LocaleFacts{"25/12/2001", text::englishShortMonthNames(), "True", "False", "."});
  EXPECT_EQ(ctx.dates().ConvertMyDateVar("$weekday$ $Yyyy$"), "Mon 2026");
  EXPECT_EQ(ctx.dates().ConvertMyDateVar("$DATE$|$MMM$|$DD$|$MM$|$MONTH$|$YY$|$TIME$"),
            "20261123|Nov|23|11|November|26|14.05.09");
  EXPECT_EQ(ctx.dates().ConvertMyDateVar("$TODAY$ $7DAYSAGO$"), "23/11/2026 16/11/2026");
  EXPECT_EQ(ctx.dates().FormatDate(home.clock.now()), "23/Nov/2026");
}

}  // namespace
}  // namespace vonel
