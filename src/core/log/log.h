#pragma once
// The run's diary: "log.txt" in the program's home, and a queue of up to
// twenty entries flushed to it in batches so that a mail pass costs few file
// openings. The logger never fails: an entry it can't write is skipped.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/app_error.h"
#include "core/time/clock.h"

namespace vonel {

// What the header of a new log file tells about the program and the machine.
struct AppInfo {
  std::string title = "Vonel";
  std::string version;
  std::string operatingSystem;
  std::filesystem::path currentFolder;
  std::filesystem::path installFolder;
};

class Log {
 public:
  Log(const Clock& clock, AppInfo info);
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  bool loggingOff = false;

  const std::filesystem::path& currentLogFilename();
  void overrideLogFilename(const std::filesystem::path& path);

  void logEvent(std::string_view text, bool newFile = false);
  void logToFile(const std::filesystem::path& path, std::string_view text, bool newFile = false);
  void logError(const AppError& error, std::string_view procedure, std::string_view module,
                std::string_view extra = {});
  void addDebug(std::string_view text, std::string_view procedure = {}, std::string_view module = {});
  void addAction(std::string_view text, std::string_view procedure = {}, std::string_view module = {});
  void writeActionsToLog();
  const std::string& currentAction() const { return currentAction_; }

  const AppInfo& info() const { return info_; }
  const Clock& clock() const { return clock_; }
  std::size_t queuedEntries() const { return queue_.size(); }

 private:
  struct Entry {
    std::string text;
    text::DateTime time;
  };
  static constexpr std::size_t kQueueLimit = 20;
  // The number each written line starts with (the current action shows 0);
  // readers of log.txt split its lines on it.
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
void logFailure(Log& log, const AppError& error, std::string_view procedure, std::string_view module);

// Runs one step; whatever it throws is logged through the error tail.
// Returns false when the step failed.
template <typename Step>
bool guardedStep(Log& log, std::string_view procedure, std::string_view module, Step&& step) {
  try {
    step();
    return true;
  } catch (...) {
    logFailure(log, AppError::from(std::current_exception()), procedure, module);
    return false;
  }
}

}  // namespace vonel
