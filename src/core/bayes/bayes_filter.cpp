#include "core/bayes/bayes_filter.h"

#include "core/bayes/score_steps.h"
#include "core/bayes/tokeniser.h"
#include "core/message/address.h"
#include "core/services/file_subs.h"
#include "core/text/numbers.h"

namespace vonel::bayes {
namespace {

constexpr std::string_view kModule = "frmBayesFilter";

float added(float score, double change) { return static_cast<float>(static_cast<double>(score) + change); }

}  // namespace

std::filesystem::path frmBayesFilter::WordTableFile() const {
  return files::ResolveAnyCase(context_.folders.DataFolderPath, "HashTable.dat");
}

std::filesystem::path frmBayesFilter::BlackListFile() const {
  return files::ResolveAnyCase(context_.folders.DataFolderPath, "BlacklistedWords.txt");
}

void frmBayesFilter::LoadWordHash() {
  wordTableLoaded_ = true;
  wordTable_.LoadTable(WordTableFile(), context_.log);
}

void frmBayesFilter::LoadBlackList() { blackList_.LoadBlackList(BlackListFile(), context_.log); }

void frmBayesFilter::Spamminess(message::clsMessage& message, bool headersOnly, float& score) {
  guardedStep(context_.log, "Spamminess", kModule, [&] { this->score(message, headersOnly, score); });
}

void frmBayesFilter::score(message::clsMessage& message, bool headersOnly, float& score) {
  if (!blackList_.loaded()) LoadBlackList();
  if (const auto word = blackList_.SearchSubject(message.Subject)) {
    score = kBlacklistScore;
    message.FilterReason = "Subject contains " + *word;
    return;
  }
  messageTable_.HashClear();
  messageTable_.InitSmall();
  if (!wordTableLoaded_) LoadWordHash();
  if (wordTable_.MaxRecords == 0) {
    score = kLowest;
    return;
  }
  score = tokenMean(message, headersOnly);
  score = static_cast<float>(text::roundHalfEven(score, 2));
  score = senderCorrected(message, score);
  if (score < 0) score = kLowest;
  if (score > kHighest) score = kHighest;
}

float frmBayesFilter::tokenMean(message::clsMessage& message, bool headersOnly) {
  HashMessage(messageTable_, message, headersOnly);
  if (messageTable_.LastRecord == 0) return kLowest;

  std::vector<TokenProbability> tokens;
  for (std::int32_t i = 1; i <= messageTable_.LastRecord; ++i) {
    const std::string& key = messageTable_.RecString(i);
    if (key.empty()) continue;
    const std::int32_t found = wordTable_.RecIndex(key);
    const float probability = found > 0 ? wordTable_.RecValue(found) : kUnknownToken;
    messageTable_.ChangeValue(i, probability);
    tokens.push_back({key, probability});
  }

  const std::int16_t wanted = context_.HeaderWordCount;
  const auto n = static_cast<std::int32_t>(tokens.size());
  if (n < wanted && wanted >= 1) {
    // By record number, as the table holds them: 1 to n.
    float sum = 0;
    for (std::int32_t i = 1; i <= n; ++i) sum += messageTable_.RecValue(i);
    return sum != 0 ? sum / static_cast<float>(n) : kLowest;
  }
  SortByValue(tokens);
  message.SpamSplit = SpamSplitText(tokens);
  return MeanOfExtremes(tokens, wanted);
}

float frmBayesFilter::senderCorrected(const message::clsMessage& message, float score) const {
  if (score < kHighest &&
      !NameFitsAddress(message::ExtractName(message.From), message::ExtractEmail(message.From))) {
    score = added(score, kNameMismatch);
  }
  if (knownGoodSender(message::ExtractEmail(message.Sender)) || knownGoodSender(message::ExtractEmail(message.From))) {
    score = added(score, kKnownSender);
  }
  if (score >= context_.SaveToSpamThreshold && (isContact(message.From) || isContact(message.Sender))) {
    score = added(score, kContactSender);
  }
  return score;
}

// Only entries put into the good table by other means answer: the tokeniser
// never writes "SND*".
bool frmBayesFilter::knownGoodSender(const std::string& address) const {
  return goodTable_.FindRec("SND*" + address).Key != "-1";
}

bool frmBayesFilter::isContact(const std::string& field) const {
  return contacts_ != nullptr && contacts_->ContactExists(message::ExtractName(field), message::ExtractEmail(field));
}

}  // namespace vonel::bayes
