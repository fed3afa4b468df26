#pragma once
// A program home opened the way the program opens it, for the commands that
// judge messages against a user's settings, lists and tables. Nothing is logged.
#include <filesystem>

#include "core/services/app_context.h"

namespace vonel::inspect {

struct InspectHome {
  explicit InspectHome(const std::filesystem::path& home)
      : context(clock, prompt, AppInfo{"Vonel", "inspect", "", {}, home}) {
    context.log.NOLOGGING = true;
    context.PathSettings.LoadSettings(context.pathsFile());
    context.Settings.LoadSettings(context.settingsFile());
    context.folders.ReadDataFolder();
    context.ReadBayesSettings();
  }

  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context;
};

}  // namespace vonel::inspect
