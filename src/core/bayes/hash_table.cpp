#include "core/bayes/hash_table.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

#include "core/bayes/string_hash.h"
#include "core/log/app_error.h"

namespace vonel::bayes {
namespace {

constexpr int kObjectErrorBase = 512;

[[noreturn]] void Raise(int code, std::string_view source) {
  const char* text = code == 1 ? "Key not found" : "Duplicate key";
  throw AppError(kObjectErrorBase + code, std::string(text) + ": " + std::string(source) + " ");
}

template <typename T>
void resizeRecords(std::vector<T>& records, std::int32_t bound) {
  records.resize(static_cast<std::size_t>(bound) + 1);
}

}  // namespace

void clsHashTable::Init(std::int32_t buckets, std::int32_t records) {
  tableSize_ = std::max(buckets, 1);
  buckets_.assign(static_cast<std::size_t>(tableSize_), 0);
  MaxRecords = std::max(records, 1);
  LastRecord = 0;
  records_.assign(static_cast<std::size_t>(MaxRecords) + 1, Record{});
  recKey_.assign(static_cast<std::size_t>(MaxRecords) + 1, std::string());
  nodes_.Init(MaxRecords, kGrowth);
  initialised_ = true;
}

void clsHashTable::ClearArrays() {
  records_.clear();
  recKey_.clear();
  buckets_.clear();
  nodes_.Clear();
  tableSize_ = 0;
  MaxRecords = 0;
  LastRecord = 0;
}

void clsHashTable::HashClear() {
  initialised_ = false;
  ClearArrays();
}

std::size_t clsHashTable::checkedIndex(std::int32_t index) const {
  if (index < 1 || index > MaxRecords) {
    throw AppError(error_number::kSubscriptOutOfRange, "Subscript out of range");
  }
  return static_cast<std::size_t>(index);
}

const std::string& clsHashTable::RecString(std::int32_t index) const { return recKey_[checkedIndex(index)]; }

float clsHashTable::RecValue(std::int32_t index) const { return records_[checkedIndex(index)].value; }

void clsHashTable::ChangeValue(std::int32_t index, float value) { records_[checkedIndex(index)].value = value; }

std::int32_t clsHashTable::firstHash(std::string_view key) const { return cHash(key, tableSize_); }

// The bucket is a hash of the decimal text of the first hash.
std::int32_t clsHashTable::bucketOf(std::int32_t first) const {
  char digits[16];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), first);
  return cHash(std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)), tableSize_);
}

void clsHashTable::ensureInitialised() {
  if (!initialised_) InitStandard();
}

void clsHashTable::growTo(std::int32_t bound) {
  resizeRecords(records_, bound);
  resizeRecords(recKey_, bound);
  MaxRecords = bound;
}

std::int32_t clsHashTable::addRecord(std::string_view key, std::int32_t first, float value) {
  const std::int32_t index = nodes_.Alloc();
  while (index > MaxRecords) growTo(GrownBound(MaxRecords, kGrowth));
  auto& head = buckets_[static_cast<std::size_t>(bucketOf(first))];
  const auto i = static_cast<std::size_t>(index);
  records_[i] = Record{head, first, value};
  head = index;
  recKey_[i].assign(key);
  LastRecord = std::max(LastRecord, index);
  return index;
}

void clsHashTable::InsertRecord(std::string_view key, float value) {
  ensureInitialised();
  addRecord(key, firstHash(key), value);
}

std::int32_t clsHashTable::findIndex(std::string_view key, std::int32_t first) const {
  if (!initialised_) return 0;
  if (first == 0) first = firstHash(key);
  for (std::int32_t i = buckets_[static_cast<std::size_t>(bucketOf(first))]; i != 0;
       i = records_[static_cast<std::size_t>(i)].next) {
    const auto at = static_cast<std::size_t>(i);
    if (records_[at].first == first && recKey_[at] == key) return i;
  }
  return 0;
}

clsHashRec clsHashTable::FindRec(std::string_view key, std::int32_t first) const {
  const std::int32_t index = findIndex(key, first);
  if (index == 0) return clsHashRec{"-1", kAbsent, 0};
  const auto at = static_cast<std::size_t>(index);
  return clsHashRec{recKey_[at], records_[at].value, index};
}

std::int32_t clsHashTable::RecIndex(std::string_view key) const {
  const std::int32_t index = findIndex(key, 0);
  return index == 0 ? -1 : index;
}

clsHashRec clsHashTable::HashFind(std::string_view key) {
  ensureInitialised();
  return FindRec(key);
}

void clsHashTable::AlterValue(std::string_view key, std::int16_t increment) {
  ensureInitialised();
  const std::int32_t first = firstHash(key);
  const std::int32_t index = findIndex(key, first);
  if (index == 0) {
    addRecord(key, first, 1);
    return;
  }
  float& value = records_[static_cast<std::size_t>(index)].value;
  if (increment == 0) {
    value = 1;
  } else {
    value = std::max(value + static_cast<float>(increment), 0.0f);
  }
}

void clsHashTable::Delete(std::int32_t first) {
  constexpr std::string_view kSource = "CHash.Delete";
  if (!initialised_ || first < 0 || first >= tableSize_) Raise(1, kSource);
  std::int32_t* link = &buckets_[static_cast<std::size_t>(bucketOf(first))];
  while (*link != 0 && records_[static_cast<std::size_t>(*link)].first != first) {
    link = &records_[static_cast<std::size_t>(*link)].next;
  }
  if (*link == 0) Raise(1, kSource);
  const std::int32_t index = *link;
  const auto at = static_cast<std::size_t>(index);
  *link = records_[at].next;
  nodes_.Free(index);
  recKey_[at].clear();
  records_[at].value = 0;
}

void clsHashTable::HashDelete(std::string_view key) {
  ensureInitialised();
  Delete(firstHash(key));
}

}  // namespace vonel::bayes
