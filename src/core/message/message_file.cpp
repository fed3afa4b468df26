#include "core/message/message_file.h"

#include "core/log/app_error.h"
#include "core/services/file_subs.h"
#include "core/text/dates.h"
#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = "modLoadSaveMsg";
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
  return files::FileExists(folder / lowerName) || files::FileExists(folder / text::upper(lowerName));
}

}  // namespace

clsMessage ReadMessage(const fs::path& path, bool headerOnly, cSharedLogging& log) {
  clsMessage message(&log);
  guardedStep(log, headerOnly ? "ReadMessageHeader" : "ReadMessageFull", kModule, [&] {
    const auto facts = files::FileFactsOf(path);
    if (!facts || facts->size == 0) return;
    std::string text = files::ReadFileStart(path, headerOnly ? kHeaderReadLimit : std::string::npos);
    if (headerOnly) text = repairHeaderBlock(std::move(text));
    message.CreateFromText(std::move(text), headerOnly);
    message.setFilename(path.string());
    if (message.ReceiveDate.empty()) message.ReceiveDate = text::formatStoreDate(facts->modified);
    const double kilobytes = text::roundHalfEven(static_cast<double>(facts->size) / 1024.0);
    message.Size = kilobytes == 0 ? 1.0f : static_cast<float>(kilobytes);
    message.FileDate = facts->modified;
  });
  return message;
}

clsMessage ReadMessageHeader(const fs::path& path, cSharedLogging& log) { return ReadMessage(path, true, log); }
clsMessage ReadMessageFull(const fs::path& path, cSharedLogging& log) { return ReadMessage(path, false, log); }

void SaveMessage(const clsMessage& message, cSharedLogging& log) {
  guardedStep(log, "SaveMessage", kModule, [&] {
    const fs::path target(message.Filename());
    const fs::path otherCase(PathInReadCase(target.string(), !message.Read));
    files::WriteTextFile(target, message.RawMessage());
    // The file under the old case goes only once the new one is whole.
    if (otherCase != target) files::EraseFile(otherCase);
    if (files::FileSize(target).value_or(0) == 0) {
      log.AddAction("Erasing zero-sized email file", "SaveMessage", kModule);
      files::EraseFile(target);
    }
  });
}

fs::path GetUnusedFilename(bool read, const fs::path& folder, std::string_view base, std::string_view extension,
                           const Clock& clock) {
  std::string ext(extension);
  if (!ext.empty() && ext.front() != '.') ext.insert(0, ".");
  std::string name(base);
  // A subject ending in a bracket loses it, and so does a name with a time stamp.
  if (const std::size_t bracket = name.rfind('('); bracket != std::string::npos) name.resize(bracket);
  text::RemoveNonAlphaNumeric(name);
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

clsMessage DuplicateSelection(const fs::path& original, std::string_view selection, cSharedLogging& log,
                              const Clock& clock) {
  const clsMessage whole = ReadMessageFull(original, log);
  clsMessage part(&log, &clock);
  part.CreateFromText(whole.Headers + "\r\n\r\n" + std::string(selection), false);
  part.setFilename(GetUnusedFilename(false, original.parent_path(), "DupeMsg", ".eml", clock).string());
  // Only the list shows the mark; the file keeps its subject line.
  if (part.Subject.find("PART:") == std::string::npos) part.Subject = "PART: " + part.Subject;
  SaveMessage(part, log);
  return part;
}

}  // namespace vonel::message
