#include "core/bayes/message_file_score.h"

#include "core/services/file_subs.h"
#include "core/text/numbers.h"

namespace vonel::bayes {

FileScore ScoreMessageFile(frmBayesFilter& filter, const std::filesystem::path& file) {
  message::clsMessage message;
  message.CreateFromText(files::LoadTextFile(file), false);
  FileScore result;
  filter.Spamminess(message, false, result.score);
  result.FilterReason = message.FilterReason;
  result.SpamSplit = message.SpamSplit;
  return result;
}

std::string_view VerdictWord(float score, const AppContext& context) {
  if (score >= context.SpamThreshold) return "FAIL";
  if (score >= context.SaveToSpamThreshold) return "SPAM?";
  return "PASS";
}

std::string ScoreLine(frmBayesFilter& filter, const AppContext& context, const std::filesystem::path& file) {
  const float score = ScoreMessageFile(filter, file).score;
  return text::plainText(score) + " " + std::string(VerdictWord(score, context));
}

}  // namespace vonel::bayes
