#pragma once
// The one object through which every long-lived part of the program is
// reached: clock, prompt, log, the two settings stores, the data folders and
// the global values read at start. The program makes one; each test its own.
#include <cstdint>
#include <filesystem>
#include <memory>

#include "core/files/write_batch.h"
#include "core/log/log.h"
#include "core/time/clock.h"
#include "core/locale/locale_dates.h"
#include "core/interaction/prompt.h"
#include "core/settings/data_folders.h"
#include "core/settings/settings_store.h"

namespace vonel {

class AppContext {
 public:
  AppContext(const Clock& clock, Prompt& prompt, AppInfo info, LocaleFacts locale = {});

  const Clock& clock;
  Prompt& prompt;
  Log log;
  SettingsStore settings;
  SettingsStore pathSettings;
  DataFolders folders;
  // The files a download, an upload or a command has written and not yet
  // brought to the disk: one barrier for all before the step that commits them.
  files::WriteBatch writes;

  const std::filesystem::path& installFolder() const { return log.info().installFolder; }
  std::filesystem::path settingsFile() const;
  std::filesystem::path pathsFile() const;

  // Made at first use, as its log lines belong to that moment.
  LocaleDates& dates();

  // The four Bayes keys.
  void readBayesSettings();
  float spamThreshold = 0.99f;
  float saveToSpamThreshold = 0.7f;
  std::int16_t headerWordCount = 12;
  std::int16_t spamWordMinimum = 2;

  bool noCacheMode = false;
  bool remindersUnavailable = true;
  // From the command line (--lockstep): header scans wait for each reply
  // before the next command, whatever POPPIPELINING says. Never saved.
  bool popLockstep = false;

  // The running total of spam messages seen since installation.
  double globalSpamCount() const;

 private:
  LocaleFacts locale_;
  std::unique_ptr<LocaleDates> dates_;
};

}  // namespace vonel
