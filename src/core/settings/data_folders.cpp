#include "core/settings/data_folders.h"

#include "core/services/file_subs.h"
#include "core/text/strings.h"

namespace vonel {

DataFolders::DataFolders(cSHAREDSettings& pathSettings, cSharedLogging& log, std::filesystem::path installFolder)
    : pathSettings_(pathSettings), log_(log), installFolder_(std::move(installFolder)) {}

std::filesystem::path DataFolders::readFolderKey(const char* key, const std::filesystem::path& fallback) {
  std::string value = pathSettings_.RetrieveSetting(key, Value("")).text();
  // A blank key would put the data in whatever folder the program runs from.
  if (text::trimView(value).empty()) value = files::TextFromPath(fallback);
  // Exactly one trailing separator goes.
  if (value.size() > 1 && (value.back() == '\\' || value.back() == '/')) value.pop_back();
  pathSettings_.StoreSetting(key, Value(value));
  return files::PathFromText(value);
}

void DataFolders::makeFolder(const std::filesystem::path& folder) {
  if (!files::MkMissingDir(folder)) log_.AddAction("Unable to create folder " + files::TextFromPath(folder));
}

void DataFolders::ReadMessageFolder() {
  MessageFolderPath = readFolderKey("MessageFolder", installFolder_ / "Messages");
  InboxFolderPath = MessageFolderPath / "Inbox";
  OutboxFolderPath = MessageFolderPath / "Outbox";
  SentFolderPath = MessageFolderPath / "Sent Items";
  DeletedFolderPath = MessageFolderPath / "Deleted";
  ArchiveFolderPath = MessageFolderPath / "Archive";
  for (const auto& folder : {MessageFolderPath, SentFolderPath, InboxFolderPath, OutboxFolderPath, DeletedFolderPath,
                             ArchiveFolderPath, MessageFolderPath / "SpamBayes",
                             MessageFolderPath / "SpamBayes" / "BayesOld"}) {
    makeFolder(folder);
  }
}

void DataFolders::ReadFilterFolder() {
  FilterFolderPath = readFolderKey("FilterFolder", installFolder_);
  makeFolder(FilterFolderPath);
}

void DataFolders::ReadDataFolder() {
  DataFolderPath = readFolderKey("DataFolder", installFolder_);
  FolderNamesIni = DataFolderPath / "foldernames.ini";
  FolderListIni = DataFolderPath / "folderlist.ini";
  makeFolder(DataFolderPath);
}

void DataFolders::SetMessageFolder(const std::filesystem::path& folder) {
  pathSettings_.StoreSetting("MessageFolder", Value(files::TextFromPath(folder)));
  ReadMessageFolder();
}

void DataFolders::SetFilterFolder(const std::filesystem::path& folder) {
  pathSettings_.StoreSetting("FilterFolder", Value(files::TextFromPath(folder)));
  ReadFilterFolder();
}

void DataFolders::SetDataFolder(const std::filesystem::path& folder) {
  pathSettings_.StoreSetting("DataFolder", Value(files::TextFromPath(folder)));
  ReadDataFolder();
}

}  // namespace vonel
