#include "app/status_line.h"

namespace vonel {

std::string withoutLineEnds(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

}  // namespace vonel
