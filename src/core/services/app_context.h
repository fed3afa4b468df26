#pragma once
// The one object through which every long-lived part of the program is
// reached: clock, prompt, log, the two settings stores, the data folders and
// the global values read at start. The program makes one; each test its own.
#include <cstdint>
#include <filesystem>
#include <memory>

#include "core/log/logging.h"
#include "core/services/clock.h"
#include "core/services/date_subs.h"
#include "core/services/prompt.h"
#include "core/settings/data_folders.h"
#include "core/settings/settings.h"

namespace vonel {

class AppContext {
 public:
  AppContext(const Clock& clock, Prompt& prompt, AppInfo info, LocaleFacts locale = {});

  const Clock& clock;
  Prompt& prompt;
  cSharedLogging log;
  cSHAREDSettings Settings;
  cSHAREDSettings PathSettings;
  DataFolders folders;

  const std::filesystem::path& installFolder() const { return log.info().installFolder; }
  std::filesystem::path settingsFile() const;
  std::filesystem::path pathsFile() const;

  // Made at first use, as its log lines belong to that moment.
  cSharedDateSubs& dates();

  // The four Bayes keys.
  void ReadBayesSettings();
  float SpamThreshold = 0.99f;
  float SaveToSpamThreshold = 0.7f;
  std::int16_t HeaderWordCount = 12;
  std::int16_t SpamWordMinimum = 2;

  bool NoCacheMode = false;
  bool RemindersUnavailable = true;

  // The running total of spam messages seen since installation.
  double GlobalSpamCount() const;

 private:
  LocaleFacts locale_;
  std::unique_ptr<cSharedDateSubs> dates_;
};

}  // namespace vonel
