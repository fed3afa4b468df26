#pragma once
// The one configuration store of the program: named values in the order
// they were first added, read whole from and written whole to a small text
// file of "KEY,VALUE" lines. Names ignore case. Sets are numbered lists kept
// under KEY_1, KEY_2, ... with the last index given out in KEY_INDEX.
// Lines of the file that hold no setting stay where they were when the file
// is written again; a file that can't be read is set aside before that.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/files/edited_file.h"
#include "core/files/kept_lines.h"
#include "core/log/log.h"
#include "core/interaction/prompt.h"
#include "core/settings/value.h"
#include "core/text/keyed_collection.h"

namespace vonel {

struct Setting {
  std::string keyName;
  Value keyValue;
};

class SettingsStore {
 public:
  SettingsStore(Log& log, Prompt& prompt);

  // The system's own words for true and false, read as Booleans besides TRUE/FALSE.
  void setLocalBooleanWords(std::string trueWord, std::string falseWord);

  int settingsCount() const { return static_cast<int>(settings_.size()); }
  std::string settingNameByIndex(int index) const;

  // Adds the setting, or replaces the value of the one of that name.
  void set(std::string_view name, const Value& value) { addSetting(name, value); }

  Value getOrDefault(std::string_view name, const Value& fallback);

  void deleteAllSettings() { settings_.clear(); }

  Value get(std::string_view name, const std::optional<Value>& fallback = std::nullopt) const;

  bool isSettingPresent(std::string_view name) const;

  bool saveSettings(const std::filesystem::path& file);
  void loadSettings(const std::filesystem::path& file);
  // The reading half of loadSettings, for text already in memory.
  void loadSettingsFromText(std::string_view bytes, const std::string& source);

  void deleteSettingByName(std::string_view name);
  void deleteSetting(int index);

  int addToSet(std::string_view set, const Value& value);
  int lastIndexInSet(std::string_view set) const;
  void deleteFromSetByValue(std::string_view set, const Value& value);
  bool valueInSet(std::string_view set, const Value& value) const;
  int setCount(std::string_view set) const;
  void deleteASet(std::string_view set);

  // The whole table in its file form, as saveSettings writes it, with the
  // lines of the last file read that held no setting.
  std::string fileText() const;

 private:
  void addSetting(std::string_view name, const Value& value);
  void deleteFromSetByIndex(const std::string& set, int index);
  std::optional<bool> booleanWord(std::string_view text) const;
  const Value* findValue(std::string_view name) const;
  bool isSparse(int last) const;
  std::vector<int> presentMembers(const std::string& set, int last) const;
  std::optional<int> findMember(const std::string& set, const Value& value) const;

  Log& log_;
  Prompt& prompt_;
  std::string localTrue_;
  std::string localFalse_;
  text::KeyedCollection<Setting> settings_;
  files::KeptLines keptLines_;
  files::EditedFile source_;
};

}  // namespace vonel
