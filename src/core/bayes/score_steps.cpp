#include "core/bayes/score_steps.h"

#include <utility>

#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::bayes {

void sortByValue(std::vector<TokenProbability>& tokens) {
  if (tokens.size() < 2) return;
  std::size_t lower = 0;
  std::size_t upper = tokens.size() - 1;
  bool sorted = false;
  while (!sorted) {
    sorted = true;
    for (std::size_t i = lower; i < upper; ++i) {
      if (tokens[i].value > tokens[i + 1].value) {
        std::swap(tokens[i], tokens[i + 1]);
        sorted = false;
      }
    }
    --upper;
    if (!sorted) {
      for (std::size_t i = upper; i > lower; --i) {
        if (tokens[i].value < tokens[i - 1].value) std::swap(tokens[i], tokens[i - 1]);
      }
    }
    ++lower;
    if (lower >= upper) sorted = true;
  }
}

std::string spamSplitText(const std::vector<TokenProbability>& tokens) {
  std::string out;
  for (const auto& token : tokens) {
    out += '(';
    out += text::plainText(token.value);
    out += ") \t";
    out += token.key;
    out += "\r\n";
  }
  return out;
}

float meanOfExtremes(const std::vector<TokenProbability>& sorted, std::int16_t wanted) {
  constexpr double kCentre = 0.5;
  if (sorted.empty()) return 0.01f;
  std::size_t lo = 0;
  std::size_t hi = sorted.size() - 1;
  float sum = 0;
  for (std::int16_t taken = 0; taken < wanted; ++taken) {
    if (static_cast<double>(sorted[hi].value) - kCentre < kCentre - static_cast<double>(sorted[lo].value)) {
      sum += sorted[lo++].value;
    } else {
      sum += sorted[hi--].value;
    }
  }
  if (sum == 0 || wanted == 0) return 0.01f;
  return sum / static_cast<float>(wanted);
}

bool nameFitsAddress(std::string_view name, std::string_view address) {
  for (const std::string& piece : text::split(name, " ")) {
    if (!piece.empty() && text::findNoCase(address, piece) > 0) return true;
  }
  return false;
}

}  // namespace vonel::bayes
