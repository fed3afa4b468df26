#include "core/settings/settings_store.h"

#include <algorithm>
#include <limits>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/log/app_error.h"
#include "core/log/log_places.h"
#include "core/log/show_error.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr std::string_view kModule = log_places::kSettingsModule;

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

SettingsStore::SettingsStore(Log& log, Prompt& prompt) : log_(log), prompt_(prompt), source_(log, prompt) {}

void SettingsStore::setLocalBooleanWords(std::string trueWord, std::string falseWord) {
  localTrue_ = text::upper(text::trimView(trueWord));
  localFalse_ = text::upper(text::trimView(falseWord));
}

std::optional<bool> SettingsStore::booleanWord(std::string_view value) const {
  const std::string_view trimmed = text::trimView(value);
  // Most values are longer than any Boolean word; don't copy those.
  if (trimmed.size() > std::max({std::size_t{5}, localTrue_.size(), localFalse_.size()})) return std::nullopt;
  const std::string word = text::upper(trimmed);
  if (word == "FALSE" || (!localFalse_.empty() && word == localFalse_)) return false;
  if (word == "TRUE" || (!localTrue_.empty() && word == localTrue_)) return true;
  return std::nullopt;
}

const Value* SettingsStore::findValue(std::string_view name) const {
  const auto* setting = settings_.find(withoutCommas(name));
  return setting ? &setting->keyValue : nullptr;
}

std::string SettingsStore::settingNameByIndex(int index) const {
  if (index < 1 || index > settingsCount()) return {};
  return settings_.at(static_cast<std::size_t>(index - 1)).value.keyName;
}

void SettingsStore::addSetting(std::string_view name, const Value& value) {
  const Value stored = value.kind() == Value::Kind::Boolean ? Value(value.flag() ? -1 : 0) : value;
  std::string key = withoutCommas(name);
  auto [setting, added] = settings_.emplace(key, Setting{key, stored});
  if (!added) setting->keyValue = stored;
}

Value SettingsStore::get(std::string_view name, const std::optional<Value>& fallback) const {
  const Value* stored = findValue(name);
  if (!stored) return fallback.value_or(Value());
  if (stored->isText()) {
    if (const auto word = booleanWord(stored->text())) return Value(*word);
  }
  return *stored;
}

Value SettingsStore::getOrDefault(std::string_view name, const Value& fallback) {
  const Value result = get(name);
  // An empty text counts as empty, like a missing key.
  if (result.isEmpty() || (result.isText() && result.text().empty())) return fallback;
  try {
    return result.number() == 0 ? fallback : result;
  } catch (const AppError& e) {
    logFailure(log_, e, log_places::kRetrieveWithDefault, kModule);
    return result;
  }
}

bool SettingsStore::isSettingPresent(std::string_view name) const { return findValue(name) != nullptr; }

void SettingsStore::deleteSettingByName(std::string_view name) { settings_.remove(withoutCommas(name)); }

void SettingsStore::deleteSetting(int index) {
  if (index < 1 || index > settingsCount()) {
    logFailure(log_, AppError(error_number::kInvalidCall, "Invalid procedure call or argument"), log_places::kDeleteSetting,
               kModule);
    return;
  }
  settings_.removeAt(static_cast<std::size_t>(index - 1));
}

std::string SettingsStore::fileText() const {
  std::string out;
  files::KeptLines::Writer writer(&keptLines_, out);
  for (const auto& entry : settings_) {
    writer.line(entry.key, text::upper(entry.value.keyName) + ',' + entry.value.keyValue.fileForm());
  }
  writer.finish();
  return out;
}

bool SettingsStore::saveSettings(const std::filesystem::path& file) {
  if (!source_.mayReplace(file)) return false;
  bool madeWritable = false;
  for (;;) {
    if (files::isReadOnly(file) && !files::makeReadWrite(file)) {
      log_.addAction(file.string() + " is read only, can't change it to read write, can't update it");
      return true;
    }
    try {
      files::writeTextFile(file, fileText());
      return true;
    } catch (const AppError& e) {
      if (e.number() == error_number::kPathFileAccess || e.number() == error_number::kBadFileName) {
        // One more try once the file is writable; the folder itself may be what refuses.
        if (!madeWritable && files::makeReadWrite(file)) {
          madeWritable = true;
          continue;
        }
        prompt_.ask("Your settings file is read-only and I can't change it. Save cancelled.", Buttons::Ok, "");
        return false;
      }
      if (e.number() == error_number::kDiskFull) {
        const std::string question = "You've run out of disk space on drive " + files::volumeOf(file) + ":" + "\r" +
                                     "Please clear some space and then click Retry, else click Cancel to abort.";
        if (prompt_.ask(question, Buttons::RetryCancel, "") == Answer::Retry) continue;
        return false;
      }
      showError(prompt_, std::to_string(e.number()) + " - " + e.description() + " in SaveSettings");
      return false;
    }
  }
}

void SettingsStore::loadSettings(const std::filesystem::path& file) {
  deleteAllSettings();
  keptLines_.clear();
  if (const std::optional<std::string> bytes = source_.read(file)) loadSettingsFromText(*bytes, file.string());
}

// A line without a comma or without a key holds no setting; it is kept, and
// so is one whose reading failed.
void SettingsStore::loadSettingsFromText(std::string_view bytes, const std::string& source) {
  deleteAllSettings();
  keptLines_.clear();
  std::size_t from = 0;
  while (from < bytes.size()) {
    std::size_t end = bytes.find("\r\n", from);
    if (end == std::string_view::npos) end = bytes.size();
    const std::string_view line = bytes.substr(from, end - from);
    from = end + 2;
    const auto comma = line.find(',');
    const std::string_view key = line.substr(0, comma);
    if (comma == std::string_view::npos || text::trimView(key).empty()) {
      keptLines_.keep(line);
      continue;
    }
    try {
      const std::string_view value = line.substr(comma + 1);
      if (const auto word = booleanWord(value)) {
        addSetting(key, Value(*word ? -1 : 0));
      } else {
        addSetting(key, Value(value));
      }
      keptLines_.understood(key);
    } catch (const AppError& e) {
      keptLines_.keep(line);
      showError(prompt_, "Error " + std::to_string(e.number()) + " in setting file. Line: " + std::string(line) +
                           " of " + source);
    }
  }
}

int SettingsStore::lastIndexInSet(std::string_view set) const {
  const Value* last = findValue(indexName(text::upper(set)));
  return last ? text::toWhole<int>(last->numberOr(0)) : 0;
}

int SettingsStore::addToSet(std::string_view set, const Value& value) {
  const std::string name = text::upper(set);
  int index = 0;
  do {
    const int last = lastIndexInSet(name);
    if (last == std::numeric_limits<int>::max()) throw AppError(error_number::kOverflow, "Overflow");
    index = last + 1;
    addSetting(indexName(name), Value(index));
  } while (isSettingPresent(memberName(name, index)));
  addSetting(memberName(name, index), value);
  return index;
}

bool SettingsStore::isSparse(int last) const {
  constexpr int kCheapLoopPerSetting = 4;
  constexpr int kCheapLoop = 16;
  return last > kCheapLoopPerSetting * settingsCount() + kCheapLoop;
}

// An index of billions written by hand must not make a look-up count that
// far: past a few per setting, the members are found among the settings.
std::vector<int> SettingsStore::presentMembers(const std::string& set, int last) const {
  std::vector<int> members;
  if (!isSparse(last)) {
    for (int i = 1; i <= last; ++i) {
      if (isSettingPresent(memberName(set, i))) members.push_back(i);
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

std::optional<int> SettingsStore::findMember(const std::string& set, const Value& value) const {
  const std::string wanted = setComparable(value);
  for (const int i : presentMembers(set, lastIndexInSet(set))) {
    if (setComparable(*findValue(memberName(set, i))) == wanted) return i;
  }
  return std::nullopt;
}

void SettingsStore::deleteFromSetByValue(std::string_view set, const Value& value) {
  const std::string name = text::upper(set);
  if (const auto index = findMember(name, value)) deleteFromSetByIndex(name, *index);
}

void SettingsStore::deleteFromSetByIndex(const std::string& set, int index) {
  const int last = lastIndexInSet(set);
  if (index >= last) {
    deleteSettingByName(memberName(set, index));
  } else if (!isSparse(last)) {
    for (int j = index + 1; j <= last; ++j) {
      addSetting(memberName(set, j - 1), get(memberName(set, j)));
    }
    deleteSettingByName(memberName(set, last));
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
      if (place < last) addSetting(memberName(set, place), get(memberName(set, place + 1)));
    }
    deleteSettingByName(memberName(set, last));
  }
  addSetting(indexName(set), Value(last - 1));
}

bool SettingsStore::valueInSet(std::string_view set, const Value& value) const {
  return findMember(text::upper(set), value).has_value();
}

int SettingsStore::setCount(std::string_view set) const {
  const std::string name = text::upper(set);
  const int last = lastIndexInSet(name);
  const int count = static_cast<int>(presentMembers(name, last).size());
  if (count != last) {
    log_.addAction("WARNING: LastIDX and Setcount not the same with setting '" + std::string(set) + "'");
  }
  return count;
}

void SettingsStore::deleteASet(std::string_view set) {
  const std::string name = text::upper(set);
  // Members plus ten, not the last index: a set with many holes keeps its far members.
  const int bound = setCount(name) + 10;
  for (int i = 1; i <= bound; ++i) deleteSettingByName(memberName(name, i));
  deleteSettingByName(indexName(name));
}

}  // namespace vonel
