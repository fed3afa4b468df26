#include "core/store/folder_lists.h"

#include <algorithm>

#include "core/files/any_case.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/log_places.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kStoreModule;

// Relative paths of every folder below the root, "\" after each piece.
std::vector<std::string> listFolders(const fs::path& root) {
  std::vector<std::string> paths;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, ec), end;
       !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (!it->is_directory(typeError)) continue;
    std::string relative;
    for (const auto& piece : it->path().lexically_relative(root)) relative += piece.string() + "\\";
    paths.push_back(std::move(relative));
  }
  return paths;
}

}  // namespace

std::vector<std::string> listStoreFolders(const fs::path& root) {
  auto paths = listFolders(root);
  // Ascending by byte, not by locale: both folder lists on disk and the
  // folder tree built from them are in this order.
  std::sort(paths.begin(), paths.end());
  return paths;
}

namespace {

std::string folderNamesText(const std::vector<std::string>& paths) {
  std::string out;
  for (const std::string& path : paths) {
    auto pieces = text::split(path, "\\");
    if (pieces.size() == 2) {
      out += pieces[0] + "\r\nFolders\r\n";
    } else {
      // Only the last two names are kept, so same-named folders under different parents look alike.
      out += pieces[pieces.size() - 2] + "\r\n" + pieces[pieces.size() - 3] + "\r\n";
    }
  }
  return out;
}

}  // namespace

void writeFolderLists(Log& log, const DataFolders& folders) {
  guardedStep(log, log_places::kGenerateFolderIni, kModule, [&] {
    const auto paths = listStoreFolders(folders.messageFolderPath);
    std::string list;
    for (const std::string& path : paths) list += path + "\r\n";
    files::writeTextFile(folders.folderNamesFile, folderNamesText(paths));
    files::writeTextFile(folders.folderListFile, list);
  });
}

std::vector<std::string> listedMailFolders(Log& log, const DataFolders& folders) {
  std::vector<std::string> result;
  guardedStep(log, log_places::kFillMailFolders, kModule, [&] {
    if (!files::fileExists(folders.folderListFile)) writeFolderLists(log, folders);
    for (std::string& line : text::split(files::loadTextFile(folders.folderListFile), "\r\n")) {
      if (!text::trim(line).empty()) result.push_back(std::move(line));
    }
  });
  return result;
}

FolderChoices folderChoices(Log& log, const DataFolders& folders) {
  FolderChoices choices;
  for (const std::string& folder : listedMailFolders(log, folders)) {
    if (folder == "Outbox\\") continue;
    choices.items.push_back("\\" + folder);
    if (choices.items.back() == "\\Inbox\\") choices.selected = choices.items.size() - 1;
  }
  return choices;
}

fs::path storeFolder(const fs::path& root, std::string_view relative) {
  fs::path folder = root;
  for (const std::string& piece : text::split(relative, "\\")) {
    if (!piece.empty()) folder = files::resolveAnyCase(folder, piece);
  }
  return folder;
}

std::string makeNewFolder(Log& log, const DataFolders& folders, std::string_view parent, std::string& name) {
  text::removeNonAlphaNumeric(name);
  if (name.empty()) return "Please enter a folder name";
  const fs::path parentFolder = storeFolder(folders.messageFolderPath, parent);
  if (files::findAnyCase(parentFolder, name)) return "There's already a folder called " + name + ".  Please try again.";
  if (!files::ensureFolder(parentFolder / name)) {
    log.addAction("Can't make folder " + (parentFolder / name).string(), log_places::kMakeNewFolder, kModule);
    return "Can't make the folder " + (parentFolder / name).string() + ".";
  }
  return {};
}

}  // namespace vonel::store
