#include "core/rules/prepared_rule.h"

#include <algorithm>

#include "core/log/app_error.h"
#include "core/text/markup.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

RuleField fieldNamed(std::string_view name) {
  static constexpr std::pair<std::string_view, RuleField> kNames[] = {
      {field::kSubject, RuleField::Subject},
      {field::kTo, RuleField::To},
      {field::kFrom, RuleField::From},
      {field::kEnvelopeTo, RuleField::EnvelopeTo},
      {field::kReturnPath, RuleField::ReturnPath},
      {field::kAllHeaders, RuleField::AllHeaders},
      {field::kCC, RuleField::CC},
      {field::kBCC, RuleField::BCC},
      {field::kSpamTestsFailed, RuleField::SpamTestsFailed},
      {field::kAttachmentNames, RuleField::AttachmentNames},
      {field::kBody, RuleField::Body},
  };
  for (const auto& [text, field] : kNames) {
    if (text::equalsNoCase(name, text)) return field;
  }
  return RuleField::Unknown;
}

std::uint16_t trigramHash(const char* at) {
  const auto byte = [at](int i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(at[i])); };
  return static_cast<std::uint16_t>(((byte(0) * 0x9E3779B1u) ^ (byte(1) * 0x85EBCA77u) ^ (byte(2) * 0xC2B2AE3Du)) >> 19);
}

// Below this a plain search is as quick as building the set.
constexpr std::size_t kIndexedLength = 128;

}  // namespace

TrigramSet::Hashes TrigramSet::hashesOf(std::string_view text) {
  Hashes hashes;
  for (std::size_t i = 0; i + 3 <= text.size(); ++i) hashes.push_back(trigramHash(text.data() + i));
  return hashes;
}

TrigramSet::TrigramSet(std::string_view text) {
  for (std::size_t i = 0; i + 3 <= text.size(); ++i) bits_.set(trigramHash(text.data() + i));
}

bool TrigramSet::mayHold(const Hashes& hashes) const {
  return std::all_of(hashes.begin(), hashes.end(), [this](std::uint16_t hash) { return bits_.test(hash); });
}

FoldedField::FoldedField(std::string text) : text_(std::move(text)) {
  if (text_.size() >= kIndexedLength) trigrams_ = std::make_unique<TrigramSet>(text_);
}

bool FoldedField::holds(std::string_view foldedText, const TrigramSet::Hashes& hashes) const {
  if (text_.empty()) return false;
  if (trigrams_ && !trigrams_->mayHold(hashes)) return false;
  return std::string_view(text_).find(foldedText) != std::string_view::npos;
}

std::string_view FoldedFields::source(RuleField field) {
  switch (field) {
    case RuleField::Subject: return m_.subject;
    case RuleField::To: return m_.toEmail();
    case RuleField::From: return m_.from.empty() ? m_.sender : m_.from;
    case RuleField::EnvelopeTo: return m_.xEnvelopeTo;
    case RuleField::ReturnPath: return m_.returnPath;
    case RuleField::AllHeaders: return m_.headers;
    case RuleField::CC: return m_.cc;
    case RuleField::BCC: return m_.bcc;
    case RuleField::SpamTestsFailed: return m_.spamTestsFailed;
    case RuleField::Body: return m_.strippedBody;
    case RuleField::AttachmentNames:
    case RuleField::Unknown: break;
  }
  return {};
}

const FoldedField& FoldedFields::value(RuleField field) {
  auto& slot = folded_[static_cast<std::size_t>(field)];
  if (!slot) slot.emplace(text::upper(field == RuleField::AttachmentNames ? m_.attachmentFilenames() : source(field)));
  return *slot;
}

const FoldedField& FoldedFields::cleanSubject() {
  if (!cleanSubject_) {
    std::string cleaned = text::cleanWord(m_.subject);
    cleanSubject_.emplace(text::upper(cleaned.empty() ? std::string_view(m_.subject) : std::string_view(cleaned)));
  }
  return *cleanSubject_;
}

PreparedRule::PreparedRule(const FilterRule& rule) : rule_(&rule) {
  const int held = std::clamp<int>(rule.ruleCount, 0, FilterRule::kMaxConditions);
  countsMoreThanItHolds_ = rule.ruleCount > FilterRule::kMaxConditions;
  for (int n = 1; n <= held; ++n) {
    const std::string& comparison = rule.comparisons(n);
    conditions_.push_back({fieldNamed(rule.fields(n)),
                           text::equalsNoCase(comparison, kContains)          ? Comparison::Contains
                           : text::equalsNoCase(comparison, kDoesNotContain) ? Comparison::DoesNotContain
                                                                               : Comparison::Other,
                           text::upper(rule.strings(n)), {}});
    conditions_.back().trigrams = TrigramSet::hashesOf(conditions_.back().foldedText);
  }
  action_ = actionOfCode(rule.action);
}

// A comparison other than the two known ones leaves the result as it stood:
// false first, true after a condition that held.
bool PreparedRule::holds(FoldedFields& fields) const {
  bool matched = false;
  for (const Condition& c : conditions_) {
    bool found = fields.value(c.field).holds(c.foldedText, c.trigrams);
    if (!found && c.field == RuleField::Subject) found = fields.cleanSubject().holds(c.foldedText, c.trigrams);
    if (c.comparison == Comparison::Contains) {
      matched = found;
    } else if (c.comparison == Comparison::DoesNotContain) {
      matched = !found;
    }
    if (!matched) return false;
  }
  if (matched && countsMoreThanItHolds_) throw AppError(error_number::kSubscriptOutOfRange, "Subscript out of range");
  return matched;
}

RuleAction PreparedRule::action() const {
  if (!action_) throw AppError(error_number::kTypeMismatch, "Type mismatch");
  return *action_;
}

}  // namespace vonel::rules
