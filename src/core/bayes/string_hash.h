#pragma once
// The string hash of the word tables: same text and size, same result, always
// within 0 to size - 1.
#include <cstdint>
#include <string_view>

namespace vonel::bayes {

// FNV-1a over the bytes with a final avalanche, so short keys that differ in
// one byte land far apart. `size` below 1 is taken as 1.
std::int32_t stringHash(std::string_view text, std::int32_t size);

}  // namespace vonel::bayes
