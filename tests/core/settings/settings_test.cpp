#include "core/settings/settings.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace std::string_literals;

#include "../test_home.h"
#include "core/services/file_subs.h"

namespace vonel {
namespace {

class SettingsTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  cSHAREDSettings settings{home.log, home.prompt};
  std::filesystem::path file() const { return home.dir.path() / "Vonel.ini"; }
  void load(const std::string& text) { settings.LoadSettingsFromText(text, "test"); }
};

TEST_F(SettingsTest, LoadSplitsAtTheFirstCommaAndSkipsLinesWithoutKey) {
  load("KEY,a,b\r\nEMPTY,\r\nNOCOMMA\r\n ,x\r\nSCANONSTART, true \r\nOFF,FALSE\r\n");
  EXPECT_EQ(settings.RetrieveSetting("KEY").text(), "a,b");
  EXPECT_TRUE(settings.IsSettingPresent("EMPTY"));
  EXPECT_EQ(settings.RetrieveSetting("EMPTY").text(), "");
  EXPECT_FALSE(settings.IsSettingPresent("NOCOMMA"));
  EXPECT_EQ(settings.SettingsCount(), 4);
  EXPECT_EQ(settings.RetrieveSetting("ScanOnStart"), Value(-1));
  EXPECT_EQ(settings.RetrieveSetting("off"), Value(0));
}

TEST_F(SettingsTest, OnlyCrLfEndsALine) {
  load("A,1\nB,2\r\nC,3");
  EXPECT_EQ(settings.RetrieveSetting("A").text(), "1\nB,2");
  EXPECT_EQ(settings.RetrieveSetting("C").text(), "3");
}

TEST_F(SettingsTest, ADuplicateKeyKeepsItsFirstPlaceWithTheLaterValue) {
  load("A,1\r\nB,2\r\nA,3\r\n");
  EXPECT_EQ(settings.SettingNameByIndex(1), "A");
  EXPECT_EQ(settings.RetrieveSetting("a").text(), "3");
  EXPECT_EQ(settings.SettingNameByIndex(3), "");
}

TEST_F(SettingsTest, NamesLoseTheirCommasAndIgnoreCase) {
  settings.StoreSetting("a,b", Value(1));
  EXPECT_TRUE(settings.IsSettingPresent("a,b"));
  EXPECT_TRUE(settings.IsSettingPresent("AB"));
  settings.StoreSetting("MainWidth", Value(1));
  settings.StoreSetting("MAINWIDTH", Value(2));
  EXPECT_EQ(settings.SettingsCount(), 2);
  EXPECT_EQ(settings.SettingNameByIndex(2), "MainWidth");  // the first spelling stays
}

TEST_F(SettingsTest, BooleansAreStoredAsMinusOneAndZero) {
  settings.StoreSetting("X", Value(true));
  EXPECT_EQ(settings.RetrieveSetting("X"), Value(-1));
  EXPECT_EQ(settings.RetrieveWithDefault("X", Value(5)), Value(-1));
  settings.StoreSetting("X", Value(false));
  EXPECT_EQ(settings.RetrieveWithDefault("X", Value(5)), Value(5));
  EXPECT_EQ(settings.RetrieveSetting("X", Value(5)), Value(0));
  settings.StoreSetting("T", Value("true"));
  EXPECT_EQ(settings.RetrieveSetting("T"), Value(true));
}

TEST_F(SettingsTest, RetrieveWithDefaultTakesTheDefaultForAnythingThatReadsZero) {
  load("ZERO, 0 \r\nEMPTY,\r\nWORD,abc\r\nFIVE, 5 \r\n");
  EXPECT_EQ(settings.RetrieveWithDefault("ZERO", Value(7)), Value(7));
  EXPECT_EQ(settings.RetrieveWithDefault("EMPTY", Value(7)), Value(7));
  EXPECT_EQ(settings.RetrieveWithDefault("MISSING", Value(7)), Value(7));
  EXPECT_EQ(settings.RetrieveWithDefault("FIVE", Value(7)).number(), 5);
  EXPECT_EQ(settings.RetrieveWithDefault("WORD", Value(7)), Value("abc"));  // logged, returned as it stands
  home.log.WriteActionsToLog();
  EXPECT_NE(files::LoadTextFile(home.dir.path() / "log.txt").find("RetrieveWithDefault (13)"), std::string::npos);
}

TEST_F(SettingsTest, LocalisedBooleanWordsAreRead) {
  settings.setLocalBooleanWords("Wahr", "Falsch");
  load("A, wahr\r\nB,FALSCH\r\n");
  EXPECT_EQ(settings.RetrieveSetting("A"), Value(-1));
  EXPECT_EQ(settings.RetrieveSetting("B"), Value(0));
}

TEST_F(SettingsTest, SaveWritesCapitalKeysInOrderWithNumbersInPrintForm) {
  settings.StoreSetting("zeta", Value("text, with comma"));
  settings.StoreSetting("Alpha", Value(5));
  settings.StoreSetting("Neg", Value(-1));
  settings.StoreSetting("Flag", Value(true));
  settings.StoreSetting("Score", Value(0.99f));
  settings.StoreSetting("Nothing", Value());
  ASSERT_TRUE(settings.SaveSettings(file()));
  EXPECT_EQ(files::LoadTextFile(file()),
            "ZETA,text, with comma\r\nALPHA, 5 \r\nNEG,-1 \r\nFLAG,-1 \r\nSCORE, .99 \r\nNOTHING,\r\n");

  cSHAREDSettings again(home.log, home.prompt);
  again.LoadSettings(file());
  EXPECT_EQ(again.RetrieveSetting("alpha").text(), " 5 ");
  EXPECT_EQ(again.RetrieveSetting("alpha").number(), 5);
  EXPECT_EQ(again.fileText(), settings.fileText());
}

TEST_F(SettingsTest, LoadingAMissingFileEmptiesTheTable) {
  settings.StoreSetting("A", Value(1));
  settings.LoadSettings(home.dir.path() / "absent.ini");
  EXPECT_EQ(settings.SettingsCount(), 0);
  EXPECT_TRUE(home.prompt.lastError.empty());
}

TEST_F(SettingsTest, AReadOnlyFileIsMadeWritableAndSaved) {
  files::WriteTextFile(file(), "OLD,1\r\n");
  std::filesystem::permissions(file(), std::filesystem::perms::owner_read);
  settings.StoreSetting("NEW", Value("2"));
  EXPECT_TRUE(settings.SaveSettings(file()));
  EXPECT_EQ(files::LoadTextFile(file()), "NEW,2\r\n");
}

TEST_F(SettingsTest, AFolderThatRefusesWritesCancelsTheSaveAndKeepsTheOldFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes into read-only folders";
  const auto folder = home.dir.path() / "locked";
  std::filesystem::create_directory(folder);
  files::WriteTextFile(folder / "Vonel.ini", "OLD,1\r\n");
  std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  settings.StoreSetting("NEW", Value("2"));
  EXPECT_FALSE(settings.SaveSettings(folder / "Vonel.ini"));
  EXPECT_EQ(home.prompt.lastQuestion, "Your settings file is read-only and I can't change it. Save cancelled.");
  EXPECT_EQ(files::LoadTextFile(folder / "Vonel.ini"), "OLD,1\r\n");
}

class SetsTest : public SettingsTest {};

TEST_F(SetsTest, DeletingAMemberClosesTheGap) {
  for (const char* v : {"one", "two", "three"}) settings.AddToSet("key", Value(v));
  settings.DeleteFromSetByValue("KEY", Value(" TWO "));
  EXPECT_EQ(settings.RetrieveSetting("KEY_1").text(), "one");
  EXPECT_EQ(settings.RetrieveSetting("KEY_2").text(), "three");
  EXPECT_FALSE(settings.IsSettingPresent("KEY_3"));
  EXPECT_EQ(settings.LastIndexInSet("key"), 2);
  EXPECT_TRUE(settings.ValueInSet("key", Value("Three\0"s)));
  EXPECT_FALSE(settings.ValueInSet("key", Value("two")));
}

TEST_F(SetsTest, AStrayMemberPastTheIndexIsSteppedOver) {
  load("KEY_INDEX, 2 \r\nKEY_1,a\r\nKEY_2,b\r\nKEY_3,stray\r\n");
  EXPECT_EQ(settings.AddToSet("key", Value("new")), 4);
  EXPECT_EQ(settings.LastIndexInSet("KEY"), 4);
  EXPECT_EQ(settings.RetrieveSetting("KEY_3").text(), "stray");
  EXPECT_EQ(settings.SetCount("key"), 4);
}

TEST_F(SetsTest, CountWarnsAboutHolesAndDeleteReachesOnlyTenPastTheCount) {
  load("KEY_INDEX,15\r\nKEY_15,far\r\n");
  EXPECT_EQ(settings.SetCount("key"), 1);
  home.log.WriteActionsToLog();
  EXPECT_NE(files::LoadTextFile(home.dir.path() / "log.txt")
                .find("WARNING: LastIDX and Setcount not the same with setting 'key'"),
            std::string::npos);
  settings.DeleteASet("key");
  EXPECT_FALSE(settings.IsSettingPresent("KEY_INDEX"));
  EXPECT_TRUE(settings.IsSettingPresent("KEY_15"));
}

TEST_F(SetsTest, AHandWrittenHugeIndexStaysCheapAndKeepsTheMembers) {
  load("KEY_INDEX,2147483000\r\nKEY_1,a\r\nKEY_3,c\r\n");
  EXPECT_EQ(settings.SetCount("key"), 2);
  EXPECT_TRUE(settings.ValueInSet("key", Value("c")));
  EXPECT_FALSE(settings.ValueInSet("key", Value("z")));
  settings.DeleteFromSetByValue("key", Value("a"));
  EXPECT_EQ(settings.RetrieveSetting("KEY_2").text(), "c");
  EXPECT_EQ(settings.LastIndexInSet("key"), 2147482999);

  load("KEY_INDEX,2147483647\r\nKEY_2147483647,top\r\n");
  EXPECT_EQ(settings.SetCount("key"), 1);
  EXPECT_THROW(settings.AddToSet("key", Value("x")), AppError);
}

TEST_F(SetsTest, AMissingSetIsEmpty) {
  EXPECT_EQ(settings.LastIndexInSet("none"), 0);
  EXPECT_EQ(settings.SetCount("none"), 0);
  EXPECT_FALSE(settings.ValueInSet("none", Value("x")));
}

}  // namespace
}  // namespace vonel
