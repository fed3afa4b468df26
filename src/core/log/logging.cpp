#include "core/log/logging.h"

#include <cstdio>

#include "core/services/file_subs.h"

namespace vonel {
namespace {

std::string withPlace(std::string text, std::string_view procedure, std::string_view module) {
  if (!procedure.empty()) text += " in " + std::string(procedure);
  if (!module.empty()) text += " of module " + std::string(module);
  return text;
}

}  // namespace

cSharedLogging::cSharedLogging(const Clock& clock, AppInfo info) : clock_(clock), info_(std::move(info)) {}

cSharedLogging::~cSharedLogging() { WriteActionsToLog(); }

const std::filesystem::path& cSharedLogging::CurrentLogFilename() {
  if (logFile_.empty()) logFile_ = info_.installFolder / "log.txt";
  return logFile_;
}

void cSharedLogging::OverrideLogFilename(const std::filesystem::path& path) {
  const auto folder = path.parent_path();
  if (folder.empty() || !files::FolderExists(folder)) {
    logFile_ = info_.installFolder / path.filename();
  } else {
    logFile_ = path;
  }
}

std::string cSharedLogging::formatLine(int handle, const text::DateTime& time, std::string_view text) const {
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, " %02d:%02d:%02d, ", time.hour, time.minute, time.second);
  std::string line = std::to_string(handle);
  line += stamp;
  line += text;
  return line;
}

void cSharedLogging::LogEvent(std::string_view text, bool newFile) {
  if (NOLOGGING) return;
  LogToFile(CurrentLogFilename(), text, newFile);
}

void cSharedLogging::LogToFile(const std::filesystem::path& path, std::string_view text, bool newFile) {
  if (NOLOGGING) return;
  try {
    if (newFile) files::EraseFile(path);
    std::string lines;
    const auto now = clock_.now();
    if (!files::FileExists(path)) {
      const std::string header[] = {
          "Log file created ",
          "Operating System: " + info_.operatingSystem,
          "App: " + info_.title,
          "Version: " + info_.version,
          "Curdir: " + info_.currentFolder.string(),
          "App path: " + info_.installFolder.string(),
      };
      for (const auto& line : header) lines += formatLine(kHandleNumber, now, line) + "\r\n";
    }
    lines += formatLine(kHandleNumber, now, text) + "\r\n";
    files::AppendToFile(path, lines);
  } catch (...) {
    // A log line that can't be written is skipped; logging never fails.
  }
}

void cSharedLogging::LogError(const AppError& error, std::string_view procedure, std::string_view module,
                              std::string_view extra) {
  std::string text(extra);
  text += "Error " + std::to_string(error.number()) + " (" + error.description() + ") in ";
  text += procedure;
  text += " of ";
  text += module;
  LogEvent(text, false);
  WriteActionsToLog();
}

void cSharedLogging::queue(std::string text) {
  queue_.push_back(Entry{std::move(text), clock_.now()});
  if (queue_.size() > kQueueLimit) WriteActionsToLog();
}

void cSharedLogging::AddDebug(std::string_view text, std::string_view procedure, std::string_view module) {
  if (NOLOGGING) return;
  queue(withPlace("DBG: " + std::string(text), procedure, module));
}

void cSharedLogging::AddAction(std::string_view text, std::string_view procedure, std::string_view module) {
  if (NOLOGGING) return;
  std::string line = withPlace(std::string(text), procedure, module);
  currentAction_ = formatLine(0, clock_.now(), line);
  queue(std::move(line));
}

void cSharedLogging::WriteActionsToLog() {
  if (queue_.empty()) return;
  std::string lines;
  for (const auto& entry : queue_) lines += formatLine(kHandleNumber, entry.time, entry.text) + "\r\n";
  try {
    files::AppendToFile(CurrentLogFilename(), lines);
  } catch (...) {
    // The entries are dropped with the file that can't be opened.
  }
  queue_.clear();
}

void logFailure(cSharedLogging& log, const AppError& error, std::string_view procedure, std::string_view module) {
  log.AddAction(error.description(), std::string(procedure) + " (" + std::to_string(error.number()) + ")", module);
}

}  // namespace vonel
