// Settings files come from disk and from people's editors: any bytes must
// load, and what was loaded must save and load again to the same text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/log/logging.h"
#include "core/services/clock.h"
#include "core/services/prompt.h"
#include "core/settings/settings.h"

namespace {

struct Quiet {
  vonel::FixedClock clock{vonel::text::DateTime{}};
  vonel::ScriptedPrompt prompt;
  vonel::cSharedLogging log{clock, vonel::AppInfo{}};
  Quiet() { log.NOLOGGING = true; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Quiet quiet;
  const std::string text(reinterpret_cast<const char*>(data), size);
  vonel::cSHAREDSettings settings(quiet.log, quiet.prompt);
  settings.LoadSettingsFromText(text, "fuzz");
  const std::string saved = settings.fileText();
  for (int i = 1; i <= settings.SettingsCount(); ++i) {
    const auto name = settings.SettingNameByIndex(i);
    settings.RetrieveWithDefault(name, vonel::Value(1));
    settings.SetCount(name);
  }
  vonel::cSHAREDSettings again(quiet.log, quiet.prompt);
  again.LoadSettingsFromText(saved, "fuzz");
  if (again.fileText() != saved) std::abort();
  return 0;
}
