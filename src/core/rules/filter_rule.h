#pragma once
// One rule of a rule set: up to four conditions on message fields, one
// action with its argument, and whether later rules are still looked at.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vonel::rules {

// The action codes as stored; a file may hold "0" to "4" instead of the first five.
namespace action {
inline constexpr std::string_view kDelete = "100";
inline constexpr std::string_view kSuspicious = "200";
inline constexpr std::string_view kMoveToFolder = "300";
inline constexpr std::string_view kAllow = "400";
inline constexpr std::string_view kSaveAttachments = "500";
inline constexpr std::string_view kRunFile = "600";
inline constexpr std::string_view kTag = "700";
}  // namespace action

// A single-digit code as its three-digit one; any other text unchanged.
std::string currentActionCode(std::string_view code);

// What a rule does when it holds, as the check tells the stored codes apart.
enum class RuleAction { Delete, Suspicious, MoveToFolder, Allow, SaveAttachments, RunFile, Tag, Unknown };
// The action a stored code stands for, single digits included; Unknown for a
// number that is no action, nothing for a code that is no number at all.
std::optional<RuleAction> actionOfCode(std::string_view code);

// Who a rule is for: an export of shared rules leaves the private ones out.
// A file may hold another number; it is kept, written back as read, and
// counts as private.
enum class RuleScope : std::int16_t { Shared = 0, Private = 1 };

// The field names a condition can read, as stored and shown.
namespace field {
inline constexpr std::string_view kTo = "To:";
inline constexpr std::string_view kCC = "CC:";
inline constexpr std::string_view kBCC = "BCC:";
inline constexpr std::string_view kSubject = "Subject:";
inline constexpr std::string_view kFrom = "From:";
inline constexpr std::string_view kReturnPath = "Return-Path:";
inline constexpr std::string_view kSpamTestsFailed = "X-Spam-Tests-Failed:";
inline constexpr std::string_view kEnvelopeTo = "X-Envelope-To:";
inline constexpr std::string_view kAllHeaders = "All Headers";
inline constexpr std::string_view kAttachmentNames = "Attachment Filenames";
inline constexpr std::string_view kBody = "Message Body";
}  // namespace field

inline constexpr std::string_view kContains = "cnt";
inline constexpr std::string_view kDoesNotContain = "!cnt";

class FilterRule {
 public:
  static constexpr int kMaxConditions = 4;

  std::string filterName;
  RuleScope scope = RuleScope::Shared;
  bool stopProcessing = false;
  std::int16_t ruleCount = 0;
  std::string action;
  std::string destFolder;

  // Conditions are numbered 1 to 4. Reading any of them, or setting a
  // comparison or text, outside that range throws; setting a field there is
  // ignored: a rule with a fifth field line alone is still read, and it is
  // the check that fails on it (see PreparedRule::holds).
  const std::string& fields(int n) const { return at(fields_, n); }
  const std::string& comparisons(int n) const { return at(comparisons_, n); }
  const std::string& strings(int n) const { return at(strings_, n); }
  void setFields(int n, std::string value);
  void setComparisons(int n, std::string value) { at(comparisons_, n) = std::move(value); }
  void setStrings(int n, std::string value) { at(strings_, n) = std::move(value); }

  bool operator==(const FilterRule&) const = default;

 private:
  using Column = std::array<std::string, kMaxConditions>;
  static std::string& at(Column& column, int n);
  static const std::string& at(const Column& column, int n) { return at(const_cast<Column&>(column), n); }

  Column fields_;
  Column comparisons_;
  Column strings_;
};

}  // namespace vonel::rules
