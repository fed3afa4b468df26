#include "core/settings/data_folders.h"

#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/text/strings.h"

namespace vonel {

DataFolders::DataFolders(SettingsStore& pathSettings, Log& log, std::filesystem::path installFolder)
    : pathSettings_(pathSettings), log_(log), installFolder_(std::move(installFolder)) {}

std::filesystem::path DataFolders::readFolderKey(const char* key, const std::filesystem::path& fallback) {
  std::string value = pathSettings_.get(key, Value("")).text();
  // A blank key would put the data in whatever folder the program runs from.
  if (text::trimView(value).empty()) value = files::textFromPath(fallback);
  // Exactly one trailing separator goes.
  if (value.size() > 1 && (value.back() == '\\' || value.back() == '/')) value.pop_back();
  pathSettings_.set(key, Value(value));
  return files::pathFromText(value);
}

void DataFolders::makeFolder(const std::filesystem::path& folder) {
  if (!files::ensureFolder(folder)) log_.addAction("Unable to create folder " + files::textFromPath(folder));
}

void DataFolders::readMessageFolder() {
  messageFolderPath = readFolderKey("MessageFolder", installFolder_ / "Messages");
  inboxFolderPath = messageFolderPath / "Inbox";
  outboxFolderPath = messageFolderPath / "Outbox";
  sentFolderPath = messageFolderPath / "Sent Items";
  deletedFolderPath = messageFolderPath / "Deleted";
  archiveFolderPath = messageFolderPath / "Archive";
  for (const auto& folder : {messageFolderPath, sentFolderPath, inboxFolderPath, outboxFolderPath, deletedFolderPath,
                             archiveFolderPath, messageFolderPath / "SpamBayes",
                             messageFolderPath / "SpamBayes" / "BayesOld"}) {
    makeFolder(folder);
  }
}

void DataFolders::readFilterFolder() {
  filterFolderPath = readFolderKey("FilterFolder", installFolder_);
  makeFolder(filterFolderPath);
}

void DataFolders::readDataFolder() {
  dataFolderPath = readFolderKey("DataFolder", installFolder_);
  folderNamesFile = dataFolderPath / "foldernames.ini";
  folderListFile = dataFolderPath / "folderlist.ini";
  makeFolder(dataFolderPath);
}

void DataFolders::setMessageFolder(const std::filesystem::path& folder) {
  pathSettings_.set("MessageFolder", Value(files::textFromPath(folder)));
  readMessageFolder();
}

void DataFolders::setFilterFolder(const std::filesystem::path& folder) {
  pathSettings_.set("FilterFolder", Value(files::textFromPath(folder)));
  readFilterFolder();
}

void DataFolders::setDataFolder(const std::filesystem::path& folder) {
  pathSettings_.set("DataFolder", Value(files::textFromPath(folder)));
  readDataFolder();
}

}  // namespace vonel
