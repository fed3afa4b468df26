#include "core/store/screened_folder.h"

#include <algorithm>

#include "core/files/any_case.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/message/message_file.h"
#include "core/rules/status_word.h"
#include "core/store/folder_lists.h"
#include "core/store/received_mail.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr double kDefaultDays = 30;

fs::path screenedFolder(const AppContext& context) {
  return files::resolveAnyCase(context.folders.messageFolderPath, kScreenedFolderName);
}

// The header block as the server sent it, without the blank line that ends it.
std::string headerBlock(const message::Message& message) {
  // A header without a blank line parses to no header block: then it is all there is.
  std::string block = message.headers.empty() ? message.rawMessage() : message.headers;
  while (!block.empty() && (block.back() == '\r' || block.back() == '\n')) block.pop_back();
  return block;
}

}  // namespace

std::string screenedVerdict(const message::Message& message) {
  std::string verdict = rules::statusWord(message) + "; score " + text::plainText(message.bayes);
  std::string reason = text::trim(text::replaceAll(message.filterReason, "\r\n", " "));
  std::replace_if(reason.begin(), reason.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  if (!reason.empty()) verdict += "; " + reason;
  return verdict;
}

fs::path keepScreenedHeader(AppContext& context, const message::Message& message) {
  const fs::path folder = screenedFolder(context);
  if (!files::folderExists(folder)) {
    if (!files::ensureFolder(folder)) {
      throw AppError(error_number::kPathNotFound, "Path not found: " + files::textFromPath(folder));
    }
    writeFolderLists(context.log, context.folders);
  }
  message::Message entry(&context.log, &context.clock);
  entry.createFromText(headerBlock(message) + "\r\nX-Screened: " + screenedVerdict(message) + "\r\n\r\n", true);
  entry.read = true;
  const fs::path file =
      message::getUnusedFilename(entry.read, folder, fileBaseName(message.subject), ".eml", context.clock);
  entry.setFilename(file.string());
  files::writeTextFile(file, entry.rawMessage(), context.writes);
  return file;
}

int removeOldScreened(AppContext& context) {
  const double days = context.settings.get("ScreenedDays", Value(kDefaultDays)).numberOr(kDefaultDays);
  const fs::path folder = screenedFolder(context);
  if (days <= 0 || !files::folderExists(folder)) return 0;
  const double oldest = context.clock.now().serial() - days;
  int removed = 0;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (!text::equalsNoCase(it->path().extension().string(), ".eml")) continue;
    const auto written = files::fileDate(it->path());
    if (written && written->serial() < oldest && files::eraseFile(it->path())) ++removed;
  }
  if (removed > 0) {
    context.log.addAction("Removed " + std::to_string(removed) + " screened header(s) older than " +
                          text::plainText(days) + " days");
  }
  return removed;
}

}  // namespace vonel::store
