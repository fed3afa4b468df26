// Any bytes as a rule file: what is read must write back and read again the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/rules/address_list.h"
#include "core/rules/rule_file.h"
#include "core/text/markup.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static vonel::FixedClock clock{vonel::text::DateTime{2026, 1, 1, 0, 0, 0}};
  static vonel::Log& log = []() -> vonel::Log& {
    static vonel::Log made(clock, vonel::AppInfo{});
    made.loggingOff = true;
    return made;
  }();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  vonel::rules::RuleSet rules;
  vonel::rules::readRules(bytes, rules, true, log);
  bool storable = true;
  for (const auto& rule : rules) storable = storable && rule.ruleCount <= vonel::rules::FilterRule::kMaxConditions;
  if (storable) {
    vonel::rules::RuleSet again;
    vonel::rules::readRules(vonel::rules::ruleFileText(rules, false), again, true, log);
    if (again != rules) std::abort();
  }
  vonel::rules::readRules(bytes, rules, false, log);
  vonel::text::cleanWord(bytes);
  vonel::rules::domainOf(bytes);
  return 0;
}
