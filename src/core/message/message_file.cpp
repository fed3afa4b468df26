#include "core/message/message_file.h"

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/app_error.h"
#include "core/log/log_places.h"
#include "core/text/dates.h"
#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kMessageFilesModule;
constexpr std::size_t kHeaderReadLimit = 10000;

// A header block cut off by the read limit, or without a blank line, made whole.
std::string repairHeaderBlock(std::string text) {
  const std::size_t blankLine = text.find("\r\n\r\n");
  if (blankLine == std::string::npos) {
    if (text.find("\r\n") == std::string::npos) text = text::replaceAll(text, "\n", "\r\n");
    text += "\r\n\r\n";
    return text;
  }
  // The cut lies before the blank line's first CR: one through it would leave
  // that CR on the last header's value (the tags, in a stored message).
  text.resize(blankLine);
  text += "\r\n\r\n ";
  return text;
}

bool nameTaken(const fs::path& folder, const std::string& lowerName) {
  return files::fileExists(folder / lowerName) || files::fileExists(folder / text::upper(lowerName));
}

Message readMessage(const fs::path& path, bool headerOnly, Log& log) {
  Message message(&log);
  guardedStep(log, headerOnly ? "ReadMessageHeader" : log_places::kReadMessageFull, kModule, [&] {
    const auto facts = files::fileFactsOf(path);
    if (!facts || facts->size == 0) return;
    std::string text = files::readFileStart(path, headerOnly ? kHeaderReadLimit : std::string::npos);
    if (headerOnly) text = repairHeaderBlock(std::move(text));
    message.createFromText(std::move(text), headerOnly);
    message.setFilename(path.string());
    if (message.receiveDate.empty()) message.receiveDate = text::formatStoreDate(facts->modified);
    const double kilobytes = text::roundHalfEven(static_cast<double>(facts->size) / 1024.0);
    message.size = kilobytes == 0 ? 1.0f : static_cast<float>(kilobytes);
    message.fileDate = facts->modified;
  });
  return message;
}

}  // namespace

Message readMessageHeader(const fs::path& path, Log& log) { return readMessage(path, true, log); }
Message readMessageFull(const fs::path& path, Log& log) { return readMessage(path, false, log); }

void saveMessage(const Message& message, Log& log) {
  files::WriteBatch lone;
  saveMessage(message, log, lone);
}

void saveMessage(const Message& message, Log& log, files::WriteBatch& writes) {
  guardedStep(log, log_places::kSaveMessage, kModule, [&] {
    const fs::path target(message.filename());
    const fs::path otherCase(pathInReadCase(target.string(), !message.read));
    files::writeTextFile(target, message.rawMessage(), writes);
    // The file under the old case goes only once the new one is whole.
    if (otherCase != target) files::eraseFile(otherCase);
    if (files::fileSize(target).value_or(0) == 0) {
      log.addAction("Erasing zero-sized email file", log_places::kSaveMessage, kModule);
      files::eraseFile(target);
    }
  });
}

fs::path getUnusedFilename(bool read, const fs::path& folder, std::string_view base, std::string_view extension,
                           const Clock& clock) {
  std::string ext;
  if (!extension.empty() && extension.front() != '.') ext = '.';
  ext += extension;
  std::string name(base);
  // A subject ending in a bracket loses it, and so does a name with a time stamp.
  if (const std::size_t bracket = name.rfind('('); bracket != std::string::npos) name.resize(bracket);
  text::removeNonAlphaNumeric(name);
  if (name.empty()) name = "message";
  // The first "MM" follows the hour and so means minutes; the second is the month.
  name += text::formatDate(clock.now(), " (HHMMSS-YYMMDD) ");
  std::string counter;
  std::string candidate;
  for (;;) {
    candidate = text::lower(text::trim(name + counter) + ext);
    if (!nameTaken(folder, candidate)) break;
    counter = counter.empty() ? "1" : std::to_string(std::stol(counter) + 1);
  }
  return folder / (read ? candidate : text::upper(candidate));
}

Message duplicateSelection(const fs::path& original, std::string_view selection, Log& log,
                              const Clock& clock) {
  const Message whole = readMessageFull(original, log);
  Message part(&log, &clock);
  part.createFromText(whole.headers + "\r\n\r\n" + std::string(selection), false);
  part.setFilename(getUnusedFilename(false, original.parent_path(), "DupeMsg", ".eml", clock).string());
  // Only the list shows the mark; the file keeps its subject line.
  if (part.subject.find("PART:") == std::string::npos) part.subject = "PART: " + part.subject;
  saveMessage(part, log);
  return part;
}

}  // namespace vonel::message
