#include "core/rules/rule_file.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_set>

#include "core/services/file_subs.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

constexpr std::string_view kModule = "frmFilters";
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
  RuleReader(RuleSet& rules, bool clear, cSharedLogging& log) : rules_(rules), clear_(clear), log_(log) {
    if (clear) {
      rules_.clear();
    } else {
      for (const auto& rule : rules_) names_.insert(rule.FilterName);
    }
  }

  void take(std::string_view line) {
    const RuleLine parsed = splitLine(line);
    const std::string& key = parsed.key;
    if (key == "filtername") {
      endRule();
      current_ = clsFilterNew{};
      current_->FilterName = std::string(parsed.value);
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

  // The last rule goes in without the name search, as it always has.
  void finish() {
    if (current_) store(false);
    current_.reset();
    if (outsideRule_ > 0) {
      log_.AddAction(std::to_string(outsideRule_) + " rule lines before the first Filtername were skipped",
                     "LoadFilters", kModule);
    }
  }

 private:
  static bool isRuleKey(std::string_view key) {
    return key == "filterfield" || key == "filtercomparison" || key == "filterstring" ||
           key == "filter_category" || key == "filteraction" || key == "filterdest" || key == "filterstop";
  }

  void apply(std::string_view key, std::string_view value) {
    clsFilterNew& rule = *current_;
    if (key == "filterfield") {
      if (conditions_ == std::numeric_limits<std::int16_t>::max()) throw AppError(6, "Overflow");
      rule.setFields(++conditions_, std::string(value));
    } else if (key == "filtercomparison") {
      rule.setComparisons(conditions_, std::string(value));
    } else if (key == "filterstring") {
      rule.setStrings(conditions_, std::string(value));
    } else if (key == "filter_category") {
      rule.Category = text::toWhole<std::int16_t>(text::val(value));
    } else if (key == "filteraction") {
      rule.Action = CurrentActionCode(text::trimView(value));
    } else if (key == "filterdest") {
      rule.DestFolder = std::string(value);
    } else if (const auto stop = stopFlag(value)) {
      rule.StopProcessing = *stop;
    } else {
      broken_ = "its FilterStop \"" + std::string(value) + "\" is not a yes or no";
    }
  }

  void endRule() {
    if (current_) store(!clear_);
  }

  void store(bool dropDuplicateName) {
    clsFilterNew& rule = *current_;
    rule.RuleCount = static_cast<std::int16_t>(conditions_);
    if (!broken_.empty()) {
      log_.AddAction("Rule \"" + rule.FilterName + "\" skipped: " + broken_, "LoadFilters", kModule);
      return;
    }
    if (dropDuplicateName && names_.count(rule.FilterName) != 0) return;
    names_.insert(rule.FilterName);
    rules_.push_back(std::move(rule));
  }

  RuleSet& rules_;
  bool clear_;
  cSharedLogging& log_;
  std::unordered_set<std::string> names_;
  std::optional<clsFilterNew> current_;
  int conditions_ = 0;
  std::string broken_;
  long outsideRule_ = 0;
};

void appendLine(std::string& out, std::string_view key, std::string_view value) {
  out.append(key).append(kSeparator).append(value).append(kLineEnd);
}

}  // namespace

void ReadRules(std::string_view text, RuleSet& rules, bool clear, cSharedLogging& log) {
  RuleReader reader(rules, clear, log);
  try {
    while (!text.empty()) reader.take(text::nextLine(text));
    reader.finish();
  } catch (const AppError& e) {
    logFailure(log, e, "LoadFilters", kModule);
  }
}

void LoadFilters(RuleSet& rules, const std::filesystem::path& file, bool clear, cSharedLogging& log) {
  std::string text;
  try {
    text = files::LoadTextFile(file);
  } catch (const AppError& e) {
    if (clear) rules.clear();
    logFailure(log, e, "LoadFilters", kModule);
    return;
  }
  ReadRules(text, rules, clear, log);
}

std::string RuleFileText(const RuleSet& rules, bool sharedOnly) {
  std::string out;
  for (const auto& rule : rules) {
    if (sharedOnly && rule.Category != 0) continue;
    appendLine(out, "Filtername", rule.FilterName);
    // More than four conditions can't be held; writing the four keeps the file readable.
    const int conditions = std::min<int>(rule.RuleCount, clsFilterNew::kMaxConditions);
    for (int n = 1; n <= conditions; ++n) {
      appendLine(out, "FilterField", rule.Fields(n));
      appendLine(out, "FilterComparison", rule.Comparisons(n));
      appendLine(out, "FilterString", rule.Strings(n));
    }
    appendLine(out, "FilterAction", rule.Action);
    appendLine(out, "FilterDest", rule.DestFolder);
    appendLine(out, "FilterStop", rule.StopProcessing ? "-1" : "0");
    appendLine(out, "Filter_Category", text::printForm(static_cast<long long>(rule.Category)));
  }
  return out;
}

bool SaveFilters(const std::filesystem::path& file, const RuleSet& rules, bool sharedOnly, cSharedLogging& log) {
  return guardedStep(log, "SaveFilters", kModule, [&] { files::WriteTextFile(file, RuleFileText(rules, sharedOnly)); });
}

void MergeFilters(RuleSet& source, RuleSet& destination) {
  std::unordered_set<std::string> present;
  for (const auto& rule : destination) present.insert(text::upper(text::trimView(rule.FilterName)));
  for (auto& rule : source) {
    if (present.insert(text::upper(text::trimView(rule.FilterName))).second) destination.push_back(std::move(rule));
  }
  source.clear();
}

}  // namespace vonel::rules
