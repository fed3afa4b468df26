#include "support/app_home.h"

#include "core/files/atomic_file.h"

namespace vonel::testing {

AppHome::AppHome(std::string_view settings, text::DateTime now)
    : home(dir.path().toStdString()), clock(now), context(clock, prompt, AppInfo{"Vonel", "1", "os", "/", home}) {
  if (!settings.empty()) {
    files::writeTextFile(home / "Vonel.ini", settings);
    context.settings.loadSettings(home / "Vonel.ini");
  }
  context.folders.readMessageFolder();
  context.folders.readDataFolder();
}

std::filesystem::path AppHome::storeFolder(const std::filesystem::path& relative) const {
  const std::filesystem::path folder = context.folders.messageFolderPath / relative;
  std::filesystem::create_directories(folder);
  return folder;
}

std::filesystem::path AppHome::write(const std::string& name, std::string_view bytes) const {
  const std::filesystem::path file = home / name;
  files::writeTextFile(file, bytes);
  return file;
}

}  // namespace vonel::testing
