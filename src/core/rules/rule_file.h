#pragma once
// The rule file: "key, value" lines ended by CR LF, one block of lines a
// rule, no header. Read leniently (old action codes, unknown keys), written
// whole through a temporary file so that a failed save keeps the old rules.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/logging.h"
#include "core/rules/filter_rule.h"

namespace vonel::rules {

using RuleSet = std::vector<clsFilterNew>;

// Adds the rules of the text to `rules`, after emptying it when `clear` is
// set. Without `clear` a rule whose name is already present is dropped,
// except the file's last rule. A line the reader can't take ends the read,
// keeping the rules read so far, and is logged.
void ReadRules(std::string_view text, RuleSet& rules, bool clear, cSharedLogging& log);
void LoadFilters(RuleSet& rules, const std::filesystem::path& file, bool clear, cSharedLogging& log);

// The file form of the rules; `sharedOnly` leaves out private rules.
std::string RuleFileText(const RuleSet& rules, bool sharedOnly);
// False (and logged) when the file could not be written; the old one is then untouched.
bool SaveFilters(const std::filesystem::path& file, const RuleSet& rules, bool sharedOnly, cSharedLogging& log);

// Appends each rule of `source` whose trimmed name, ignoring case, isn't in
// `destination` yet; existing rules are never changed. Empties `source`.
void MergeFilters(RuleSet& source, RuleSet& destination);

}  // namespace vonel::rules
