// Loads and saves a large settings file and prints how fast that goes.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/files/atomic_file.h"
#include "core/settings/settings_store.h"

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  const int lines = argc > 1 ? std::stoi(argv[1]) : 520000;
  std::string text;
  for (int i = 0; i < lines; ++i) text += "KEY" + std::to_string(i) + "," + std::string(90, 'v') + "\r\n";
  const auto folder = std::filesystem::temp_directory_path() / "vonel-bench-settings";
  std::filesystem::create_directories(folder);
  const auto file = folder / "Vonel.ini";
  vonel::files::writeTextFile(file, text);

  vonel::FixedClock clock{vonel::text::DateTime{}};
  vonel::ScriptedPrompt prompt;
  vonel::Log log(clock, vonel::AppInfo{"Vonel", "", "", "", folder});
  vonel::SettingsStore settings(log, prompt);
  const double megabytes = static_cast<double>(text.size()) / (1024.0 * 1024.0);

  const auto start = Clock::now();
  settings.loadSettings(file);
  const auto loaded = Clock::now();
  settings.saveSettings(file);
  const auto saved = Clock::now();
  for (int i = 0; i < lines; i += 7) settings.get("key" + std::to_string(i));
  const auto looked = Clock::now();

  const auto seconds = [](auto from, auto to) { return std::chrono::duration<double>(to - from).count(); };
  std::printf("settings file: %d keys, %.1f MB\n", settings.settingsCount(), megabytes);
  std::printf("load: %.3f s (%.0f MB/s)\n", seconds(start, loaded), megabytes / seconds(start, loaded));
  std::printf("save: %.3f s (%.0f MB/s)\n", seconds(loaded, saved), megabytes / seconds(loaded, saved));
  std::printf("lookups: %.0f per second\n", (lines / 7.0) / seconds(saved, looked));
  std::filesystem::remove_all(folder);
  return 0;
}
