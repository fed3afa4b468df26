#include "core/rules/address_list.h"

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/log/log_places.h"
#include "core/message/address.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {
constexpr std::string_view kModule = log_places::kRulesModule;

std::optional<std::filesystem::file_time_type> modifiedTime(const std::filesystem::path& file) {
  std::error_code error;
  const auto time = std::filesystem::last_write_time(file, error);
  if (error) return std::nullopt;
  return time;
}
}  // namespace

std::string domainOf(std::string_view address) {
  const std::string email = message::extractEmail(address);
  const std::size_t at = email.find('@');
  if (at == std::string::npos) return std::string(address);
  return text::trim(std::string_view(email).substr(at + 1));
}

void AddressList::refresh() {
  const auto time = modifiedTime(file_);
  if (stamped_ && time == stamp_) return;
  stamped_ = true;
  stamp_ = time;
  load();
}

// Lines that are blank once trimmed are no entries; an entry is kept as read.
// A repeated entry ends the read there, as the list never held duplicates;
// it and the lines after it stay at the end of the file.
void AddressList::load() {
  entries_.clear();
  keptLines_.clear();
  const std::optional<std::string> text = source_.read(file_);
  if (!text) return;
  std::string_view rest = *text;
  while (!rest.empty()) {
    const std::string_view line = text::nextLine(rest);
    if (text::trimView(line).empty()) {
      keptLines_.keep(line);
      continue;
    }
    if (!entries_.add(std::string(line), true)) {
      log_.addAction("\"" + std::string(line) + "\" is listed twice in " + file_.filename().string() +
                         "; the entries after it were not read",
                     log_places::kLoadList, kModule);
      keptLines_.keepAtEnd(line);
      while (!rest.empty()) keptLines_.keepAtEnd(text::nextLine(rest));
      return;
    }
    keptLines_.understood(line);
  }
}

// An emptied list erases its file, unless the file holds lines to keep.
void AddressList::save() {
  if (!source_.mayReplace(file_)) return;
  guardedStep(log_, log_places::kSaveList, kModule, [&] {
    if (entries_.empty() && keptLines_.empty()) {
      files::eraseFile(file_);
      return;
    }
    std::string text;
    files::KeptLines::Writer writer(&keptLines_, text);
    for (const auto& entry : entries_) writer.line(entry.key, entry.key);
    writer.finish();
    files::writeTextFile(file_, text);
  });
  stamp_ = modifiedTime(file_);
}

void AddressList::add(std::string entry) {
  refresh();
  if (entries_.add(std::move(entry), true)) save();
}

void AddressList::remove(std::string_view entry) {
  refresh();
  if (entries_.remove(entry)) save();
}

}  // namespace vonel::rules
