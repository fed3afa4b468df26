#pragma once
// String key to single float, for every Bayes table: record arrays indexed
// from 1, a free list of record indexes, and bucket chains. Built to
// hold hundreds of thousands of short keys and load them in well under a second.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/bayes/hash_nodes.h"
#include "core/log/logging.h"

namespace vonel::bayes {

// What a search returns. Absence reads key "-1", value -1 and index 0.
struct clsHashRec {
  std::string Key;
  float Value = -1;
  std::int32_t Index = 0;
};

class clsHashTable {
 public:
  static constexpr float kAbsent = -1;
  static constexpr float kGrowth = 1.5f;

  std::int32_t MaxRecords = 0;  // 0: never set up
  std::int32_t LastRecord = 0;  // highest index ever used; deleting never lowers it
  std::int32_t MessageCount = 0;

  void Init(std::int32_t buckets, std::int32_t records);
  void InitSmall() { Init(50, 500); }
  void InitStandard() { Init(20000, 50000); }
  void InitBig() { Init(50000, 100000); }
  void InitHuge() { Init(85000, 350000); }
  void ClearArrays();
  void HashClear();
  bool initialised() const { return initialised_; }

  // By record index, 1 to MaxRecords; AppError 9 outside.
  const std::string& RecString(std::int32_t index) const;
  float RecValue(std::int32_t index) const;
  void ChangeValue(std::int32_t index, float value);

  // Adds a record without looking for the key: a repeated key gives a second
  // record, found before the first.
  void InsertRecord(std::string_view key, float value);
  clsHashRec HashFind(std::string_view key);
  clsHashRec Hashrecord(std::string_view key) { return HashFind(key); }
  // A new key starts at 1 whatever the increment; increment 0 resets to 1;
  // otherwise the sum, never below 0.
  void AlterValue(std::string_view key, std::int16_t increment);
  void Insert(std::string_view key) { AlterValue(key, 1); }
  // Removes the first record of the chain whose first hash is `first`;
  // AppError 513 "Key not found" when there is none.
  void Delete(std::int32_t first);
  void HashDelete(std::string_view key);
  // `first` 0: computed from the key.
  clsHashRec FindRec(std::string_view key, std::int32_t first = 0) const;
  // The record index, or -1.
  std::int32_t RecIndex(std::string_view key) const;

  // The file form: "Count, String", the message count, then one
  // "value, key" line per used record, each line ending CR LF.
  std::string FileText() const;
  // Adds the records of a file's bytes; an uninitialised table is first
  // sized by the number of lines.
  void LoadText(std::string_view bytes);
  // Both log their failures and carry on; a missing file is no failure.
  bool WriteHashTable(const std::filesystem::path& file, cSharedLogging& log) const;
  void LoadTable(const std::filesystem::path& file, cSharedLogging& log);

 private:
  std::int32_t firstHash(std::string_view key) const;
  std::int32_t bucketOf(std::int32_t first) const;
  std::int32_t findIndex(std::string_view key, std::int32_t first) const;
  std::int32_t addRecord(std::string_view key, std::int32_t first, float value);
  void ensureInitialised();
  void growTo(std::int32_t bound);
  std::size_t checkedIndex(std::int32_t index) const;

  // The chain link, first hash and value of a record side by side, so a
  // look-up in a big table touches one cache line per record before the key.
  struct Record {
    std::int32_t next = 0;  // RecNext
    std::int32_t first = 0;  // RecHash
    float value = 0;  // RecVal
  };

  clsHashNodes nodes_;
  std::vector<Record> records_;
  std::vector<std::string> recKey_;
  std::vector<std::int32_t> buckets_;
  std::int32_t tableSize_ = 0;
  bool initialised_ = false;
};

}  // namespace vonel::bayes
