// Any bytes as a rule file: what is read must write back and read again the
// same, the lines that went into no rule must all be written back in order,
// and a second write-back must change nothing.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/files/kept_lines.h"
#include "core/rules/address_list.h"
#include "core/rules/rule_file.h"
#include "core/text/markup.h"
#include "core/text/strings.h"

namespace {

// Whether the lines come, in order, among the lines of `text`.
bool amongLines(const std::vector<std::string>& lines, std::string_view text) {
  for (const std::string& line : lines) {
    bool found = false;
    while (!found && !text.empty()) found = vonel::text::nextLine(text) == line;
    if (!found) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static vonel::FixedClock clock{vonel::text::DateTime{2026, 1, 1, 0, 0, 0}};
  static vonel::Log& log = []() -> vonel::Log& {
    static vonel::Log made(clock, vonel::AppInfo{});
    made.loggingOff = true;
    return made;
  }();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  vonel::rules::RuleSet rules;
  vonel::files::KeptLines kept;
  vonel::rules::readRules(bytes, rules, true, log, &kept);
  bool storable = true;
  for (const auto& rule : rules) storable = storable && rule.ruleCount <= vonel::rules::FilterRule::kMaxConditions;
  const std::string written = vonel::rules::ruleFileText(rules, false, &kept);
  if (!amongLines(kept.lines(), written)) std::abort();
  vonel::rules::RuleSet again;
  vonel::files::KeptLines keptAgain;
  vonel::rules::readRules(written, again, true, log, &keptAgain);
  if (storable && again != rules) std::abort();
  if (vonel::rules::ruleFileText(again, false, &keptAgain) != written) std::abort();
  vonel::rules::readRules(bytes, rules, false, log);
  vonel::text::cleanWord(bytes);
  vonel::rules::domainOf(bytes);
  return 0;
}
