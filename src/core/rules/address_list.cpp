#include "core/rules/address_list.h"

#include "core/message/address.h"
#include "core/services/file_subs.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {
constexpr std::string_view kModule = "frmFilters";

std::optional<std::filesystem::file_time_type> modifiedTime(const std::filesystem::path& file) {
  std::error_code error;
  const auto time = std::filesystem::last_write_time(file, error);
  if (error) return std::nullopt;
  return time;
}
}  // namespace

std::string DomainOf(std::string_view address) {
  const std::string email = message::ExtractEmail(address);
  const std::size_t at = email.find('@');
  if (at == std::string::npos) return std::string(address);
  return text::trim(std::string_view(email).substr(at + 1));
}

void AddressList::Refresh() {
  const auto time = modifiedTime(file_);
  if (stamped_ && time == stamp_) return;
  stamped_ = true;
  stamp_ = time;
  load();
}

// Lines that are blank once trimmed are skipped; an entry is kept as read.
// A repeated entry ends the read there, as the list never held duplicates.
void AddressList::load() {
  entries_.clear();
  std::string text;
  if (!files::FileExists(file_)) return;
  if (!guardedStep(log_, "LoadList", kModule, [&] { text = files::LoadTextFile(file_); })) return;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = text::nextLine(rest);
    if (text::trimView(line).empty()) continue;
    if (!entries_.add(std::string(line), true)) {
      log_.AddAction("\"" + std::string(line) + "\" is listed twice in " + file_.filename().string() +
                         "; the entries after it were not read",
                     "LoadList", kModule);
      return;
    }
  }
}

void AddressList::save() {
  guardedStep(log_, "SaveList", kModule, [&] {
    if (entries_.empty()) {
      files::EraseFile(file_);
      return;
    }
    std::string text;
    for (const auto& entry : entries_) text.append(entry.key).append("\r\n");
    files::WriteTextFile(file_, text);
  });
  stamp_ = modifiedTime(file_);
}

void AddressList::Add(std::string entry) {
  Refresh();
  if (entries_.add(std::move(entry), true)) save();
}

void AddressList::Remove(std::string_view entry) {
  Refresh();
  if (entries_.remove(entry)) save();
}

}  // namespace vonel::rules
