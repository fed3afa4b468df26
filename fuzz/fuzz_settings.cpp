// Settings files come from disk and from people's editors: any bytes must
// load, and what was loaded must save and load again to the same text.
#include <cstdint>
#include <cstdlib>
#include <string>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Quiet quiet;
  const std::string text(reinterpret_cast<const char*>(data), size);
  vonel::SettingsStore settings(quiet.log, quiet.prompt);
  settings.loadSettingsFromText(text, "fuzz");
  const std::string saved = settings.fileText();
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
