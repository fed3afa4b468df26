#pragma once
// The one configuration store of the program: named values in the order
// they were first added, read whole from and written whole to a small text
// file of "KEY,VALUE" lines. Names ignore case. Sets are numbered lists kept
// under KEY_1, KEY_2, ... with the last index given out in KEY_INDEX.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/logging.h"
#include "core/services/prompt.h"
#include "core/settings/value.h"
#include "core/text/keyed_collection.h"

namespace vonel {

struct cSHAREDSetting {
  std::string KeyName;
  Value KeyValue;
};

class cSHAREDSettings {
 public:
  cSHAREDSettings(cSharedLogging& log, Prompt& prompt);

  // The system's own words for true and false, read as Booleans besides TRUE/FALSE.
  void setLocalBooleanWords(std::string trueWord, std::string falseWord);

  int SettingsCount() const { return static_cast<int>(settings_.size()); }
  std::string SettingNameByIndex(int index) const;

  void sSet(std::string_view name, const Value& value) { StoreSetting(name, value); }
  void StoreSetting(std::string_view name, const Value& value) { AddSetting(name, value); }

  Value sGetWD(std::string_view name, const Value& fallback) { return RetrieveWithDefault(name, fallback); }
  Value RetrieveWithDefault(std::string_view name, const Value& fallback);

  void DeleteAllSettings() { settings_.clear(); }

  Value sGet(std::string_view name, const std::optional<Value>& fallback = std::nullopt) const {
    return RetrieveSetting(name, fallback);
  }
  Value RetrieveSetting(std::string_view name, const std::optional<Value>& fallback = std::nullopt) const;

  bool IsSettingPresent(std::string_view name) const;

  bool SaveSettings(const std::filesystem::path& file);
  void LoadSettings(const std::filesystem::path& file);
  // The reading half of LoadSettings, for text already in memory.
  void LoadSettingsFromText(std::string_view bytes, const std::string& source);

  void DeleteSettingByName(std::string_view name);
  void DeleteSetting(int index);

  int AddToSet(std::string_view set, const Value& value);
  int LastIndexInSet(std::string_view set) const;
  void DeleteFromSetByValue(std::string_view set, const Value& value);
  bool ValueInSet(std::string_view set, const Value& value) const;
  int SetCount(std::string_view set) const;
  void DeleteASet(std::string_view set);

  // The whole table in its file form, as SaveSettings writes it.
  std::string fileText() const;

 private:
  void AddSetting(std::string_view name, const Value& value);
  void DeleteFromSetByIndex(const std::string& set, int index);
  std::optional<bool> booleanWord(std::string_view text) const;
  const Value* findValue(std::string_view name) const;
  bool isSparse(int last) const;
  std::vector<int> presentMembers(const std::string& set, int last) const;
  std::optional<int> findMember(const std::string& set, const Value& value) const;

  cSharedLogging& log_;
  Prompt& prompt_;
  std::string localTrue_;
  std::string localFalse_;
  text::KeyedCollection<cSHAREDSetting> settings_;
};

}  // namespace vonel
