#pragma once
// The Bayes filter's logic: the word and good tables, the blacklist and
// the spam score of a message. The score is the plain mean of the message's
// most extreme token probabilities, then corrected by what is known of the
// sender. One per program, reached through the context.
#include <filesystem>

#include "core/bayes/blacklist.h"
#include "core/bayes/contact_lookup.h"
#include "core/bayes/word_table.h"
#include "core/message/message.h"
#include "core/rules/spam_scorer.h"
#include "core/context/app_context.h"

namespace vonel::bayes {

class BayesFilter final : public rules::SpamScorer {
 public:
  static constexpr float kBlacklistScore = 0.99f;
  static constexpr float kHighest = 0.99f;
  static constexpr float kLowest = 0.01f;
  static constexpr float kUnknownToken = 0.4f;
  static constexpr double kNameMismatch = 0.25;
  static constexpr double kKnownSender = -0.15;
  static constexpr double kContactSender = -0.5;

  explicit BayesFilter(AppContext& context) : context_(context) {}

  // Without an address book no sender counts as a contact.
  void setContacts(const ContactLookup* contacts) { contacts_ = contacts; }

  // From 0.01 to 0.99 into `score`; the message gets filterReason (blacklist)
  // or spamSplit (the token breakdown). A failure is logged and leaves
  // `score` as it stood.
  void spamminess(message::Message& message, bool headersOnly, float& score) override;

  void loadWordHash();
  // The word table is read again at the next score, on top of what it holds.
  void forceRefresh() { wordTableLoaded_ = false; }
  // Empties the word table; the next score reads the file afresh.
  void clearWordTable() {
    wordTable_.clear();
    wordTableLoaded_ = false;
  }
  void loadBlackList();

  // Filled by training; the score only asks it about senders.
  WordTable& goodTable() { return goodTable_; }

  std::filesystem::path wordTableFile() const;
  std::filesystem::path blackListFile() const;

 private:
  void score(message::Message& message, bool headersOnly, float& score);
  // The mean of the message's token probabilities, before rounding.
  float tokenMean(message::Message& message, bool headersOnly);
  float senderCorrected(const message::Message& message, float score) const;
  bool knownGoodSender(const std::string& address) const;
  bool isContact(const std::string& field) const;

  AppContext& context_;
  const ContactLookup* contacts_ = nullptr;
  WordTable wordTable_;
  WordTable goodTable_;
  WordTable messageTable_;
  BlackList blackList_;
  bool wordTableLoaded_ = false;
};

}  // namespace vonel::bayes
