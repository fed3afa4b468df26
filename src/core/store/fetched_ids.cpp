#include "core/store/fetched_ids.h"

#include <algorithm>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/log/app_error.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// The lines of a file, without the empty ones; none when it can't be read.
std::vector<std::string> fileLines(const fs::path& file) {
  if (!files::fileExists(file)) return {};
  std::vector<std::string> lines;
  try {
    for (std::string& line : text::split(files::loadTextFile(file), kLineEnd)) {
      if (!line.empty()) lines.push_back(std::move(line));
    }
  } catch (const AppError&) {
    return {};
  }
  return lines;
}

}  // namespace

FetchedIds::FetchedIds(const fs::path& dataFolder, int account, files::WriteBatch& writes)
    : writes_(writes),
      file_(dataFolder / ("Fetched" + std::to_string(account) + ".txt")),
      pendingFile_(dataFolder / ("Fetching" + std::to_string(account) + ".txt")) {
  for (std::string& id : fileLines(file_)) {
    if (set_.insert(id).second) ids_.push_back(std::move(id));
  }
  recoverCutOffStore();
}

void FetchedIds::recoverCutOffStore() {
  const std::vector<std::string> pending = fileLines(pendingFile_);
  if (pending.size() == 2 && !set_.contains(pending[0]) && files::fileExists(files::pathFromText(pending[1]))) {
    add(pending[0]);
    save();
  }
  files::eraseFile(pendingFile_);
}

void FetchedIds::keepOnly(const std::unordered_set<std::string>& listed) {
  const auto gone = std::remove_if(ids_.begin(), ids_.end(), [&](const std::string& id) { return !listed.contains(id); });
  if (gone == ids_.end()) return;
  for (auto it = gone; it != ids_.end(); ++it) set_.erase(*it);
  ids_.erase(gone, ids_.end());
  save();
}

void FetchedIds::beginStoring(const std::string& id, const fs::path& file) {
  pendingId_ = id;
  // Not waited for: a killed program leaves it to the system all the same,
  // and a power cut that loses it can only get the message stored twice.
  files::writeTextFile(pendingFile_, id + std::string(kLineEnd) + files::textFromPath(file) + std::string(kLineEnd),
                       files::Durability::Unsynced);
}

void FetchedIds::finishStoring() {
  if (pendingId_.empty()) return;
  if (!set_.contains(pendingId_)) {
    add(pendingId_);
    save();
  }
  pendingId_.clear();
  // Left behind, it would only name an id the file holds already.
  files::eraseFile(pendingFile_);
}

void FetchedIds::add(const std::string& id) {
  set_.insert(id);
  ids_.push_back(id);
}

void FetchedIds::save() const {
  std::string text;
  for (const std::string& id : ids_) text.append(id).append(kLineEnd);
  files::writeTextFile(file_, text, writes_);
}

}  // namespace vonel::store
