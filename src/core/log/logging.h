#pragma once
// The run's diary: "log.txt" in the program's home, and a queue of up to
// twenty entries flushed to it in batches so that a mail pass costs few file
// openings. The logger never fails: an entry it can't write is skipped.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/app_error.h"
#include "core/services/clock.h"

namespace vonel {

// What the header of a new log file tells about the program and the machine.
struct AppInfo {
  std::string title = "Vonel";
  std::string version;
  std::string operatingSystem;
  std::filesystem::path currentFolder;
  std::filesystem::path installFolder;
};

class cSharedLogging {
 public:
  cSharedLogging(const Clock& clock, AppInfo info);
  ~cSharedLogging();
  cSharedLogging(const cSharedLogging&) = delete;
  cSharedLogging& operator=(const cSharedLogging&) = delete;

  bool NOLOGGING = false;

  const std::filesystem::path& CurrentLogFilename();
  void OverrideLogFilename(const std::filesystem::path& path);

  void LogEvent(std::string_view text, bool newFile = false);
  void LogToFile(const std::filesystem::path& path, std::string_view text, bool newFile = false);
  void LogError(const AppError& error, std::string_view procedure, std::string_view module,
                std::string_view extra = {});
  void AddDebug(std::string_view text, std::string_view procedure = {}, std::string_view module = {});
  void AddAction(std::string_view text, std::string_view procedure = {}, std::string_view module = {});
  void WriteActionsToLog();
  const std::string& CurrentAction() const { return currentAction_; }

  const AppInfo& info() const { return info_; }
  std::size_t queuedEntries() const { return queue_.size(); }

 private:
  struct Entry {
    std::string text;
    text::DateTime time;
  };
  static constexpr std::size_t kQueueLimit = 20;
  // The file's handle number as it has always been printed at the start of a line.
  static constexpr int kHandleNumber = 1;

  std::string formatLine(int handle, const text::DateTime& time, std::string_view text) const;
  void queue(std::string text);

  const Clock& clock_;
  AppInfo info_;
  std::filesystem::path logFile_;
  std::vector<Entry> queue_;
  std::string currentAction_;
};

// The common error tail: the failure becomes one log line and the caller
// carries on with its next step.
void logFailure(cSharedLogging& log, const AppError& error, std::string_view procedure, std::string_view module);

// Runs one step; whatever it throws is logged through the error tail.
// Returns false when the step failed.
template <typename Step>
bool guardedStep(cSharedLogging& log, std::string_view procedure, std::string_view module, Step&& step) {
  try {
    step();
    return true;
  } catch (...) {
    logFailure(log, AppError::from(std::current_exception()), procedure, module);
    return false;
  }
}

}  // namespace vonel
