#include "core/bayes/token_report.h"

#include "core/text/numbers.h"

namespace vonel::bayes {

std::string describeTable(const WordTable& table) {
  std::string out;
  for (std::int32_t i = 1; i <= table.lastRecord; ++i) {
    if (table.keyAt(i).empty()) continue;
    out += text::plainText(table.valueAt(i)) + "\t" + table.keyAt(i) + "\n";
  }
  return out;
}

}  // namespace vonel::bayes
