#pragma once
// String key to single float, for every Bayes table: record arrays indexed
// from 1, a free list of record indexes, and bucket chains. Built to
// hold hundreds of thousands of short keys and load them in well under a second.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/bayes/record_free_list.h"
#include "core/log/log.h"

namespace vonel::bayes {

// What a search finds.
struct WordRecord {
  std::string key;
  float value = 0;
  std::int32_t index = 0;
};

class WordTable {
 public:
  static constexpr float kGrowth = 1.5f;

  std::int32_t maxRecords = 0;  // the capacity; 0 until the table is set up
  std::int32_t lastRecord = 0;  // highest index ever used; deleting never lowers it
  std::int32_t messageCount = 0;

  void init(std::int32_t buckets, std::int32_t records);
  void initSmall() { init(50, 500); }
  void initStandard() { init(20000, 50000); }
  void initHuge() { init(85000, 350000); }
  // Empties the table; the next use sets it up afresh. The message count stays.
  void clear();
  bool initialised() const { return initialised_; }

  // By record index, 1 to maxRecords; AppError 9 outside.
  const std::string& keyAt(std::int32_t index) const;
  float valueAt(std::int32_t index) const;
  void setValueAt(std::int32_t index, float value);

  // Adds a record without looking for the key: a repeated key gives a second
  // record, found before the first.
  void insertRecord(std::string_view key, float value);
  std::optional<WordRecord> find(std::string_view key);
  // Counts the key: a new key starts at 1 whatever the increment; increment
  // 0 resets it to 1; otherwise the sum, never below 0.
  void addCount(std::string_view key, std::int16_t increment = 1);
  // Removes the first record of the chain whose first hash is `first`;
  // AppError 513 "Key not found" when there is none.
  void removeByHash(std::int32_t first);
  void remove(std::string_view key);
  // `first` 0: computed from the key.
  std::optional<WordRecord> findRecord(std::string_view key, std::int32_t first = 0) const;
  std::optional<std::int32_t> indexOf(std::string_view key) const;

  // The file form: "Count, String", the message count, then one
  // "value, key" line per used record, each line ending CR LF.
  std::string fileText() const;
  // Adds the records of a file's bytes; an uninitialised table is first
  // sized by the number of lines.
  void loadText(std::string_view bytes);
  // Both log their failures and carry on; a missing file is no failure.
  bool writeHashTable(const std::filesystem::path& file, Log& log) const;
  void loadTable(const std::filesystem::path& file, Log& log);

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
    std::int32_t next = 0;  // the next record of the bucket chain; 0 ends it
    std::int32_t first = 0;  // the key's first hash
    float value = 0;
  };

  RecordFreeList nodes_;
  std::vector<Record> records_;
  std::vector<std::string> keys_;
  std::vector<std::int32_t> buckets_;
  std::int32_t tableSize_ = 0;
  bool initialised_ = false;
};

}  // namespace vonel::bayes
