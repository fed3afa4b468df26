#include "app/startup_housekeeping.h"

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/text/strings.h"

namespace vonel {

void moveStoreRootToPathsFile(AppContext& context) {
  const std::string oldFolder = context.settings.get("MessageFolder", Value("---")).text();
  const std::string pathsFolder = context.pathSettings.get("MessageFolder", Value("---")).text();
  if (oldFolder == "---" || pathsFolder != "---") return;
  context.pathSettings.set("MessageFolder", Value(oldFolder));
  for (const char* key : {"MessageFolder", "DataFolder", "FilterFolder", "SpamFolder", "ImportMailStore"}) {
    context.settings.deleteSettingByName(key);
  }
  context.settings.saveSettings(context.settingsFile());
  context.pathSettings.saveSettings(context.pathsFile());
}

void moveSignatureToFile(AppContext& context) {
  const auto signatureFile = context.folders.dataFolderPath / "Sigs" / "Sig1.txt";
  if (files::fileExists(signatureFile)) return;
  const std::string signature = context.settings.get("SIGNATURE", Value("")).text();
  files::writeTextFile(signatureFile, text::replaceAll(signature, "\x01", "\r\n"));
  context.settings.saveSettings(context.settingsFile());
  context.settings.deleteSettingByName("Signature");
}

void removeUnfinishedDownloads(const AppContext& context) {
  std::error_code ec;
  for (std::filesystem::directory_iterator it(context.folders.messageFolderPath, ec), end; !ec && it != end;
       it.increment(ec)) {
    const std::string name = it->path().filename().string();
    const bool unfinished = name.starts_with("mail_") && name.ends_with(".tmp");
    const bool viewedSource = text::startsWithNoCase(name, "temp") && name.size() > 4 &&
                              text::equalsNoCase(text::right(name, 4), ".eml");
    if ((unfinished || viewedSource) && it->is_regular_file()) files::eraseFile(it->path());
  }
}

}  // namespace vonel
