#pragma once
// A program home with its store made, for the store's tests.
#include <filesystem>
#include <string>

#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::testing {

struct StoreHome {
  TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 9, 30, 15}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1", "TestOS", "/", dir.path()}};

  StoreHome() {
    context.folders.readMessageFolder();
    context.folders.readDataFolder();
  }
  const std::filesystem::path& root() const { return context.folders.messageFolderPath; }
  // A message file with the given header lines, its time set to `modified`.
  std::filesystem::path writeMessage(const std::filesystem::path& folder, const std::string& name,
                                     const std::string& headers,
                                     std::filesystem::file_time_type modified = std::filesystem::file_time_type::clock::now()) {
    const auto file = folder / name;
    files::writeTextFile(file, "From: ann@example.com\r\nTo: bob@example.com\r\n" + headers + "\r\n\r\nBody text\r\n");
    std::filesystem::last_write_time(file, modified);
    return file;
  }
  std::string logText() {
    context.log.writeActionsToLog();
    return files::loadTextFile(context.log.currentLogFilename());
  }
};

}  // namespace vonel::testing
