#pragma once
// The arithmetic of the spam score, apart from where its numbers come from.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vonel::bayes {

// One token of the message with the probability the word table gives it;
// the key is a view of the message table's record.
struct TokenProbability {
  std::string_view key;
  float value = 0;
};

// Ascending by value, a two-way bubble sort with shrinking bounds: equal
// values keep their order.
void sortByValue(std::vector<TokenProbability>& tokens);

// "(value) <TAB>key" CR LF per token, in the order given.
std::string spamSplitText(const std::vector<TokenProbability>& tokens);

// The mean of the `wanted` tokens farthest from 0.5, taken from both ends of
// the sorted list; a tie goes to the spam end. The sum is kept in single
// precision, as the tables are. 0.01 when the sum or `wanted` is 0.
// Needs at least `wanted` tokens.
float meanOfExtremes(const std::vector<TokenProbability>& sorted, std::int16_t wanted);

// Whether some blank-separated piece of the name occurs in the address,
// ignoring case. An empty name fits nothing.
bool nameFitsAddress(std::string_view name, std::string_view address);

}  // namespace vonel::bayes
