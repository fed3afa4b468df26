#pragma once
// The Bayes filter's logic: the word and good tables, the blacklist and
// the spam score of a message. The score is the plain mean of the message's
// most extreme token probabilities, then corrected by what is known of the
// sender. One per program, reached through the context.
#include <filesystem>

#include "core/bayes/blacklist.h"
#include "core/bayes/contact_lookup.h"
#include "core/bayes/hash_table.h"
#include "core/message/message.h"
#include "core/rules/spam_scorer.h"
#include "core/services/app_context.h"

namespace vonel::bayes {

class frmBayesFilter final : public rules::SpamScorer {
 public:
  static constexpr float kBlacklistScore = 0.99f;
  static constexpr float kHighest = 0.99f;
  static constexpr float kLowest = 0.01f;
  static constexpr float kUnknownToken = 0.4f;
  static constexpr double kNameMismatch = 0.25;
  static constexpr double kKnownSender = -0.15;
  static constexpr double kContactSender = -0.5;

  explicit frmBayesFilter(AppContext& context) : context_(context) {}

  // Without an address book no sender counts as a contact.
  void setContacts(const ContactLookup* contacts) { contacts_ = contacts; }

  // From 0.01 to 0.99 into `score`; the message gets FilterReason (blacklist)
  // or SpamSplit (the token breakdown). A failure is logged and leaves
  // `score` as it stood.
  void Spamminess(message::clsMessage& message, bool headersOnly, float& score) override;

  void LoadWordHash();
  // The word table is read again at the next score, on top of what it holds.
  void ForceRefresh() { wordTableLoaded_ = false; }
  // Empties the word table; the next score reads the file afresh.
  void ClearWordTable() {
    wordTable_.HashClear();
    wordTableLoaded_ = false;
  }
  void LoadBlackList();

  // Filled by training; the score only asks it about senders.
  clsHashTable& GoodTable() { return goodTable_; }

  std::filesystem::path WordTableFile() const;
  std::filesystem::path BlackListFile() const;

 private:
  void score(message::clsMessage& message, bool headersOnly, float& score);
  // The mean of the message's token probabilities, before rounding.
  float tokenMean(message::clsMessage& message, bool headersOnly);
  float senderCorrected(const message::clsMessage& message, float score) const;
  bool knownGoodSender(const std::string& address) const;
  bool isContact(const std::string& field) const;

  AppContext& context_;
  const ContactLookup* contacts_ = nullptr;
  clsHashTable wordTable_;
  clsHashTable goodTable_;
  clsHashTable messageTable_;
  BlackList blackList_;
  bool wordTableLoaded_ = false;
};

}  // namespace vonel::bayes
