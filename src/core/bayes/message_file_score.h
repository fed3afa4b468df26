#pragma once
// Scoring message files from outside the mail cycle: the inspection tool and
// the program's command line (score and verdict word for scripts and mail
// filters).
#include <filesystem>
#include <string>
#include <string_view>

#include "core/bayes/bayes_filter.h"

namespace vonel::bayes {

struct FileScore {
  float score = 0;
  std::string filterReason;
  std::string spamSplit;
};

// The whole message, scored as a downloaded message is checked. Throws
// AppError when the file can't be read.
FileScore scoreMessageFile(BayesFilter& filter, const std::filesystem::path& file);

// "FAIL" from the spam threshold up, "SPAM?" from the suspicious threshold, else "PASS".
std::string_view verdictWord(float score, const AppContext& context);

}  // namespace vonel::bayes
