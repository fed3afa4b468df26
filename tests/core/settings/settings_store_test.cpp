#include "core/settings/settings_store.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace std::string_literals;

#include "../test_home.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"

namespace vonel {
namespace {

class SettingsTest : public ::testing::Test {
 protected:
  testing::TestHome home;
  SettingsStore settings{home.log, home.prompt};
  std::filesystem::path file() const { return home.dir.path() / "Vonel.ini"; }
  void load(const std::string& text) { settings.loadSettingsFromText(text, "test"); }
};

TEST_F(SettingsTest, LoadSplitsAtTheFirstCommaAndSkipsLinesWithoutKey) {
  load("KEY,a,b\r\nEMPTY,\r\nNOCOMMA\r\n ,x\r\nSCANONSTART, true \r\nOFF,FALSE\r\n");
  EXPECT_EQ(settings.get("KEY").text(), "a,b");
  EXPECT_TRUE(settings.isSettingPresent("EMPTY"));
  EXPECT_EQ(settings.get("EMPTY").text(), "");
  EXPECT_FALSE(settings.isSettingPresent("NOCOMMA"));
  EXPECT_EQ(settings.settingsCount(), 4);
  EXPECT_EQ(settings.get("ScanOnStart"), Value(-1));
  EXPECT_EQ(settings.get("off"), Value(0));
}

TEST_F(SettingsTest, OnlyCrLfEndsALine) {
  load("A,1\nB,2\r\nC,3");
  EXPECT_EQ(settings.get("A").text(), "1\nB,2");
  EXPECT_EQ(settings.get("C").text(), "3");
}

TEST_F(SettingsTest, ADuplicateKeyKeepsItsFirstPlaceWithTheLaterValue) {
  load("A,1\r\nB,2\r\nA,3\r\n");
  EXPECT_EQ(settings.settingNameByIndex(1), "A");
  EXPECT_EQ(settings.get("a").text(), "3");
  EXPECT_EQ(settings.settingNameByIndex(3), "");
}

TEST_F(SettingsTest, NamesLoseTheirCommasAndIgnoreCase) {
  settings.set("a,b", Value(1));
  EXPECT_TRUE(settings.isSettingPresent("a,b"));
  EXPECT_TRUE(settings.isSettingPresent("AB"));
  settings.set("MainWidth", Value(1));
  settings.set("MAINWIDTH", Value(2));
  EXPECT_EQ(settings.settingsCount(), 2);
  EXPECT_EQ(settings.settingNameByIndex(2), "MainWidth");  // the first spelling stays
}

TEST_F(SettingsTest, BooleansAreStoredAsMinusOneAndZero) {
  settings.set("X", Value(true));
  EXPECT_EQ(settings.get("X"), Value(-1));
  EXPECT_EQ(settings.getOrDefault("X", Value(5)), Value(-1));
  settings.set("X", Value(false));
  EXPECT_EQ(settings.getOrDefault("X", Value(5)), Value(5));
  EXPECT_EQ(settings.get("X", Value(5)), Value(0));
  settings.set("T", Value("true"));
  EXPECT_EQ(settings.get("T"), Value(true));
}

TEST_F(SettingsTest, RetrieveWithDefaultTakesTheDefaultForAnythingThatReadsZero) {
  load("ZERO, 0 \r\nEMPTY,\r\nWORD,abc\r\nFIVE, 5 \r\n");
  EXPECT_EQ(settings.getOrDefault("ZERO", Value(7)), Value(7));
  EXPECT_EQ(settings.getOrDefault("EMPTY", Value(7)), Value(7));
  EXPECT_EQ(settings.getOrDefault("MISSING", Value(7)), Value(7));
  EXPECT_EQ(settings.getOrDefault("FIVE", Value(7)).number(), 5);
  EXPECT_EQ(settings.getOrDefault("WORD", Value(7)), Value("abc"));  // logged, returned as it stands
  home.log.writeActionsToLog();
  EXPECT_NE(files::loadTextFile(home.dir.path() / "log.txt").find("RetrieveWithDefault (13)"), std::string::npos);
}

TEST_F(SettingsTest, LocalisedBooleanWordsAreRead) {
  settings.setLocalBooleanWords("Wahr", "Falsch");
  load("A, wahr\r\nB,FALSCH\r\n");
  EXPECT_EQ(settings.get("A"), Value(-1));
  EXPECT_EQ(settings.get("B"), Value(0));
}

TEST_F(SettingsTest, SaveWritesCapitalKeysInOrderWithNumbersInPrintForm) {
  settings.set("zeta", Value("text, with comma"));
  settings.set("Alpha", Value(5));
  settings.set("Neg", Value(-1));
  settings.set("Flag", Value(true));
  settings.set("Score", Value(0.99f));
  settings.set("Nothing", Value());
  ASSERT_TRUE(settings.saveSettings(file()));
  EXPECT_EQ(files::loadTextFile(file()),
            "ZETA,text, with comma\r\nALPHA, 5 \r\nNEG,-1 \r\nFLAG,-1 \r\nSCORE, .99 \r\nNOTHING,\r\n");

  SettingsStore again(home.log, home.prompt);
  again.loadSettings(file());
  EXPECT_EQ(again.get("alpha").text(), " 5 ");
  EXPECT_EQ(again.get("alpha").number(), 5);
  EXPECT_EQ(again.fileText(), settings.fileText());
}

TEST_F(SettingsTest, LoadingAMissingFileEmptiesTheTable) {
  settings.set("A", Value(1));
  settings.loadSettings(home.dir.path() / "absent.ini");
  EXPECT_EQ(settings.settingsCount(), 0);
  EXPECT_TRUE(home.prompt.lastError.empty());
}

TEST_F(SettingsTest, AReadOnlyFileIsMadeWritableAndSaved) {
  files::writeTextFile(file(), "OLD,1\r\n");
  std::filesystem::permissions(file(), std::filesystem::perms::owner_read);
  settings.set("NEW", Value("2"));
  EXPECT_TRUE(settings.saveSettings(file()));
  EXPECT_EQ(files::loadTextFile(file()), "NEW,2\r\n");
}

TEST_F(SettingsTest, AFolderThatRefusesWritesCancelsTheSaveAndKeepsTheOldFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes into read-only folders";
  const auto folder = home.dir.path() / "locked";
  std::filesystem::create_directory(folder);
  files::writeTextFile(folder / "Vonel.ini", "OLD,1\r\n");
  std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  settings.set("NEW", Value("2"));
  EXPECT_FALSE(settings.saveSettings(folder / "Vonel.ini"));
  EXPECT_EQ(home.prompt.lastQuestion, "Your settings file is read-only and I can't change it. Save cancelled.");
  EXPECT_EQ(files::loadTextFile(folder / "Vonel.ini"), "OLD,1\r\n");
}

TEST_F(SettingsTest, LinesThatHoldNoSettingAreWrittenBackInPlace) {
  const std::string binary = "\x00\x01\xff\xfe junk \x7f"s;
  const std::string text = "TITLE0,Home\r\nSERVER0=x\r\n" + binary + "\r\n\r\n,no key\r\n  ,blank key\r\n"
                           "SERVER0,pop.example.org\r\n[Section]\r\nLAST,1\r\ntrailing without line end";
  files::writeTextFile(file(), text);
  settings.loadSettings(file());
  EXPECT_EQ(settings.settingsCount(), 3);
  ASSERT_TRUE(settings.saveSettings(file()));
  EXPECT_EQ(files::loadTextFile(file()), text + "\r\n");

  // Changes move no kept line: a changed value stays, a deleted key leaves
  // its neighbour's lines before the next key, a new key goes at the end.
  settings.set("Server0", Value("other"));
  settings.deleteSettingByName("TITLE0");
  settings.set("NEW", Value(5));
  EXPECT_EQ(settings.fileText(), "SERVER0=x\r\n" + binary + "\r\n\r\n,no key\r\n  ,blank key\r\n"
                                 "SERVER0,other\r\n[Section]\r\nLAST,1\r\ntrailing without line end\r\nNEW, 5 \r\n");
}

TEST_F(SettingsTest, MixedLineEndsAndRepeatedKeysReadAndWriteBackAsDocumented) {
  // Only CR LF ends a line: a bare LF stays inside its line, kept or not.
  load("A,1\nB,2\r\nno comma\nat all\r\nsecond\r\r\nA,3\r\nafter A\r\n");
  EXPECT_EQ(settings.settingsCount(), 1);
  EXPECT_EQ(settings.get("A").text(), "3");
  // The repeated key keeps its first place; the line after it stays after
  // what came before it.
  EXPECT_EQ(settings.fileText(), "A,3\r\nno comma\nat all\r\nsecond\r\r\nafter A\r\n");

  load("lower,true\r\n\r\n");
  EXPECT_EQ(settings.fileText(), "LOWER,-1 \r\n\r\n");
  load("");
  EXPECT_EQ(settings.fileText(), "");
}

TEST_F(SettingsTest, AnUnreadableFileIsSetAsideBeforeItIsWritten) {
  std::filesystem::create_directory(file());
  settings.loadSettings(file());
  EXPECT_EQ(settings.settingsCount(), 0);
  EXPECT_NE(home.prompt.lastError.find("Vonel.ini could not be read"), std::string::npos);
  settings.set("NEW", Value("1"));
  ASSERT_TRUE(settings.saveSettings(file()));
  EXPECT_EQ(files::loadTextFile(file()), "NEW,1\r\n");
  EXPECT_TRUE(std::filesystem::is_directory(home.dir.path() / "Vonel.ini.bad-20261123-093015"));

  // A file that can't even be set aside is not written at all.
  const auto locked = home.dir.path() / (std::string(250, 'x') + ".ini");
  std::filesystem::create_directory(locked);
  settings.loadSettings(locked);
  EXPECT_FALSE(settings.saveSettings(locked));
  EXPECT_NE(home.prompt.lastError.find("the changes to it were not saved"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_directory(locked));
}

class SetsTest : public SettingsTest {};

TEST_F(SetsTest, DeletingAMemberClosesTheGap) {
  for (const char* v : {"one", "two", "three"}) settings.addToSet("key", Value(v));
  settings.deleteFromSetByValue("KEY", Value(" TWO "));
  EXPECT_EQ(settings.get("KEY_1").text(), "one");
  EXPECT_EQ(settings.get("KEY_2").text(), "three");
  EXPECT_FALSE(settings.isSettingPresent("KEY_3"));
  EXPECT_EQ(settings.lastIndexInSet("key"), 2);
  EXPECT_TRUE(settings.valueInSet("key", Value("Three\0"s)));
  EXPECT_FALSE(settings.valueInSet("key", Value("two")));
}

TEST_F(SetsTest, AStrayMemberPastTheIndexIsSteppedOver) {
  load("KEY_INDEX, 2 \r\nKEY_1,a\r\nKEY_2,b\r\nKEY_3,stray\r\n");
  EXPECT_EQ(settings.addToSet("key", Value("new")), 4);
  EXPECT_EQ(settings.lastIndexInSet("KEY"), 4);
  EXPECT_EQ(settings.get("KEY_3").text(), "stray");
  EXPECT_EQ(settings.setCount("key"), 4);
}

TEST_F(SetsTest, CountWarnsAboutHolesAndDeleteReachesOnlyTenPastTheCount) {
  load("KEY_INDEX,15\r\nKEY_15,far\r\n");
  EXPECT_EQ(settings.setCount("key"), 1);
  home.log.writeActionsToLog();
  EXPECT_NE(files::loadTextFile(home.dir.path() / "log.txt")
                .find("WARNING: LastIDX and Setcount not the same with setting 'key'"),
            std::string::npos);
  settings.deleteASet("key");
  EXPECT_FALSE(settings.isSettingPresent("KEY_INDEX"));
  EXPECT_TRUE(settings.isSettingPresent("KEY_15"));
}

TEST_F(SetsTest, AHandWrittenHugeIndexStaysCheapAndKeepsTheMembers) {
  load("KEY_INDEX,2147483000\r\nKEY_1,a\r\nKEY_3,c\r\n");
  EXPECT_EQ(settings.setCount("key"), 2);
  EXPECT_TRUE(settings.valueInSet("key", Value("c")));
  EXPECT_FALSE(settings.valueInSet("key", Value("z")));
  settings.deleteFromSetByValue("key", Value("a"));
  EXPECT_EQ(settings.get("KEY_2").text(), "c");
  EXPECT_EQ(settings.lastIndexInSet("key"), 2147482999);

  load("KEY_INDEX,2147483647\r\nKEY_2147483647,top\r\n");
  EXPECT_EQ(settings.setCount("key"), 1);
  EXPECT_THROW(settings.addToSet("key", Value("x")), AppError);
}

TEST_F(SetsTest, AMissingSetIsEmpty) {
  EXPECT_EQ(settings.lastIndexInSet("none"), 0);
  EXPECT_EQ(settings.setCount("none"), 0);
  EXPECT_FALSE(settings.valueInSet("none", Value("x")));
}

}  // namespace
}  // namespace vonel
