#pragma once
// A program home with its store made, for the store's tests.
#include "core/services/app_context.h"
#include "core/services/file_subs.h"
#include "../test_home.h"

namespace vonel::testing {

struct StoreHome {
  TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 9, 30, 15}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1", "TestOS", "/", dir.path()}};

  StoreHome() {
    context.folders.ReadMessageFolder();
    context.folders.ReadDataFolder();
  }
  const std::filesystem::path& root() const { return context.folders.MessageFolderPath; }
  std::string logText() {
    context.log.WriteActionsToLog();
    return files::LoadTextFile(context.log.CurrentLogFilename());
  }
};

}  // namespace vonel::testing
