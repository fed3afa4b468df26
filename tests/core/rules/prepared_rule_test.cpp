#include "core/rules/prepared_rule.h"

#include <gtest/gtest.h>

#include <random>

namespace vonel::rules {
namespace {

// The trigram shortcut must never hide a text that is there.
TEST(FoldedFieldTest, LongFieldsFindExactlyWhatAPlainSearchFinds) {
  std::mt19937 random(11);
  std::uniform_int_distribution<int> letter('A', 'F');  // few letters, so many near misses
  for (int round = 0; round < 200; ++round) {
    std::string text(128 + round * 7, ' ');
    for (char& c : text) c = static_cast<char>(letter(random));
    const FoldedField field(text);
    for (std::size_t length : {0u, 1u, 2u, 3u, 5u, 9u}) {
      std::string wanted(length, ' ');
      for (char& c : wanted) c = static_cast<char>(letter(random));
      if (round % 3 == 0 && length <= text.size()) wanted = text.substr(text.size() - length);  // at the very end
      const bool expected = text.find(wanted) != std::string::npos;
      EXPECT_EQ(field.holds(wanted, TrigramSet::hashesOf(wanted)), expected) << text << " / " << wanted;
    }
  }
  EXPECT_FALSE(FoldedField("").holds("", {}));
}

}  // namespace
}  // namespace vonel::rules
