#include "core/rules/rule_file.h"

#include <algorithm>
#include <limits>
#include <optional>
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
constexpr std::string_view kLineEnd = "\r\n";

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

class RuleReader {
 public:
  RuleReader(RuleSet& rules, bool clear, Log& log) : rules_(rules), clear_(clear), log_(log) {
    if (clear) {
      rules_.clear();
    } else {
      for (const auto& rule : rules_) names_.insert(rule.filterName);
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
      return;
    }
    if (!isRuleKey(key)) return;
    if (!current_) {
      ++outsideRule_;
      return;
    }
    apply(key, parsed.value);
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

 private:
  static bool isRuleKey(std::string_view key) {
    return key == "filterfield" || key == "filtercomparison" || key == "filterstring" ||
           key == "filter_category" || key == "filteraction" || key == "filterdest" || key == "filterstop";
  }

  void apply(std::string_view key, std::string_view value) {
    FilterRule& rule = *current_;
    if (key == "filterfield") {
      if (conditions_ == std::numeric_limits<std::int16_t>::max()) throw AppError(error_number::kOverflow, "Overflow");
      rule.setFields(++conditions_, std::string(value));
    } else if (key == "filtercomparison") {
      rule.setComparisons(conditions_, std::string(value));
    } else if (key == "filterstring") {
      rule.setStrings(conditions_, std::string(value));
    } else if (key == "filter_category") {
      rule.scope = static_cast<RuleScope>(text::toWhole<std::int16_t>(text::val(value)));
    } else if (key == "filteraction") {
      rule.action = currentActionCode(text::trimView(value));
    } else if (key == "filterdest") {
      rule.destFolder = std::string(value);
    } else if (const auto stop = stopFlag(value)) {
      rule.stopProcessing = *stop;
    } else {
      broken_ = "its FilterStop \"" + std::string(value) + "\" is not a yes or no";
    }
  }

  void endRule() {
    if (current_) store(!clear_);
  }

  void store(bool dropDuplicateName) {
    FilterRule& rule = *current_;
    rule.ruleCount = static_cast<std::int16_t>(conditions_);
    if (!broken_.empty()) {
      log_.addAction("Rule \"" + rule.filterName + "\" skipped: " + broken_, log_places::kLoadFilters, kModule);
      return;
    }
    if (dropDuplicateName && names_.count(rule.filterName) != 0) return;
    names_.insert(rule.filterName);
    rules_.push_back(std::move(rule));
  }

  RuleSet& rules_;
  bool clear_;
  Log& log_;
  std::unordered_set<std::string> names_;
  std::optional<FilterRule> current_;
  int conditions_ = 0;
  std::string broken_;
  long outsideRule_ = 0;
};

void appendLine(std::string& out, std::string_view key, std::string_view value) {
  out.append(key).append(kSeparator).append(value).append(kLineEnd);
}

}  // namespace

void readRules(std::string_view text, RuleSet& rules, bool clear, Log& log) {
  RuleReader reader(rules, clear, log);
  try {
    while (!text.empty()) reader.take(text::nextLine(text));
    reader.finish();
  } catch (const AppError& e) {
    logFailure(log, e, log_places::kLoadFilters, kModule);
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

std::string ruleFileText(const RuleSet& rules, bool sharedOnly) {
  std::string out;
  for (const auto& rule : rules) {
    if (sharedOnly && rule.scope != RuleScope::Shared) continue;
    appendLine(out, "Filtername", rule.filterName);
    // More than four conditions can't be held; writing the four keeps the file readable.
    const int conditions = std::min<int>(rule.ruleCount, FilterRule::kMaxConditions);
    for (int n = 1; n <= conditions; ++n) {
      appendLine(out, "FilterField", rule.fields(n));
      appendLine(out, "FilterComparison", rule.comparisons(n));
      appendLine(out, "FilterString", rule.strings(n));
    }
    appendLine(out, "FilterAction", rule.action);
    appendLine(out, "FilterDest", rule.destFolder);
    appendLine(out, "FilterStop", rule.stopProcessing ? "-1" : "0");
    appendLine(out, "Filter_Category", text::printForm(static_cast<long long>(static_cast<std::int16_t>(rule.scope))));
  }
  return out;
}

bool saveFilters(const std::filesystem::path& file, const RuleSet& rules, bool sharedOnly, Log& log) {
  return guardedStep(log, log_places::kSaveFilters, kModule, [&] { files::writeTextFile(file, ruleFileText(rules, sharedOnly)); });
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
