#pragma once
// Where the data lies: the store root and its fixed folders, the rule folder
// and the data folder, read from the paths settings ("Paths.ini") with the
// program's home as the fall-back. Each reader stores the value it found back
// into the paths settings and creates its folders.
#include <filesystem>

#include "core/log/log.h"
#include "core/settings/settings_store.h"

namespace vonel {

class DataFolders {
 public:
  DataFolders(SettingsStore& pathSettings, Log& log, std::filesystem::path installFolder);

  void readMessageFolder();
  void readFilterFolder();
  void readDataFolder();
  void setMessageFolder(const std::filesystem::path& folder);
  void setFilterFolder(const std::filesystem::path& folder);
  void setDataFolder(const std::filesystem::path& folder);

  const std::filesystem::path& installFolder() const { return installFolder_; }

  std::filesystem::path messageFolderPath;
  std::filesystem::path inboxFolderPath;
  std::filesystem::path outboxFolderPath;
  std::filesystem::path sentFolderPath;
  std::filesystem::path deletedFolderPath;
  std::filesystem::path archiveFolderPath;
  std::filesystem::path filterFolderPath;
  std::filesystem::path dataFolderPath;
  std::filesystem::path folderNamesFile;
  std::filesystem::path folderListFile;

 private:
  std::filesystem::path readFolderKey(const char* key, const std::filesystem::path& fallback);
  void makeFolder(const std::filesystem::path& folder);

  SettingsStore& pathSettings_;
  Log& log_;
  std::filesystem::path installFolder_;
};

}  // namespace vonel
