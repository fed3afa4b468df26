#pragma once
// What the settings dialog edits, as plain values: the twenty accounts and
// the general options, read from the settings, checked when the user accepts
// them and written back in a fixed key order. The dialog only copies its
// boxes in and out; everything that decides lives here.
#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings/accounts.h"
#include "core/settings/data_folders.h"
#include "core/settings/settings_store.h"

namespace vonel {

struct SettingsForm {
  std::array<Account, kAccountCount> accounts;
  // The account whose boxes are on show; only its reply address is checked.
  int shownAccount = 0;

  std::string language;
  std::string messageStore;
  std::string dataFolder;
  std::string filterFolder;
  std::string spamFolder;
  // The default signature: the text of "sig.txt" in the store root.
  std::string signature;

  bool autoUpdateCheck = true;
  bool scanOnStartup = true;
  bool retrieveOnStartup = false;
  bool disableReadFromServer = false;
  bool autoDelete = false;
  bool audio = false;
  bool startMinimised = false;
  bool deleteOnRetrieve = false;
  bool showScannerFirst = true;

  // Number boxes keep what was typed; they are read numerically when checked.
  std::string seconds;
  std::string maxSize;
  std::string timeout;
  std::array<std::string, 3> ages;

  std::string bounceSubject;
  std::string bouncePrefix;
  std::string fontSize;
  std::string messageFontSize;
  std::string fontName;
};

// The form as the settings and the present folders hold it; never-written
// CHECK and STOPATLAST keys show unticked.
// The default signature's text; empty when there is none or it can't be read.
std::string defaultSignature(const std::filesystem::path& storeRoot);

SettingsForm readSettingsForm(const SettingsStore& settings, const DataFolders& folders);

// Whether a folder can hold data: it is there, or it can be made.
using FolderTest = std::function<bool(const std::filesystem::path&)>;
bool folderUsable(const std::filesystem::path& folder);

// The outcome of accepting the form: either the text that refuses it (the
// first check that failed; the dialog stays open), or the notices of the
// folders that were put right, in the order they were found.
struct FormReview {
  std::optional<std::string> refusal;
  std::vector<std::string> notices;
};

// Runs the checks in their fixed order and corrects the fields they allow to
// be corrected: a blank maximum size, one trailing separator of the store,
// and the spam, filter and data folders that aren't usable.
FormReview reviewSettingsForm(SettingsForm& form, const DataFolders& present, const FolderTest& usable = folderUsable);

// Writes a reviewed form into the settings and the folder keys, in the
// order its readers and the file's line order depend on. Nothing is saved.
void writeSettingsForm(const SettingsForm& form, SettingsStore& settings, DataFolders& folders);

// A box's text as a value can hold it: line breaks and NULs dropped.
std::string storableText(std::string_view text);

// Drops one trailing path separator, either kind.
std::string withoutTrailingSeparator(std::string path);

}  // namespace vonel
