#pragma once
// Where the data lies: the store root and its fixed folders, the rule folder
// and the data folder, read from the paths settings ("Paths.ini") with the
// program's home as the fall-back. Each reader stores the value it found back
// into the paths settings and creates its folders.
#include <filesystem>

#include "core/log/logging.h"
#include "core/settings/settings.h"

namespace vonel {

class DataFolders {
 public:
  DataFolders(cSHAREDSettings& pathSettings, cSharedLogging& log, std::filesystem::path installFolder);

  void ReadMessageFolder();
  void ReadFilterFolder();
  void ReadDataFolder();
  void SetMessageFolder(const std::filesystem::path& folder);
  void SetFilterFolder(const std::filesystem::path& folder);
  void SetDataFolder(const std::filesystem::path& folder);

  const std::filesystem::path& installFolder() const { return installFolder_; }

  std::filesystem::path MessageFolderPath;
  std::filesystem::path InboxFolderPath;
  std::filesystem::path OutboxFolderPath;
  std::filesystem::path SentFolderPath;
  std::filesystem::path DeletedFolderPath;
  std::filesystem::path ArchiveFolderPath;
  std::filesystem::path FilterFolderPath;
  std::filesystem::path DataFolderPath;
  std::filesystem::path FolderNamesIni;
  std::filesystem::path FolderListIni;

 private:
  std::filesystem::path readFolderKey(const char* key, const std::filesystem::path& fallback);
  void makeFolder(const std::filesystem::path& folder);

  cSHAREDSettings& pathSettings_;
  cSharedLogging& log_;
  std::filesystem::path installFolder_;
};

}  // namespace vonel
