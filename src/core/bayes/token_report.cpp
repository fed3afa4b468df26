#include "core/bayes/token_report.h"

#include "core/text/numbers.h"

namespace vonel::bayes {

std::string DescribeTable(const clsHashTable& table) {
  std::string out;
  for (std::int32_t i = 1; i <= table.LastRecord; ++i) {
    if (table.RecString(i).empty()) continue;
    out += text::plainText(table.RecValue(i)) + "\t" + table.RecString(i) + "\n";
  }
  return out;
}

}  // namespace vonel::bayes
