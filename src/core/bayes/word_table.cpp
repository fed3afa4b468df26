#include "core/bayes/word_table.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

#include "core/bayes/string_hash.h"
#include "core/log/app_error.h"

namespace vonel::bayes {
namespace {

// The error number of a missing key, as the log prints it.
constexpr int kKeyNotFound = 513;

[[noreturn]] void raiseKeyNotFound(std::string_view source) {
  throw AppError(kKeyNotFound, "Key not found: " + std::string(source) + " ");
}

template <typename T>
void resizeRecords(std::vector<T>& records, std::int32_t bound) {
  records.resize(static_cast<std::size_t>(bound) + 1);
}

}  // namespace

void WordTable::init(std::int32_t buckets, std::int32_t records) {
  tableSize_ = std::max(buckets, 1);
  buckets_.assign(static_cast<std::size_t>(tableSize_), 0);
  maxRecords = std::max(records, 1);
  lastRecord = 0;
  records_.assign(static_cast<std::size_t>(maxRecords) + 1, Record{});
  keys_.assign(static_cast<std::size_t>(maxRecords) + 1, std::string());
  nodes_.init(maxRecords, kGrowth);
  initialised_ = true;
}

void WordTable::clear() {
  initialised_ = false;
  records_.clear();
  keys_.clear();
  buckets_.clear();
  nodes_.clear();
  tableSize_ = 0;
  maxRecords = 0;
  lastRecord = 0;
}

std::size_t WordTable::checkedIndex(std::int32_t index) const {
  if (index < 1 || index > maxRecords) {
    throw AppError(error_number::kSubscriptOutOfRange, "Subscript out of range");
  }
  return static_cast<std::size_t>(index);
}

const std::string& WordTable::keyAt(std::int32_t index) const { return keys_[checkedIndex(index)]; }

float WordTable::valueAt(std::int32_t index) const { return records_[checkedIndex(index)].value; }

void WordTable::setValueAt(std::int32_t index, float value) { records_[checkedIndex(index)].value = value; }

std::int32_t WordTable::firstHash(std::string_view key) const { return stringHash(key, tableSize_); }

// The bucket is a hash of the decimal text of the first hash.
std::int32_t WordTable::bucketOf(std::int32_t first) const {
  char digits[16];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), first);
  return stringHash(std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)), tableSize_);
}

void WordTable::ensureInitialised() {
  if (!initialised_) initStandard();
}

void WordTable::growTo(std::int32_t bound) {
  resizeRecords(records_, bound);
  resizeRecords(keys_, bound);
  maxRecords = bound;
}

std::int32_t WordTable::addRecord(std::string_view key, std::int32_t first, float value) {
  const std::int32_t index = nodes_.alloc();
  while (index > maxRecords) growTo(grownBound(maxRecords, kGrowth));
  auto& head = buckets_[static_cast<std::size_t>(bucketOf(first))];
  const auto i = static_cast<std::size_t>(index);
  records_[i] = Record{head, first, value};
  head = index;
  keys_[i].assign(key);
  lastRecord = std::max(lastRecord, index);
  return index;
}

void WordTable::insertRecord(std::string_view key, float value) {
  ensureInitialised();
  addRecord(key, firstHash(key), value);
}

std::int32_t WordTable::findIndex(std::string_view key, std::int32_t first) const {
  if (!initialised_) return 0;
  if (first == 0) first = firstHash(key);
  for (std::int32_t i = buckets_[static_cast<std::size_t>(bucketOf(first))]; i != 0;
       i = records_[static_cast<std::size_t>(i)].next) {
    const auto at = static_cast<std::size_t>(i);
    if (records_[at].first == first && keys_[at] == key) return i;
  }
  return 0;
}

std::optional<WordRecord> WordTable::findRecord(std::string_view key, std::int32_t first) const {
  const std::int32_t index = findIndex(key, first);
  if (index == 0) return std::nullopt;
  const auto at = static_cast<std::size_t>(index);
  return WordRecord{keys_[at], records_[at].value, index};
}

std::optional<std::int32_t> WordTable::indexOf(std::string_view key) const {
  const std::int32_t index = findIndex(key, 0);
  if (index == 0) return std::nullopt;
  return index;
}

std::optional<WordRecord> WordTable::find(std::string_view key) {
  ensureInitialised();
  return findRecord(key);
}

void WordTable::addCount(std::string_view key, std::int16_t increment) {
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

void WordTable::removeByHash(std::int32_t first) {
  constexpr std::string_view kSource = "CHash.Delete";
  if (!initialised_ || first < 0 || first >= tableSize_) raiseKeyNotFound(kSource);
  std::int32_t* link = &buckets_[static_cast<std::size_t>(bucketOf(first))];
  while (*link != 0 && records_[static_cast<std::size_t>(*link)].first != first) {
    link = &records_[static_cast<std::size_t>(*link)].next;
  }
  if (*link == 0) raiseKeyNotFound(kSource);
  const std::int32_t index = *link;
  const auto at = static_cast<std::size_t>(index);
  *link = records_[at].next;
  nodes_.free(index);
  keys_[at].clear();
  records_[at].value = 0;
}

void WordTable::remove(std::string_view key) {
  ensureInitialised();
  removeByHash(firstHash(key));
}

}  // namespace vonel::bayes
