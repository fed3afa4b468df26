#pragma once
// A program home opened the way the program opens it, for the commands that
// judge messages against a user's settings, lists and tables. Nothing is logged.
#include <filesystem>

#include "core/context/app_context.h"

namespace vonel::inspect {

struct InspectHome {
  explicit InspectHome(const std::filesystem::path& home)
      : context(clock, prompt, AppInfo{"Vonel", "inspect", "", {}, home}) {
    context.log.loggingOff = true;
    context.pathSettings.loadSettings(context.pathsFile());
    context.settings.loadSettings(context.settingsFile());
    context.folders.readDataFolder();
    context.readBayesSettings();
  }

  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context;
};

}  // namespace vonel::inspect
