// Settings files come from disk and from people's editors: any bytes must
// load, what was loaded must save and load again to the same text, and the
// lines without a comma, which hold no setting, must all be saved in order.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/log/log.h"
#include "core/time/clock.h"
#include "core/interaction/prompt.h"
#include "core/settings/settings_store.h"

namespace {

struct Quiet {
  vonel::FixedClock clock{vonel::text::DateTime{}};
  vonel::ScriptedPrompt prompt;
  vonel::Log log{clock, vonel::AppInfo{}};
  Quiet() { log.loggingOff = true; }
};

// Whether every line of `text` without a comma is a line of `saved`, in order.
bool keepsCommalessLines(std::string_view text, std::string_view saved) {
  while (!text.empty()) {
    const std::size_t end = text.find("\r\n");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    if (line.find(',') != std::string_view::npos) continue;
    bool found = false;
    while (!found && !saved.empty()) {
      const std::size_t savedEnd = saved.find("\r\n");
      found = saved.substr(0, savedEnd) == line;
      saved.remove_prefix(savedEnd == std::string_view::npos ? saved.size() : savedEnd + 2);
    }
    if (!found) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Quiet quiet;
  const std::string text(reinterpret_cast<const char*>(data), size);
  vonel::SettingsStore settings(quiet.log, quiet.prompt);
  settings.loadSettingsFromText(text, "fuzz");
  const std::string saved = settings.fileText();
  if (!keepsCommalessLines(text, saved)) std::abort();
  for (int i = 1; i <= settings.settingsCount(); ++i) {
    const auto name = settings.settingNameByIndex(i);
    settings.getOrDefault(name, vonel::Value(1));
    settings.setCount(name);
  }
  vonel::SettingsStore again(quiet.log, quiet.prompt);
  again.loadSettingsFromText(saved, "fuzz");
  if (again.fileText() != saved) std::abort();
  return 0;
}
