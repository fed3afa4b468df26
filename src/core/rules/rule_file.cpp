#include "core/rules/rule_file.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "core/log/log_places.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

constexpr std::string_view kModule = log_places::kRulesModule;
constexpr std::string_view kSeparator = ", ";

// The key is the text before the first ", "; the value only what stands
// between the first and the second, so a value holding ", " loses its tail.
struct RuleLine {
  std::string key;
  std::string_view value;
};

RuleLine splitLine(std::string_view line) {
  const std::size_t keyEnd = line.find(kSeparator);
  if (keyEnd == std::string_view::npos) return {text::lower(line), {}};
  std::string_view value = line.substr(keyEnd + kSeparator.size());
  value = value.substr(0, value.find(kSeparator));
  return {text::lower(line.substr(0, keyEnd)), value};
}

std::optional<bool> stopFlag(std::string_view value) {
  const auto number = text::toNumber(value);  // reads "True" and "False" too
  if (!number) return std::nullopt;
  return *number != 0;
}

// Where a rule's lines stand, for the kept lines around them: the rule by
// its name and how many rules of that name came before it, then the line.
class RuleAnchors {
 public:
  std::string next(std::string_view name) {
    return std::to_string(seen_[text::upper(name)]++) + '\x1f' + std::string(name) + '\x1f';
  }

 private:
  std::unordered_map<std::string, int> seen_;
};

constexpr std::string_view kNameSlot = "N";
constexpr std::string_view kEndSlot = "end";

std::string conditionSlot(char part, int n) { return part + std::to_string(n); }

class RuleReader {
 public:
  RuleReader(RuleSet& rules, bool clear, Log& log, files::KeptLines* kept)
      : rules_(rules), clear_(clear), log_(log), kept_(kept) {
    if (clear) {
      rules_.clear();
    } else {
      for (const auto& rule : rules_) {
        names_.insert(rule.filterName);
        if (kept_) anchors_.next(rule.filterName);
      }
    }
  }

  void take(std::string_view line) {
    const RuleLine parsed = splitLine(line);
    const std::string& key = parsed.key;
    if (key == "filtername") {
      endRule();
      current_ = FilterRule{};
      current_->filterName = std::string(parsed.value);
      conditions_ = 0;
      broken_.clear();
      hold(line, std::string(kNameSlot));
      return;
    }
    if (!current_) {
      if (isRuleKey(key)) ++outsideRule_;
      if (kept_) kept_->keep(line);
      return;
    }
    // Any other key is no part of the rule, but stays beside its lines.
    hold(line, isRuleKey(key) ? apply(key, parsed.value) : std::string());
  }

  // The last rule goes in without the name search, so a read on top of
  // rules ends with the file's last rule whatever its name; the import
  // merges by name afterwards, which drops such a repeat again.
  void finish() {
    if (current_) store(false);
    current_.reset();
    if (outsideRule_ > 0) {
      log_.addAction(std::to_string(outsideRule_) + " rule lines before the first Filtername were skipped",
                     log_places::kLoadFilters, kModule);
    }
  }

  // After a line the reader can't take: that line, the rule it belongs to and
  // everything after it stay at the end of the file, unread.
  void keepUnread(std::string_view line, std::string_view rest) {
    if (!kept_) return;
    for (const HeldLine& held : held_) kept_->keepAtEnd(held.text);
    kept_->keepAtEnd(line);
    while (!rest.empty()) kept_->keepAtEnd(text::nextLine(rest));
  }

 private:
  // A line of the rule being read, and the slot it fills when it is written
  // again; none for a line that fills none.
  struct HeldLine {
    std::string text;
    std::string slot;
  };

  static bool isRuleKey(std::string_view key) {
    return key == "filterfield" || key == "filtercomparison" || key == "filterstring" ||
           key == "filter_category" || key == "filteraction" || key == "filterdest" || key == "filterstop";
  }

  void hold(std::string_view line, std::string slot) {
    if (kept_) held_.push_back(HeldLine{std::string(line), std::move(slot)});
  }

  // The slot the line fills.
  std::string apply(std::string_view key, std::string_view value) {
    FilterRule& rule = *current_;
    if (key == "filterfield") {
      if (conditions_ == std::numeric_limits<std::int16_t>::max()) throw AppError(error_number::kOverflow, "Overflow");
      rule.setFields(++conditions_, std::string(value));
      return conditionSlot('F', conditions_);
    }
    if (key == "filtercomparison") {
      rule.setComparisons(conditions_, std::string(value));
      return conditionSlot('C', conditions_);
    }
    if (key == "filterstring") {
      rule.setStrings(conditions_, std::string(value));
      return conditionSlot('S', conditions_);
    }
    if (key == "filter_category") {
      rule.scope = static_cast<RuleScope>(text::toWhole<std::int16_t>(text::val(value)));
      return "K";
    }
    if (key == "filteraction") {
      rule.action = currentActionCode(text::trimView(value));
      return "A";
    }
    if (key == "filterdest") {
      rule.destFolder = std::string(value);
      return "D";
    }
    if (const auto stop = stopFlag(value)) {
      rule.stopProcessing = *stop;
    } else {
      broken_ = "its FilterStop \"" + std::string(value) + "\" is not a yes or no";
    }
    return "T";
  }

  void endRule() {
    if (current_) store(!clear_);
  }

  // A rule that isn't stored leaves all its lines kept, in place.
  void store(bool dropDuplicateName) {
    FilterRule& rule = *current_;
    rule.ruleCount = static_cast<std::int16_t>(conditions_);
    bool stored = false;
    std::string anchor;
    if (!broken_.empty()) {
      log_.addAction("Rule \"" + rule.filterName + "\" skipped: " + broken_, log_places::kLoadFilters, kModule);
    } else if (!dropDuplicateName || names_.count(rule.filterName) == 0) {
      names_.insert(rule.filterName);
      if (kept_) anchor = anchors_.next(rule.filterName);
      rules_.push_back(std::move(rule));
      stored = true;
    }
    if (!kept_) return;
    for (const HeldLine& held : held_) {
      if (stored && !held.slot.empty()) {
        kept_->understood(anchor + held.slot);
      } else {
        kept_->keep(held.text);
      }
    }
    if (stored) kept_->understood(anchor + std::string(kEndSlot));
    held_.clear();
  }

  RuleSet& rules_;
  bool clear_;
  Log& log_;
  files::KeptLines* kept_;
  std::unordered_set<std::string> names_;
  RuleAnchors anchors_;
  std::optional<FilterRule> current_;
  std::vector<HeldLine> held_;
  int conditions_ = 0;
  std::string broken_;
  long outsideRule_ = 0;
};

}  // namespace

void readRules(std::string_view text, RuleSet& rules, bool clear, Log& log, files::KeptLines* kept) {
  if (kept) kept->clear();
  RuleReader reader(rules, clear, log, kept);
  std::string_view line;
  try {
    while (!text.empty()) {
      line = text::nextLine(text);
      reader.take(line);
    }
    reader.finish();
  } catch (const AppError& e) {
    logFailure(log, e, log_places::kLoadFilters, kModule);
    reader.keepUnread(line, text);
  }
}

void loadFilters(RuleSet& rules, const std::filesystem::path& file, bool clear, Log& log) {
  std::string text;
  try {
    text = files::loadTextFile(file);
  } catch (const AppError& e) {
    if (clear) rules.clear();
    logFailure(log, e, log_places::kLoadFilters, kModule);
    return;
  }
  readRules(text, rules, clear, log);
}

std::string ruleFileText(const RuleSet& rules, bool sharedOnly, const files::KeptLines* kept) {
  std::string out;
  files::KeptLines::Writer writer(kept, out);
  RuleAnchors anchors;
  for (const auto& rule : rules) {
    if (sharedOnly && rule.scope != RuleScope::Shared) continue;
    const std::string anchor = writer.placing() ? anchors.next(rule.filterName) : std::string();
    const auto put = [&](std::string_view slot, std::string_view key, std::string_view value) {
      std::string line(key);
      line.append(kSeparator).append(value);
      writer.line(writer.placing() ? anchor + std::string(slot) : std::string(), line);
    };
    put(kNameSlot, "Filtername", rule.filterName);
    // More than four conditions can't be held; writing the four keeps the file readable.
    const int conditions = std::min<int>(rule.ruleCount, FilterRule::kMaxConditions);
    for (int n = 1; n <= conditions; ++n) {
      put(conditionSlot('F', n), "FilterField", rule.fields(n));
      put(conditionSlot('C', n), "FilterComparison", rule.comparisons(n));
      put(conditionSlot('S', n), "FilterString", rule.strings(n));
    }
    put("A", "FilterAction", rule.action);
    put("D", "FilterDest", rule.destFolder);
    put("T", "FilterStop", rule.stopProcessing ? "-1" : "0");
    put("K", "Filter_Category", text::printForm(static_cast<long long>(static_cast<std::int16_t>(rule.scope))));
    if (writer.placing()) writer.mark(anchor + std::string(kEndSlot));
  }
  writer.finish();
  return out;
}

bool saveFilters(const std::filesystem::path& file, const RuleSet& rules, bool sharedOnly, Log& log,
                 const files::KeptLines* kept) {
  return guardedStep(log, log_places::kSaveFilters, kModule,
                     [&] { files::writeTextFile(file, ruleFileText(rules, sharedOnly, kept)); });
}

void mergeFilters(RuleSet& source, RuleSet& destination) {
  std::unordered_set<std::string> present;
  for (const auto& rule : destination) present.insert(text::upper(text::trimView(rule.filterName)));
  for (auto& rule : source) {
    if (present.insert(text::upper(text::trimView(rule.filterName))).second) destination.push_back(std::move(rule));
  }
  source.clear();
}

}  // namespace vonel::rules
