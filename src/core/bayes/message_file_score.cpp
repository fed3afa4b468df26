#include "core/bayes/message_file_score.h"

#include "core/files/file_text.h"

namespace vonel::bayes {

FileScore scoreMessageFile(BayesFilter& filter, const std::filesystem::path& file) {
  message::Message message;
  message.createFromText(files::loadTextFile(file), false);
  FileScore result;
  filter.spamminess(message, false, result.score);
  result.filterReason = message.filterReason;
  result.spamSplit = message.spamSplit;
  return result;
}

std::string_view verdictWord(float score, const AppContext& context) {
  if (score >= context.spamThreshold) return "FAIL";
  if (score >= context.saveToSpamThreshold) return "SPAM?";
  return "PASS";
}

}  // namespace vonel::bayes
