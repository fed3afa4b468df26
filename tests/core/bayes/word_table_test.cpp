#include "core/bayes/word_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "../test_home.h"
#include "core/log/app_error.h"

namespace vonel::bayes {
namespace {

using vonel::testing::TestHome;

std::filesystem::path inHome(const TestHome& home, const std::string& name) { return home.dir.path() / name; }

void writeFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

std::string readFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST(HashTableCounts, NewKeyStartsAtOneWhateverTheIncrement) {
  WordTable table;
  table.addCount("SUB*free", 5);
  EXPECT_EQ(table.find("SUB*free").value().value, 1);
  table.addCount("SUB*free", 1);
  table.addCount("SUB*free");
  EXPECT_EQ(table.find("SUB*free").value().value, 3);
  EXPECT_FALSE(table.indexOf("SUB*FREE")) << "keys compare with case";
  table.addCount("SUB*free", 0);
  EXPECT_EQ(table.find("SUB*free").value().value, 1) << "increment 0 resets";
  table.addCount("SUB*free");
  table.addCount("SUB*free", -3);
  EXPECT_EQ(table.find("SUB*free").value().value, 0) << "never below 0";
}

TEST(HashTableSearch, AbsenceFindsNothing) {
  WordTable table;
  EXPECT_FALSE(table.indexOf("x")) << "an unused table has nothing";
  EXPECT_EQ(table.maxRecords, 0);
  EXPECT_FALSE(table.find("x"));
  EXPECT_EQ(table.maxRecords, 50000) << "first use sets up a standard table";
}

TEST(HashTableSearch, RepeatedInsertIsFoundNewestFirst) {
  WordTable table;
  table.initSmall();
  table.insertRecord("k", 0.2f);
  table.insertRecord("k", 0.7f);
  EXPECT_EQ(table.find("k").value().value, 0.7f);
  EXPECT_EQ(table.find("k").value().index, 2);
  table.remove("k");
  EXPECT_EQ(table.find("k").value().value, 0.2f);
  EXPECT_EQ(table.lastRecord, 2) << "deleting never lowers LastRecord";
  EXPECT_EQ(table.keyAt(2), "");
  table.insertRecord("m", 1);
  EXPECT_EQ(table.indexOf("m"), 2) << "the freed index is used again";
}

TEST(HashTableSearch, DeletingWhatIsNotThereRaisesKeyNotFound) {
  WordTable table;
  table.initSmall();
  try {
    table.remove("absent");
    FAIL();
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 513);
    EXPECT_EQ(e.description(), "Key not found: CHash.Delete ");
  }
  EXPECT_THROW(table.valueAt(501), AppError);
  EXPECT_THROW(table.valueAt(0), AppError);
}

TEST(HashTableGrowth, GrowsByHalfWithHalvesToEven) {
  EXPECT_EQ(grownBound(500, 1.5f), 750);
  EXPECT_EQ(grownBound(1125, 1.5f), 1688);
  EXPECT_EQ(grownBound(7, 1.5f), 10);
  EXPECT_EQ(grownBound(1, 1.5f), 2);

  WordTable table;
  table.initSmall();
  for (int i = 1; i <= 501; ++i) table.addCount("key" + std::to_string(i));
  EXPECT_EQ(table.maxRecords, 750);
  EXPECT_EQ(table.lastRecord, 501);
  for (int i = 1; i <= 501; ++i) ASSERT_EQ(table.indexOf("key" + std::to_string(i)), i);
  for (int i = 502; i <= 751; ++i) table.addCount("key" + std::to_string(i));
  EXPECT_EQ(table.maxRecords, 1125);
  EXPECT_EQ(table.indexOf("key751"), 751);
}

TEST(HashTableFile, WritesPrintFormLinesInIndexOrder) {
  WordTable table;
  table.initSmall();
  table.addCount("SUB*free", 1);
  table.addCount("SUB*free", 2);
  table.insertRecord("gone", 1);
  table.insertRecord("URL*example.org", 0.99f);
  table.insertRecord("neg", -2.5f);
  table.remove("gone");
  EXPECT_EQ(table.fileText(),
            "Count, String\r\n 0 \r\n 3 , SUB*free\r\n .99 , URL*example.org\r\n-2.5 , neg\r\n");
}

TEST(HashTableFile, RoundTripTrimsKeysButKeepsCommas) {
  TestHome home;
  WordTable table;
  table.initSmall();
  table.messageCount = 7;
  table.insertRecord("a,b, c", 0.25f);
  table.insertRecord(" lead", 2);
  ASSERT_TRUE(table.writeHashTable(inHome(home, "HashGood.dat"), home.log));

  WordTable loaded;
  loaded.loadTable(inHome(home, "HashGood.dat"), home.log);
  EXPECT_EQ(loaded.messageCount, 7);
  EXPECT_EQ(loaded.find("a,b, c").value().value, 0.25f);
  EXPECT_FALSE(loaded.indexOf(" lead"));
  EXPECT_EQ(loaded.find("lead").value().value, 2);
  EXPECT_EQ(loaded.maxRecords, 2 * (4 + 1000)) << "sized by the lines of its file";
  EXPECT_NE(home.log.currentAction().find("Hashtable loaded "), std::string::npos);
  EXPECT_NE(home.log.currentAction().find(" seconds."), std::string::npos);
}

TEST(HashTableFile, WriteReplacesAReadOnlyFile) {
  TestHome home;
  writeFile(inHome(home, "HashTable.dat"), "old");
  std::filesystem::permissions(inHome(home, "HashTable.dat"), std::filesystem::perms::owner_read);
  WordTable table;
  table.insertRecord("x", 0.5f);
  ASSERT_TRUE(table.writeHashTable(inHome(home, "HashTable.dat"), home.log));
  EXPECT_EQ(readFile(inHome(home, "HashTable.dat")), "Count, String\r\n 0 \r\n .5 , x\r\n");
}

TEST(HashTableFile, MissingFileLeavesTheTableAsItWas) {
  TestHome home;
  WordTable table;
  table.loadTable(inHome(home, "HashTable.dat"), home.log);
  EXPECT_FALSE(table.initialised());
  EXPECT_EQ(table.maxRecords, 0);
}

TEST(HashTableFile, LoadingAddsToAnInitialisedTable) {
  WordTable table;
  table.initSmall();
  table.addCount("old");
  table.loadText("Count, String\r\n 2 \r\n 5 , new\r\n");
  EXPECT_EQ(table.maxRecords, 500);
  EXPECT_EQ(table.find("old").value().value, 1);
  EXPECT_EQ(table.find("new").value().value, 5);
}

struct OddFile {
  const char* name;
  std::string bytes;
  std::int32_t messageCount;
  std::int32_t records;
};

class HashTableOddFiles : public ::testing::TestWithParam<OddFile> {};

TEST_P(HashTableOddFiles, LoadsWhatTheLinesAllow) {
  WordTable table;
  table.loadText(GetParam().bytes);
  EXPECT_TRUE(table.initialised());
  EXPECT_EQ(table.messageCount, GetParam().messageCount);
  EXPECT_EQ(table.lastRecord, GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HashTableOddFiles,
    ::testing::Values(OddFile{"empty", "", 0, 0}, OddFile{"oneLine", "Count, String\r\n", 0, 0},
                      OddFile{"headerOnly", "Count, String\r\n 0 \r\n", 1, 0},
                      OddFile{"countNotANumber", "Count, String\r\nabc\r\n", 1, 0},
                      OddFile{"lastLineWithoutCr", "C\r\n 4 \r\n 1 , a\r\n 2 , b", 4, 1},
                      OddFile{"linesWithoutComma", "C\r\n 4 \r\n 1 a\r\n\r\n 2 , b\r\n", 4, 1},
                      OddFile{"lfOnly", "Count, String\n 3 \n 1 , a\n", 0, 0},
                      OddFile{"hugeCount", "C\r\n 1E+30 \r\n", 2147483647, 0},
                      OddFile{"binary", std::string("\0\r\xff,\x01\r\r,\r\x80\x81,\xfe\r", 14), 1, 1}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(HashTableFile, OddValuesAndLineEnds) {
  WordTable table;
  table.loadText("C\r\n 1 \r\n abc , notANumber\r\n 1E+99 , tooBig\r\n");
  EXPECT_EQ(table.find("notANumber").value().value, 0);
  EXPECT_EQ(table.find("tooBig").value().value, std::numeric_limits<float>::max());

  WordTable crOnly;
  crOnly.loadText("C\r 1 \r 2 , ab\r 3 , cd\r");
  EXPECT_EQ(crOnly.find("ab").value().value, 2) << "the sign column is what is lost";
  WordTable crOnlyUnsigned;
  crOnlyUnsigned.loadText("C\r1\r25,ab\r");
  EXPECT_EQ(crOnlyUnsigned.find("ab").value().value, 5);
}

}  // namespace
}  // namespace vonel::bayes
