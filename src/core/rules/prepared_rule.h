#pragma once
// A rule made ready for the check, which runs it against every header of
// every pass: field names resolved once, texts folded to upper case once,
// the action code read once. A message's fields are folded once per
// check and shared by all rules.
#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/message/message.h"
#include "core/rules/filter_rule.h"

namespace vonel::rules {

// The fields a condition can read, in the order the check tries their names.
enum class RuleField { Subject, To, From, EnvelopeTo, ReturnPath, AllHeaders, CC, BCC, SpamTestsFailed,
                       AttachmentNames, Body, Unknown };

// The three-byte sequences of a text, hashed into a small bit set: a text
// can only hold another if it has all of the other's sequences. With many
// rules searching one header block this rules out nearly every search.
class TrigramSet {
 public:
  using Hashes = std::vector<std::uint16_t>;
  static Hashes hashesOf(std::string_view text);
  explicit TrigramSet(std::string_view text);
  bool mayHold(const Hashes& hashes) const;

 private:
  static constexpr std::size_t kBits = 8192;
  std::bitset<kBits> bits_;
};

// A field in upper case, with its trigram set when it is long enough to pay.
class FoldedField {
 public:
  explicit FoldedField(std::string text);
  // The empty field holds nothing, not even the empty text.
  bool holds(std::string_view foldedText, const TrigramSet::Hashes& hashes) const;

 private:
  std::string text_;
  std::unique_ptr<TrigramSet> trigrams_;
};

// One message's fields, each folded at its first use.
class FoldedFields {
 public:
  explicit FoldedFields(const message::Message& message) : m_(message) {}
  const FoldedField& value(RuleField field);
  // The subject with its disguises undone; the subject itself when that leaves nothing.
  const FoldedField& cleanSubject();

 private:
  std::string_view source(RuleField field);

  const message::Message& m_;
  std::array<std::optional<FoldedField>, static_cast<std::size_t>(RuleField::Unknown) + 1> folded_;
  std::optional<FoldedField> cleanSubject_;
};

class PreparedRule {
 public:
  explicit PreparedRule(const FilterRule& rule);

  // True when every condition holds. Throws AppError 9 when the first four
  // hold and the rule counts more: the check then logs the failure and the
  // message keeps the verdict it had so far.
  bool holds(FoldedFields& fields) const;
  // Throws AppError 13 when the stored code is no number.
  RuleAction action() const;
  const FilterRule& rule() const { return *rule_; }

 private:
  enum class Comparison { Contains, DoesNotContain, Other };
  struct Condition {
    RuleField field;
    Comparison comparison;
    std::string foldedText;
    TrigramSet::Hashes trigrams;
  };

  const FilterRule* rule_;
  std::vector<Condition> conditions_;
  bool countsMoreThanItHolds_ = false;
  std::optional<RuleAction> action_;
};

}  // namespace vonel::rules
