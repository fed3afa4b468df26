#include "core/settings/settings.h"

#include <algorithm>
#include <limits>

#include "core/log/app_error.h"
#include "core/log/show_error.h"
#include "core/services/file_subs.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr const char* kModule = "cSHAREDSettings";

std::string withoutCommas(std::string_view name) {
  std::string out(name);
  out.erase(std::remove(out.begin(), out.end(), ','), out.end());
  return out;
}

std::string memberName(const std::string& set, int index) { return set + "_" + std::to_string(index); }
std::string indexName(const std::string& set) { return set + "_INDEX"; }

// Set members compare trimmed, without trailing nulls, ignoring case.
std::string setComparable(const Value& value) {
  std::string text = value.text();
  while (!text.empty() && text.back() == '\0') text.pop_back();
  return text::upper(text::trimView(text));
}

}  // namespace

cSHAREDSettings::cSHAREDSettings(cSharedLogging& log, Prompt& prompt) : log_(log), prompt_(prompt) {}

void cSHAREDSettings::setLocalBooleanWords(std::string trueWord, std::string falseWord) {
  localTrue_ = text::upper(text::trimView(trueWord));
  localFalse_ = text::upper(text::trimView(falseWord));
}

std::optional<bool> cSHAREDSettings::booleanWord(std::string_view value) const {
  const std::string_view trimmed = text::trimView(value);
  // Most values are longer than any Boolean word; don't copy those.
  if (trimmed.size() > std::max({std::size_t{5}, localTrue_.size(), localFalse_.size()})) return std::nullopt;
  const std::string word = text::upper(trimmed);
  if (word == "FALSE" || (!localFalse_.empty() && word == localFalse_)) return false;
  if (word == "TRUE" || (!localTrue_.empty() && word == localTrue_)) return true;
  return std::nullopt;
}

const Value* cSHAREDSettings::findValue(std::string_view name) const {
  const auto* setting = settings_.find(withoutCommas(name));
  return setting ? &setting->KeyValue : nullptr;
}

std::string cSHAREDSettings::SettingNameByIndex(int index) const {
  if (index < 1 || index > SettingsCount()) return {};
  return settings_.at(static_cast<std::size_t>(index - 1)).value.KeyName;
}

void cSHAREDSettings::AddSetting(std::string_view name, const Value& value) {
  const Value stored = value.kind() == Value::Kind::Boolean ? Value(value.flag() ? -1 : 0) : value;
  std::string key = withoutCommas(name);
  auto [setting, added] = settings_.emplace(key, cSHAREDSetting{key, stored});
  if (!added) setting->KeyValue = stored;
}

Value cSHAREDSettings::RetrieveSetting(std::string_view name, const std::optional<Value>& fallback) const {
  const Value* stored = findValue(name);
  if (!stored) return fallback.value_or(Value());
  if (stored->isText()) {
    if (const auto word = booleanWord(stored->text())) return Value(*word);
  }
  return *stored;
}

Value cSHAREDSettings::RetrieveWithDefault(std::string_view name, const Value& fallback) {
  const Value result = RetrieveSetting(name);
  // An empty text counts as empty, like a missing key.
  if (result.isEmpty() || (result.isText() && result.text().empty())) return fallback;
  try {
    return result.number() == 0 ? fallback : result;
  } catch (const AppError& e) {
    logFailure(log_, e, "RetrieveWithDefault", kModule);
    return result;
  }
}

bool cSHAREDSettings::IsSettingPresent(std::string_view name) const { return findValue(name) != nullptr; }

void cSHAREDSettings::DeleteSettingByName(std::string_view name) { settings_.remove(withoutCommas(name)); }

void cSHAREDSettings::DeleteSetting(int index) {
  if (index < 1 || index > SettingsCount()) {
    logFailure(log_, AppError(error_number::kInvalidCall, "Invalid procedure call or argument"), "DeleteSetting",
               kModule);
    return;
  }
  settings_.removeAt(static_cast<std::size_t>(index - 1));
}

std::string cSHAREDSettings::fileText() const {
  std::string out;
  for (const auto& entry : settings_) {
    out += text::upper(entry.value.KeyName);
    out += ',';
    out += entry.value.KeyValue.fileForm();
    out += "\r\n";
  }
  return out;
}

bool cSHAREDSettings::SaveSettings(const std::filesystem::path& file) {
  bool madeWritable = false;
  for (;;) {
    if (files::IsReadOnly(file) && !files::MakeReadWrite(file)) {
      log_.AddAction(file.string() + " is read only, can't change it to read write, can't update it");
      return true;
    }
    try {
      files::WriteTextFile(file, fileText());
      return true;
    } catch (const AppError& e) {
      if (e.number() == error_number::kPathFileAccess || e.number() == error_number::kBadFileName) {
        // One more try once the file is writable; the folder itself may be what refuses.
        if (!madeWritable && files::MakeReadWrite(file)) {
          madeWritable = true;
          continue;
        }
        prompt_.ask("Your settings file is read-only and I can't change it. Save cancelled.", Buttons::Ok, "");
        return false;
      }
      if (e.number() == error_number::kDiskFull) {
        const std::string question = "You've run out of disk space on drive " + files::VolumeOf(file) + ":" + "\r" +
                                     "Please clear some space and then click Retry, else click Cancel to abort.";
        if (prompt_.ask(question, Buttons::RetryCancel, "") == Answer::Retry) continue;
        return false;
      }
      ShowErr(prompt_, std::to_string(e.number()) + " - " + e.description() + " in SaveSettings");
      return false;
    }
  }
}

void cSHAREDSettings::LoadSettings(const std::filesystem::path& file) {
  DeleteAllSettings();
  if (!files::FileExists(file)) return;
  std::string bytes;
  try {
    bytes = files::LoadTextFile(file);
  } catch (const AppError& e) {
    logFailure(log_, e, "LoadSettings", kModule);
    return;
  }
  LoadSettingsFromText(bytes, file.string());
}

void cSHAREDSettings::LoadSettingsFromText(std::string_view bytes, const std::string& source) {
  DeleteAllSettings();
  std::size_t from = 0;
  while (from <= bytes.size()) {
    std::size_t end = bytes.find("\r\n", from);
    if (end == std::string_view::npos) end = bytes.size();
    const std::string_view line = bytes.substr(from, end - from);
    from = end + 2;
    try {
      const auto comma = line.find(',');
      if (comma == std::string_view::npos) continue;
      const std::string_view key = line.substr(0, comma);
      if (text::trimView(key).empty()) continue;
      const std::string_view value = line.substr(comma + 1);
      if (const auto word = booleanWord(value)) {
        AddSetting(key, Value(*word ? -1 : 0));
      } else {
        AddSetting(key, Value(value));
      }
    } catch (const AppError& e) {
      ShowErr(prompt_, "Error " + std::to_string(e.number()) + " in setting file. Line: " + std::string(line) +
                           " of " + source);
    }
  }
}

int cSHAREDSettings::LastIndexInSet(std::string_view set) const {
  const Value* last = findValue(indexName(text::upper(set)));
  return last ? text::toWhole<int>(last->numberOr(0)) : 0;
}

int cSHAREDSettings::AddToSet(std::string_view set, const Value& value) {
  const std::string name = text::upper(set);
  int index = 0;
  do {
    const int last = LastIndexInSet(name);
    if (last == std::numeric_limits<int>::max()) throw AppError(error_number::kOverflow, "Overflow");
    index = last + 1;
    AddSetting(indexName(name), Value(index));
  } while (IsSettingPresent(memberName(name, index)));
  AddSetting(memberName(name, index), value);
  return index;
}

bool cSHAREDSettings::isSparse(int last) const {
  constexpr int kCheapLoopPerSetting = 4;
  constexpr int kCheapLoop = 16;
  return last > kCheapLoopPerSetting * SettingsCount() + kCheapLoop;
}

// An index of billions written by hand must not make a look-up count that
// far: past a few per setting, the members are found among the settings.
std::vector<int> cSHAREDSettings::presentMembers(const std::string& set, int last) const {
  std::vector<int> members;
  if (!isSparse(last)) {
    for (int i = 1; i <= last; ++i) {
      if (IsSettingPresent(memberName(set, i))) members.push_back(i);
    }
    return members;
  }
  const std::string prefix = set + "_";
  for (const auto& entry : settings_) {
    const std::string key = text::upper(entry.key);
    if (!key.starts_with(prefix)) continue;
    const std::string_view digits = std::string_view(key).substr(prefix.size());
    constexpr std::size_t kMostDigits = 10;
    const bool canonical = !digits.empty() && digits.size() <= kMostDigits && digits.front() != '0' &&
                           std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!canonical) continue;
    const long long index = std::stoll(std::string(digits));
    if (index <= last) members.push_back(static_cast<int>(index));
  }
  std::sort(members.begin(), members.end());
  return members;
}

std::optional<int> cSHAREDSettings::findMember(const std::string& set, const Value& value) const {
  const std::string wanted = setComparable(value);
  for (const int i : presentMembers(set, LastIndexInSet(set))) {
    if (setComparable(*findValue(memberName(set, i))) == wanted) return i;
  }
  return std::nullopt;
}

void cSHAREDSettings::DeleteFromSetByValue(std::string_view set, const Value& value) {
  const std::string name = text::upper(set);
  if (const auto index = findMember(name, value)) DeleteFromSetByIndex(name, *index);
}

void cSHAREDSettings::DeleteFromSetByIndex(const std::string& set, int index) {
  const int last = LastIndexInSet(set);
  if (index >= last) {
    DeleteSettingByName(memberName(set, index));
  } else if (!isSparse(last)) {
    for (int j = index + 1; j <= last; ++j) {
      AddSetting(memberName(set, j - 1), RetrieveSetting(memberName(set, j)));
    }
    DeleteSettingByName(memberName(set, last));
  } else {
    // Only the places next to a present member change; ascending order reads
    // each member before the shift overwrites it.
    std::vector<int> places;
    for (const int member : presentMembers(set, last)) {
      if (member >= index) places.push_back(member);
      if (member > index) places.push_back(member - 1);
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    for (const int place : places) {
      if (place < last) AddSetting(memberName(set, place), RetrieveSetting(memberName(set, place + 1)));
    }
    DeleteSettingByName(memberName(set, last));
  }
  AddSetting(indexName(set), Value(last - 1));
}

bool cSHAREDSettings::ValueInSet(std::string_view set, const Value& value) const {
  return findMember(text::upper(set), value).has_value();
}

int cSHAREDSettings::SetCount(std::string_view set) const {
  const std::string name = text::upper(set);
  const int last = LastIndexInSet(name);
  const int count = static_cast<int>(presentMembers(name, last).size());
  if (count != last) {
    log_.AddAction("WARNING: LastIDX and Setcount not the same with setting '" + std::string(set) + "'");
  }
  return count;
}

void cSHAREDSettings::DeleteASet(std::string_view set) {
  const std::string name = text::upper(set);
  // Members plus ten, not the last index: a set with many holes keeps its far members.
  const int bound = SetCount(name) + 10;
  for (int i = 1; i <= bound; ++i) DeleteSettingByName(memberName(name, i));
  DeleteSettingByName(indexName(name));
}

}  // namespace vonel
