#pragma once
// One rule set with the five address lists, and the check that judges a
// message by them. The program holds two: the server set, used on headers
// still on the server, and the local set, used on downloaded mail.
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "core/rules/address_list.h"
#include "core/rules/message_check.h"
#include "core/rules/prepared_rule.h"
#include "core/rules/rule_file.h"
#include "core/rules/spam_scorer.h"
#include "core/services/app_context.h"

namespace vonel::rules {

// Display colours of a verdict, blue-green-red.
namespace colour {
inline constexpr std::int32_t kGreen = 32768;
inline constexpr std::int32_t kRed = 255;
inline constexpr std::int32_t kGrey = 12632256;
inline constexpr std::int32_t kOrange = 33023;
inline constexpr std::int32_t kPurple = 8388736;
}  // namespace colour

class frmFilters final : public MessageCheck {
 public:
  explicit frmFilters(AppContext& context) : ctx_(context) {}

  // Without a scorer every message scores 0.01.
  void setScorer(SpamScorer* scorer) { scorer_ = scorer; }

  // Loads "LocalRules.txt" when `local`, else "Rules.txt", from the data
  // folder, and brings the five lists up to date.
  void ReloadFilters(bool local);
  const RuleSet& Rules() const { return rules_; }
  // In place of the current set, in memory only.
  void setRules(RuleSet rules);
  const std::filesystem::path& CurrentRuleFile() const { return ruleFile_; }

  // The current set to the current rule file, every rule.
  bool SaveFilters() { return saveRules(ruleFile_, false); }
  // Merges a rule file's new names into the set and saves it.
  void ImportFilters(const std::filesystem::path& file);
  bool ExportFilters(const std::filesystem::path& file, bool sharedOnly) { return saveRules(file, sharedOnly); }

  // Look-ups of the five lists; they never touch the disk.
  bool Ignore(std::string_view address) const { return lists().ignored.Contains(address); }
  bool BlockedSender(std::string_view address) const { return lists().senders.Contains(address); }
  bool BlockedDomain(std::string_view address) const { return lists().domains.Contains(DomainOf(address)); }
  bool BlockedRecipDomain(std::string_view address) const {
    return lists().recipientDomains.Contains(DomainOf(address));
  }
  bool BlockedRecipient(std::string_view address) const { return lists().recipients.Contains(address); }

  // Changes of the lists; each reads the list file again if it changed and writes it after.
  void IgnoreRecipient(std::string_view address) { lists().ignored.Add(std::string(address)); }
  void UnIgnoreRecipient(std::string_view address) { lists().ignored.Remove(address); }
  void BlockSender(std::string_view address);
  void UnBlockSender(std::string_view address) { lists().senders.Remove(address); }
  void BlockSenderDomain(std::string_view address) { lists().domains.Add(DomainOf(address)); }
  void UnBlockSenderDomain(std::string_view address) { lists().domains.Remove(DomainOf(address)); }
  void BlockRecipDomain(std::string_view address) { lists().recipientDomains.Add(DomainOf(address)); }
  void UnBlockRecipDomain(std::string_view address) { lists().recipientDomains.Remove(DomainOf(address)); }
  void BlockRecip(std::string_view address);
  void UnBlockRecip(std::string_view address) { lists().recipients.Remove(address); }

  // Writes the verdict into the message; see the step functions for the order.
  void CheckMessage(message::clsMessage& message, bool useBayes) override;

 private:
  struct Lists {
    explicit Lists(const std::filesystem::path& folder, cSharedLogging& log);
    AddressList ignored;
    AddressList senders;
    AddressList domains;
    AddressList recipients;
    AddressList recipientDomains;
  };
  enum class Outcome { Decided, GoOn };

  Lists& lists();
  const Lists& lists() const { return const_cast<frmFilters*>(this)->lists(); }
  void prepareRules();
  bool saveRules(const std::filesystem::path& file, bool sharedOnly);
  std::string digestKey() const;

  Outcome checkLists(message::clsMessage& message, const std::string& senderAddress,
                     const std::string& recipientAddress) const;
  // Gives whether the last rule looked at matched; may clear `useBayes`.
  bool applyRules(message::clsMessage& message, bool& useBayes) const;
  Outcome applyScore(message::clsMessage& message, bool useBayes) const;
  void applySizeLimit(message::clsMessage& message, bool matched) const;
  void noteRunFile(const clsFilterNew& rule) const;

  AppContext& ctx_;
  SpamScorer* scorer_ = nullptr;
  RuleSet rules_;
  std::vector<PreparedRule> prepared_;  // refers into rules_, made again whenever it changes
  std::filesystem::path ruleFile_;
  std::unique_ptr<Lists> lists_;
  bool changedOutside_ = false;  // the rule file differs from the program's last save
};

}  // namespace vonel::rules
