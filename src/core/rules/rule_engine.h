#pragma once
// One rule set with the five address lists, and the check that judges a
// message by them. The program holds two: the server set, used on headers
// still on the server, and the local set, used on downloaded mail.
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/files/edited_file.h"
#include "core/files/kept_lines.h"
#include "core/rules/address_list.h"
#include "core/rules/message_check.h"
#include "core/rules/prepared_rule.h"
#include "core/rules/rule_file.h"
#include "core/rules/spam_scorer.h"
#include "core/context/app_context.h"

namespace vonel::rules {

// Display colours of a verdict, blue-green-red.
namespace colour {
inline constexpr std::int32_t kGreen = 32768;
inline constexpr std::int32_t kRed = 255;
inline constexpr std::int32_t kGrey = 12632256;
inline constexpr std::int32_t kOrange = 33023;
inline constexpr std::int32_t kPurple = 8388736;
}  // namespace colour

class RuleEngine final : public MessageCheck {
 public:
  explicit RuleEngine(AppContext& context) : ctx_(context), ruleSource_(context.log, context.prompt) {}

  // Without a scorer every message scores 0.01.
  void setScorer(SpamScorer* scorer) { scorer_ = scorer; }

  // Loads "LocalRules.txt" when `local`, else "Rules.txt", from the data
  // folder, and brings the five lists up to date. The lines of the rule file
  // that hold no rule are written back with the rules.
  void reloadFilters(bool local);
  const RuleSet& rules() const { return rules_; }
  // In place of the current set, in memory only.
  void setRules(RuleSet rules);
  const std::filesystem::path& currentRuleFile() const { return ruleFile_; }

  // The current set to the current rule file, every rule.
  bool saveFilters() { return saveRules(ruleFile_, false); }
  // Merges a rule file's new names into the set and saves it.
  void importFilters(const std::filesystem::path& file);
  bool exportFilters(const std::filesystem::path& file, bool sharedOnly) { return saveRules(file, sharedOnly); }

  // Look-ups of the five lists; they never touch the disk.
  bool ignore(std::string_view address) const { return lists().ignored.contains(address); }
  bool blockedSender(std::string_view address) const { return lists().senders.contains(address); }
  bool blockedDomain(std::string_view address) const { return lists().domains.contains(domainOf(address)); }
  bool blockedRecipientDomain(std::string_view address) const {
    return lists().recipientDomains.contains(domainOf(address));
  }
  bool blockedRecipient(std::string_view address) const { return lists().recipients.contains(address); }

  // Changes of the lists; each reads the list file again if it changed and writes it after.
  void ignoreRecipient(std::string_view address) { lists().ignored.add(std::string(address)); }
  void unignoreRecipient(std::string_view address) { lists().ignored.remove(address); }
  void blockSender(std::string_view address);
  void unblockSender(std::string_view address) { lists().senders.remove(address); }
  void blockSenderDomain(std::string_view address) { lists().domains.add(domainOf(address)); }
  void unblockSenderDomain(std::string_view address) { lists().domains.remove(domainOf(address)); }
  void blockRecipientDomain(std::string_view address) { lists().recipientDomains.add(domainOf(address)); }
  void unblockRecipientDomain(std::string_view address) { lists().recipientDomains.remove(domainOf(address)); }
  void blockRecipient(std::string_view address);
  void unblockRecipient(std::string_view address) { lists().recipients.remove(address); }

  // Writes the verdict into the message; see the step functions for the order.
  void checkMessage(message::Message& message, bool useBayes) override;

 private:
  struct Lists {
    Lists(const std::filesystem::path& folder, Log& log, Prompt& prompt);
    AddressList ignored;
    AddressList senders;
    AddressList domains;
    AddressList recipients;
    AddressList recipientDomains;
  };
  enum class Outcome { Decided, GoOn };

  Lists& lists();
  const Lists& lists() const { return const_cast<RuleEngine*>(this)->lists(); }
  void prepareRules();
  bool saveRules(const std::filesystem::path& file, bool sharedOnly);
  std::string digestKey() const;

  Outcome checkLists(message::Message& message, const std::string& senderAddress,
                     const std::string& recipientAddress) const;
  // Gives whether the last rule looked at matched; may clear `useBayes`.
  bool applyRules(message::Message& message, bool& useBayes) const;
  Outcome applyScore(message::Message& message, bool useBayes) const;
  void applySizeLimit(message::Message& message, bool matched) const;
  void noteRunFile(const FilterRule& rule) const;

  AppContext& ctx_;
  SpamScorer* scorer_ = nullptr;
  RuleSet rules_;
  std::vector<PreparedRule> prepared_;  // refers into rules_, made again whenever it changes
  std::filesystem::path ruleFile_;
  files::EditedFile ruleSource_;
  files::KeptLines keptLines_;
  std::unique_ptr<Lists> lists_;
  bool changedOutside_ = false;  // the rule file differs from the program's last save
};

}  // namespace vonel::rules
