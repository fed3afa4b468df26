#include "app/status_line.h"

#include <algorithm>

namespace vonel {

std::string withoutLineEnds(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

std::string blanksForBreaks(std::string text) {
  std::replace_if(text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  return text;
}

}  // namespace vonel
