#include "core/bayes/string_hash.h"

namespace vonel::bayes {

std::int32_t stringHash(std::string_view text, std::int32_t size) {
  std::uint64_t h = 14695981039346656037ull;
  for (unsigned char c : text) {
    h ^= c;
    h *= 1099511628211ull;
  }
  h ^= h >> 33;
  h *= 0xff51afd7ed558ccdull;
  h ^= h >> 33;
  const std::uint64_t buckets = size < 1 ? 1 : static_cast<std::uint64_t>(size);
  return static_cast<std::int32_t>(h % buckets);
}

}  // namespace vonel::bayes
