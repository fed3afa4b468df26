#pragma once
// The two lists of the store's folders in the data folder: "foldernames.ini"
// (each folder's name and its parent's, for the tree) and "folderlist.ini"
// (each folder's path under the store root, for the folder choosers). Paths in
// them use "\" and end in it, whatever the system's separator.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/log.h"
#include "core/settings/data_folders.h"

namespace vonel::store {

// Every folder below the root as a relative path in the lists' form, in
// ascending byte order.
std::vector<std::string> listStoreFolders(const std::filesystem::path& root);

// Lists every folder under the store root and writes both files.
void writeFolderLists(Log& log, const DataFolders& folders);

// The relative paths of "folderlist.ini" ("Inbox\", "Inbox\Work\"), made first if missing.
std::vector<std::string> listedMailFolders(Log& log, const DataFolders& folders);

struct FolderChoices {
  std::vector<std::string> items;  // "\Inbox\", "\Sent Items\", ...
  std::optional<std::size_t> selected;  // the Inbox when listed
};
// The folders a message can be filed into: all but the outbox.
FolderChoices folderChoices(Log& log, const DataFolders& folders);

// The folder on disk for a relative store path in the lists' form ("\\Inbox\\Work\\"),
// each name matched in any case against the folders that exist.
std::filesystem::path storeFolder(const std::filesystem::path& root, std::string_view relative);

// Makes a folder under `parent` (a store path as the chooser shows it) from
// the name's letters, digits and blanks. Gives the message to show, or
// nothing when the folder was made; the caller then regenerates the lists.
std::string makeNewFolder(Log& log, const DataFolders& folders, std::string_view parent, std::string& name);

}  // namespace vonel::store
