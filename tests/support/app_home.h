#pragma once
// A program home of its own for one test: a temporary folder, a fixed clock,
// a scripted prompt and the context over them, with the data folders read so
// that the store's fixed folders exist.
#include <QTemporaryDir>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/context/app_context.h"
#include "core/interaction/prompt.h"
#include "core/time/clock.h"

namespace vonel::testing {

struct AppHome {
  // `settings` becomes Vonel.ini when given.
  explicit AppHome(std::string_view settings = {}, text::DateTime now = {2026, 11, 23, 8, 0, 0});

  // A folder below the store root, made with its parents.
  std::filesystem::path storeFolder(const std::filesystem::path& relative) const;
  // A file of the given bytes in the home.
  std::filesystem::path write(const std::string& name, std::string_view bytes) const;
  const std::filesystem::path& root() const { return context.folders.messageFolderPath; }

  QTemporaryDir dir;
  const std::filesystem::path home;
  FixedClock clock;
  ScriptedPrompt prompt;
  AppContext context;
};

}  // namespace vonel::testing
