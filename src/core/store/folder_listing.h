#pragma once
// The fast scan of a folder: its message files by name with their times, from
// the directory alone, without opening any file.
#include <filesystem>
#include <string>
#include <vector>

#include "core/interaction/progress.h"
#include "core/text/dates.h"

namespace vonel::store {

struct ListedFile {
  std::string name;
  std::string key;          // the name in upper case, for look-ups that ignore case
  text::DateTime modified;  // local time, whole seconds
};

// The files whose name ends in ".eml" in any case, sorted by name ignoring
// case. A folder that can't be read gives none, and so does a walk that
// `keepGoing`, asked every so many entries, stops.
std::vector<ListedFile> listMessageFiles(const std::filesystem::path& folder, const KeepGoing& keepGoing = {});

}  // namespace vonel::store
