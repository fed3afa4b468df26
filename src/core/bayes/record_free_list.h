#pragma once
// The allocator of record indexes behind WordTable: a free list over one
// array, indexes counted from 1, 0 ending the chain.
#include <cstdint>
#include <vector>

namespace vonel::bayes {

// The bound an array takes when it is full: bound times growth, halves to even.
std::int32_t grownBound(std::int32_t bound, float growth);

class RecordFreeList {
 public:
  void init(std::int32_t size, float growth);
  // The head of the free list; a list that has run dry grows first, so the
  // index returned can lie above the old bound.
  std::int32_t alloc();
  void free(std::int32_t index);
  void clear();

 private:
  void chain(std::int32_t first, std::int32_t last);

  std::vector<std::int32_t> next_;  // entry 0 is never used
  std::int32_t head_ = 0;
  float growth_ = 1.5f;
};

}  // namespace vonel::bayes
