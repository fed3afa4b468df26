#include "core/bayes/bayes_filter.h"

#include "core/bayes/score_steps.h"
#include "core/bayes/tokeniser.h"
#include "core/files/any_case.h"
#include "core/log/log_places.h"
#include "core/message/address.h"
#include "core/text/numbers.h"

namespace vonel::bayes {
namespace {

constexpr std::string_view kModule = log_places::kBayesModule;

float added(float score, double change) { return static_cast<float>(static_cast<double>(score) + change); }

}  // namespace

std::filesystem::path BayesFilter::wordTableFile() const {
  return files::resolveAnyCase(context_.folders.dataFolderPath, "HashTable.dat");
}

std::filesystem::path BayesFilter::blackListFile() const {
  return files::resolveAnyCase(context_.folders.dataFolderPath, "BlacklistedWords.txt");
}

void BayesFilter::loadWordHash() {
  wordTableLoaded_ = true;
  wordTable_.loadTable(wordTableFile(), context_.log);
}

void BayesFilter::loadBlackList() { blackList_.loadBlackList(blackListFile(), context_.log); }

void BayesFilter::spamminess(message::Message& message, bool headersOnly, float& score) {
  guardedStep(context_.log, log_places::kSpamminess, kModule, [&] { this->score(message, headersOnly, score); });
}

void BayesFilter::score(message::Message& message, bool headersOnly, float& score) {
  if (!blackList_.loaded()) loadBlackList();
  if (const auto word = blackList_.searchSubject(message.subject)) {
    score = kBlacklistScore;
    message.filterReason = "Subject contains " + *word;
    return;
  }
  messageTable_.clear();
  messageTable_.initSmall();
  if (!wordTableLoaded_) loadWordHash();
  if (!wordTable_.initialised()) {
    score = kLowest;
    return;
  }
  score = tokenMean(message, headersOnly);
  score = static_cast<float>(text::roundHalfEven(score, 2));
  score = senderCorrected(message, score);
  if (score < 0) score = kLowest;
  if (score > kHighest) score = kHighest;
}

float BayesFilter::tokenMean(message::Message& message, bool headersOnly) {
  hashMessage(messageTable_, message, headersOnly);
  if (messageTable_.lastRecord == 0) return kLowest;

  std::vector<TokenProbability> tokens;
  for (std::int32_t i = 1; i <= messageTable_.lastRecord; ++i) {
    const std::string& key = messageTable_.keyAt(i);
    if (key.empty()) continue;
    const std::optional<std::int32_t> found = wordTable_.indexOf(key);
    const float probability = found ? wordTable_.valueAt(*found) : kUnknownToken;
    messageTable_.setValueAt(i, probability);
    tokens.push_back({key, probability});
  }

  const std::int16_t wanted = context_.headerWordCount;
  const auto n = static_cast<std::int32_t>(tokens.size());
  if (n < wanted && wanted >= 1) {
    // By record number, as the table holds them: 1 to n.
    float sum = 0;
    for (std::int32_t i = 1; i <= n; ++i) sum += messageTable_.valueAt(i);
    return sum != 0 ? sum / static_cast<float>(n) : kLowest;
  }
  sortByValue(tokens);
  message.spamSplit = spamSplitText(tokens);
  return meanOfExtremes(tokens, wanted);
}

float BayesFilter::senderCorrected(const message::Message& message, float score) const {
  if (score < kHighest &&
      !nameFitsAddress(message::extractName(message.from), message::extractEmail(message.from))) {
    score = added(score, kNameMismatch);
  }
  if (knownGoodSender(message::extractEmail(message.sender)) || knownGoodSender(message::extractEmail(message.from))) {
    score = added(score, kKnownSender);
  }
  if (score >= context_.saveToSpamThreshold && (isContact(message.from) || isContact(message.sender))) {
    score = added(score, kContactSender);
  }
  return score;
}

// Only entries put into the good table by other means answer: the tokeniser
// never writes "SND*".
bool BayesFilter::knownGoodSender(const std::string& address) const {
  return goodTable_.findRecord("SND*" + address).has_value();
}

bool BayesFilter::isContact(const std::string& field) const {
  return contacts_ != nullptr && contacts_->contactExists(message::extractName(field), message::extractEmail(field));
}

}  // namespace vonel::bayes
