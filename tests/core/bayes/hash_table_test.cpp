#include "core/bayes/hash_table.h"

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
  clsHashTable table;
  table.AlterValue("SUB*free", 5);
  EXPECT_EQ(table.HashFind("SUB*free").Value, 1);
  table.AlterValue("SUB*free", 1);
  table.Insert("SUB*free");
  EXPECT_EQ(table.HashFind("SUB*free").Value, 3);
  EXPECT_EQ(table.RecIndex("SUB*FREE"), -1) << "keys compare with case";
  table.AlterValue("SUB*free", 0);
  EXPECT_EQ(table.HashFind("SUB*free").Value, 1) << "increment 0 resets";
  table.Insert("SUB*free");
  table.AlterValue("SUB*free", -3);
  EXPECT_EQ(table.HashFind("SUB*free").Value, 0) << "never below 0";
}

TEST(HashTableSearch, AbsenceReadsMinusOne) {
  clsHashTable table;
  EXPECT_EQ(table.RecIndex("x"), -1) << "an unused table has nothing";
  EXPECT_EQ(table.MaxRecords, 0);
  const clsHashRec rec = table.HashFind("x");
  EXPECT_EQ(rec.Key, "-1");
  EXPECT_EQ(rec.Value, -1);
  EXPECT_EQ(rec.Index, 0);
  EXPECT_EQ(table.MaxRecords, 50000) << "first use sets up a standard table";
}

TEST(HashTableSearch, RepeatedInsertIsFoundNewestFirst) {
  clsHashTable table;
  table.InitSmall();
  table.InsertRecord("k", 0.2f);
  table.InsertRecord("k", 0.7f);
  EXPECT_EQ(table.Hashrecord("k").Value, 0.7f);
  EXPECT_EQ(table.Hashrecord("k").Index, 2);
  table.HashDelete("k");
  EXPECT_EQ(table.Hashrecord("k").Value, 0.2f);
  EXPECT_EQ(table.LastRecord, 2) << "deleting never lowers LastRecord";
  EXPECT_EQ(table.RecString(2), "");
  table.InsertRecord("m", 1);
  EXPECT_EQ(table.RecIndex("m"), 2) << "the freed index is used again";
}

TEST(HashTableSearch, DeletingWhatIsNotThereRaisesKeyNotFound) {
  clsHashTable table;
  table.InitSmall();
  try {
    table.HashDelete("absent");
    FAIL();
  } catch (const AppError& e) {
    EXPECT_EQ(e.number(), 513);
    EXPECT_EQ(e.description(), "Key not found: CHash.Delete ");
  }
  EXPECT_THROW(table.RecValue(501), AppError);
  EXPECT_THROW(table.RecValue(0), AppError);
}

TEST(HashTableGrowth, GrowsByHalfWithHalvesToEven) {
  EXPECT_EQ(GrownBound(500, 1.5f), 750);
  EXPECT_EQ(GrownBound(1125, 1.5f), 1688);
  EXPECT_EQ(GrownBound(7, 1.5f), 10);
  EXPECT_EQ(GrownBound(1, 1.5f), 2);

  clsHashTable table;
  table.InitSmall();
  for (int i = 1; i <= 501; ++i) table.Insert("key" + std::to_string(i));
  EXPECT_EQ(table.MaxRecords, 750);
  EXPECT_EQ(table.LastRecord, 501);
  for (int i = 1; i <= 501; ++i) ASSERT_EQ(table.RecIndex("key" + std::to_string(i)), i);
  for (int i = 502; i <= 751; ++i) table.Insert("key" + std::to_string(i));
  EXPECT_EQ(table.MaxRecords, 1125);
  EXPECT_EQ(table.RecIndex("key751"), 751);
}

TEST(HashTableFile, WritesPrintFormLinesInIndexOrder) {
  clsHashTable table;
  table.InitSmall();
  table.AlterValue("SUB*free", 1);
  table.AlterValue("SUB*free", 2);
  table.InsertRecord("gone", 1);
  table.InsertRecord("URL*example.org", 0.99f);
  table.InsertRecord("neg", -2.5f);
  table.HashDelete("gone");
  EXPECT_EQ(table.FileText(),
            "Count, String\r\n 0 \r\n 3 , SUB*free\r\n .99 , URL*example.org\r\n-2.5 , neg\r\n");
}

TEST(HashTableFile, RoundTripTrimsKeysButKeepsCommas) {
  TestHome home;
  clsHashTable table;
  table.InitSmall();
  table.MessageCount = 7;
  table.InsertRecord("a,b, c", 0.25f);
  table.InsertRecord(" lead", 2);
  ASSERT_TRUE(table.WriteHashTable(inHome(home, "HashGood.dat"), home.log));

  clsHashTable loaded;
  loaded.LoadTable(inHome(home, "HashGood.dat"), home.log);
  EXPECT_EQ(loaded.MessageCount, 7);
  EXPECT_EQ(loaded.HashFind("a,b, c").Value, 0.25f);
  EXPECT_EQ(loaded.RecIndex(" lead"), -1);
  EXPECT_EQ(loaded.HashFind("lead").Value, 2);
  EXPECT_EQ(loaded.MaxRecords, 2 * (4 + 1000)) << "sized by the lines of its file";
  EXPECT_NE(home.log.CurrentAction().find("Hashtable loaded "), std::string::npos);
  EXPECT_NE(home.log.CurrentAction().find(" seconds."), std::string::npos);
}

TEST(HashTableFile, WriteReplacesAReadOnlyFile) {
  TestHome home;
  writeFile(inHome(home, "HashTable.dat"), "old");
  std::filesystem::permissions(inHome(home, "HashTable.dat"), std::filesystem::perms::owner_read);
  clsHashTable table;
  table.InsertRecord("x", 0.5f);
  ASSERT_TRUE(table.WriteHashTable(inHome(home, "HashTable.dat"), home.log));
  EXPECT_EQ(readFile(inHome(home, "HashTable.dat")), "Count, String\r\n 0 \r\n .5 , x\r\n");
}

TEST(HashTableFile, MissingFileLeavesTheTableAsItWas) {
  TestHome home;
  clsHashTable table;
  table.LoadTable(inHome(home, "HashTable.dat"), home.log);
  EXPECT_FALSE(table.initialised());
  EXPECT_EQ(table.MaxRecords, 0);
}

TEST(HashTableFile, LoadingAddsToAnInitialisedTable) {
  clsHashTable table;
  table.InitSmall();
  table.Insert("old");
  table.LoadText("Count, String\r\n 2 \r\n 5 , new\r\n");
  EXPECT_EQ(table.MaxRecords, 500);
  EXPECT_EQ(table.HashFind("old").Value, 1);
  EXPECT_EQ(table.HashFind("new").Value, 5);
}

struct OddFile {
  const char* name;
  std::string bytes;
  std::int32_t messageCount;
  std::int32_t records;
};

class HashTableOddFiles : public ::testing::TestWithParam<OddFile> {};

TEST_P(HashTableOddFiles, LoadsWhatTheLinesAllow) {
  clsHashTable table;
  table.LoadText(GetParam().bytes);
  EXPECT_TRUE(table.initialised());
  EXPECT_EQ(table.MessageCount, GetParam().messageCount);
  EXPECT_EQ(table.LastRecord, GetParam().records);
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
  clsHashTable table;
  table.LoadText("C\r\n 1 \r\n abc , notANumber\r\n 1E+99 , tooBig\r\n");
  EXPECT_EQ(table.HashFind("notANumber").Value, 0);
  EXPECT_EQ(table.HashFind("tooBig").Value, std::numeric_limits<float>::max());

  clsHashTable crOnly;
  crOnly.LoadText("C\r 1 \r 2 , ab\r 3 , cd\r");
  EXPECT_EQ(crOnly.HashFind("ab").Value, 2) << "the sign column is what is lost";
  clsHashTable crOnlyUnsigned;
  crOnlyUnsigned.LoadText("C\r1\r25,ab\r");
  EXPECT_EQ(crOnlyUnsigned.HashFind("ab").Value, 5);
}

}  // namespace
}  // namespace vonel::bayes
