#pragma once
// A table as text, one "count<TAB>key" line per used record in index order,
// for the inspection tool and the sample files checked against it.
#include <string>

#include "core/bayes/word_table.h"

namespace vonel::bayes {

std::string describeTable(const WordTable& table);

}  // namespace vonel::bayes
