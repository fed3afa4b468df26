#include "core/log/log.h"

#include <cstdio>
#include <system_error>

#include "core/log/append_file.h"

namespace vonel {
namespace {

namespace fs = std::filesystem;

std::string withPlace(std::string text, std::string_view procedure, std::string_view module) {
  if (!procedure.empty()) text += " in " + std::string(procedure);
  if (!module.empty()) text += " of module " + std::string(module);
  return text;
}

}  // namespace

Log::Log(const Clock& clock, AppInfo info) : clock_(clock), info_(std::move(info)) {}

Log::~Log() { writeActionsToLog(); }

const std::filesystem::path& Log::currentLogFilename() {
  if (logFile_.empty()) logFile_ = info_.installFolder / "log.txt";
  return logFile_;
}

void Log::overrideLogFilename(const std::filesystem::path& path) {
  const auto folder = path.parent_path();
  std::error_code ec;
  if (folder.empty() || !fs::is_directory(folder, ec)) {
    logFile_ = info_.installFolder / path.filename();
  } else {
    logFile_ = path;
  }
}

std::string Log::formatLine(int handle, const text::DateTime& time, std::string_view text) const {
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, " %02d:%02d:%02d, ", time.hour, time.minute, time.second);
  std::string line = std::to_string(handle);
  line += stamp;
  line += text;
  return line;
}

void Log::logEvent(std::string_view text, bool newFile) {
  if (loggingOff) return;
  logToFile(currentLogFilename(), text, newFile);
}

void Log::logToFile(const std::filesystem::path& path, std::string_view text, bool newFile) {
  if (loggingOff) return;
  try {
    std::error_code ec;
    if (newFile) fs::remove(path, ec);
    std::string lines;
    const auto now = clock_.now();
    if (!fs::is_regular_file(path, ec)) {
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
    appendToFile(path, lines);
  } catch (...) {
    // A log line that can't be written is skipped; logging never fails.
  }
}

void Log::logError(const AppError& error, std::string_view procedure, std::string_view module,
                              std::string_view extra) {
  std::string text(extra);
  text += "Error " + std::to_string(error.number()) + " (" + error.description() + ") in ";
  text += procedure;
  text += " of ";
  text += module;
  logEvent(text, false);
  writeActionsToLog();
}

void Log::queue(std::string text) {
  queue_.push_back(Entry{std::move(text), clock_.now()});
  if (queue_.size() > kQueueLimit) writeActionsToLog();
}

void Log::addDebug(std::string_view text, std::string_view procedure, std::string_view module) {
  if (loggingOff) return;
  queue(withPlace("DBG: " + std::string(text), procedure, module));
}

void Log::addAction(std::string_view text, std::string_view procedure, std::string_view module) {
  if (loggingOff) return;
  std::string line = withPlace(std::string(text), procedure, module);
  currentAction_ = formatLine(0, clock_.now(), line);
  queue(std::move(line));
}

void Log::writeActionsToLog() {
  if (queue_.empty()) return;
  std::string lines;
  for (const auto& entry : queue_) lines += formatLine(kHandleNumber, entry.time, entry.text) + "\r\n";
  try {
    appendToFile(currentLogFilename(), lines);
  } catch (...) {
    // The entries are dropped with the file that can't be opened.
  }
  queue_.clear();
}

void logFailure(Log& log, const AppError& error, std::string_view procedure, std::string_view module) {
  log.addAction(error.description(), std::string(procedure) + " (" + std::to_string(error.number()) + ")", module);
}

}  // namespace vonel
