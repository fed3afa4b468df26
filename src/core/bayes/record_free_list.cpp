#include "core/bayes/record_free_list.h"

#include <algorithm>

#include "core/text/numbers.h"

namespace vonel::bayes {

std::int32_t grownBound(std::int32_t bound, float growth) {
  const auto grown = text::toWhole<std::int32_t>(static_cast<double>(bound) * static_cast<double>(growth));
  return std::max(grown, bound + 1);
}

void RecordFreeList::init(std::int32_t size, float growth) {
  growth_ = growth;
  next_.assign(static_cast<std::size_t>(std::max(size, 1)) + 1, 0);
  chain(1, static_cast<std::int32_t>(next_.size()) - 1);
}

std::int32_t RecordFreeList::alloc() {
  if (head_ == 0) {
    const auto oldBound = static_cast<std::int32_t>(std::max<std::size_t>(next_.size(), 1)) - 1;
    const auto newBound = grownBound(oldBound, growth_);
    next_.resize(static_cast<std::size_t>(newBound) + 1, 0);
    chain(oldBound + 1, newBound);
  }
  const std::int32_t index = head_;
  head_ = next_[static_cast<std::size_t>(index)];
  return index;
}

void RecordFreeList::free(std::int32_t index) {
  next_[static_cast<std::size_t>(index)] = head_;
  head_ = index;
}

void RecordFreeList::clear() {
  next_.clear();
  head_ = 0;
}

void RecordFreeList::chain(std::int32_t first, std::int32_t last) {
  for (std::int32_t i = first; i < last; ++i) next_[static_cast<std::size_t>(i)] = i + 1;
  next_[static_cast<std::size_t>(last)] = 0;
  head_ = first;
}

}  // namespace vonel::bayes
