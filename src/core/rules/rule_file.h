#pragma once
// The rule file: "key, value" lines ended by CR LF, one block of lines a
// rule, no header. Read leniently (single-digit action codes, unknown keys), written
// whole through a temporary file so that a failed save keeps the old rules.
// The lines a read can't use may be kept, to be written back in place.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/files/kept_lines.h"
#include "core/log/log.h"
#include "core/rules/filter_rule.h"

namespace vonel::rules {

using RuleSet = std::vector<FilterRule>;

// Adds the rules of the text to `rules`, after emptying it when `clear` is
// set. Without `clear` a rule whose name is already present is dropped,
// except the file's last rule. A line the reader can't take ends the read,
// keeping the rules read so far, and is logged. With `kept`, every line
// that went into no rule is kept there: unknown keys, lines before the first
// rule, skipped rules, and the rest of the file from the rule whose line
// ended the read.
void readRules(std::string_view text, RuleSet& rules, bool clear, Log& log, files::KeptLines* kept = nullptr);
void loadFilters(RuleSet& rules, const std::filesystem::path& file, bool clear, Log& log);

// The file form of the rules, with the kept lines put back; `sharedOnly`
// leaves out private rules.
std::string ruleFileText(const RuleSet& rules, bool sharedOnly, const files::KeptLines* kept = nullptr);
// False (and logged) when the file could not be written; the old one is then untouched.
bool saveFilters(const std::filesystem::path& file, const RuleSet& rules, bool sharedOnly, Log& log,
                 const files::KeptLines* kept = nullptr);

// Appends each rule of `source` whose trimmed name, ignoring case, isn't in
// `destination` yet; existing rules are never changed. Empties `source`.
void mergeFilters(RuleSet& source, RuleSet& destination);

}  // namespace vonel::rules
