#include "core/bayes/training.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "core/bayes/tokeniser.h"
#include "core/message/message_file.h"
#include "core/services/file_subs.h"
#include "core/store/folder_listing.h"
#include "core/store/folder_lists.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::bayes {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = "frmBayesFilter";
constexpr float kGoodOnly = 0.01f;
constexpr float kSpamOnly = 0.99f;
constexpr std::int32_t kRecordsPerProgress = 500;

TrainingChoices::Source sourceNamed(std::string_view name, TrainingChoices::Source fallback) {
  if (text::equalsNoCase(name, "file")) return TrainingChoices::Source::File;
  if (text::equalsNoCase(name, "folder")) return TrainingChoices::Source::Folder;
  if (text::equalsNoCase(name, "archive")) return TrainingChoices::Source::Archive;
  return fallback;
}

const char* sourceName(TrainingChoices::Source source) {
  switch (source) {
    case TrainingChoices::Source::File: return "file";
    case TrainingChoices::Source::Archive: return "archive";
    case TrainingChoices::Source::Folder: break;
  }
  return "folder";
}

// The folder and, when asked, every folder below it, in name order.
std::vector<fs::path> foldersToRead(const fs::path& folder, bool subfolders) {
  std::vector<fs::path> folders{folder};
  if (!subfolders) return folders;
  std::error_code error;
  for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    if (it->is_directory(error)) folders.push_back(it->path());
  }
  std::sort(folders.begin() + 1, folders.end());
  return folders;
}

}  // namespace

TrainingChoices TrainingChoices::Read(const cSHAREDSettings& settings) {
  TrainingChoices choices;
  choices.good = sourceNamed(settings.RetrieveSetting("TrainGoodSource", Value("")).text(), Source::Folder);
  if (choices.good == Source::Archive) choices.good = Source::Folder;
  choices.goodFolder = settings.RetrieveSetting("TrainGoodFolder", Value(choices.goodFolder)).text();
  choices.goodSubfolders = settings.RetrieveSetting("TrainGoodSubfolders", Value(false)).flag();
  choices.bad = sourceNamed(settings.RetrieveSetting("TrainBadSource", Value("")).text(), Source::Folder);
  choices.badSubfolders = settings.RetrieveSetting("TrainBadSubfolders", Value(false)).flag();
  return choices;
}

void TrainingChoices::Store(cSHAREDSettings& settings) const {
  settings.StoreSetting("TrainGoodSource", Value(sourceName(good)));
  settings.StoreSetting("TrainGoodFolder", Value(goodFolder));
  settings.StoreSetting("TrainGoodSubfolders", Value(goodSubfolders));
  settings.StoreSetting("TrainBadSource", Value(sourceName(bad)));
  settings.StoreSetting("TrainBadSubfolders", Value(badSubfolders));
}

fs::path clsTraining::GoodTableFile() const { return files::ResolveAnyCase(ctx_.folders.DataFolderPath, "HashGood.dat"); }
fs::path clsTraining::BadTableFile() const { return files::ResolveAnyCase(ctx_.folders.DataFolderPath, "HashBad.dat"); }

clsTraining::CountTable clsTraining::good() {
  return {filter_.GoodTable(), goodLoaded_, GoodTableFile(), "Loading 'Good' words"};
}
clsTraining::CountTable clsTraining::bad() { return {badTable_, badLoaded_, BadTableFile(), "Loading 'Spam' words"}; }

// A fresh table of the fixed huge size, filled from its file when there is
// one. With no file it still counts as loaded, so that what is added to it
// next isn't wiped by a second load.
void clsTraining::ensureLoaded(const CountTable& side) {
  if (side.loaded) return;
  progress_.status(side.loadingText);
  side.table.HashClear();
  side.table.InitHuge();
  side.table.LoadTable(side.file, ctx_.log);
  side.loaded = true;
}

void clsTraining::rebuildFromFolder(const CountTable& side, std::string_view title, const fs::path& folder,
                                    bool subfolders) {
  side.table.ClearArrays();
  side.table.InitHuge();
  GenerateTable(title, folder, false, subfolders, side.table);
  side.table.WriteHashTable(side.file, ctx_.log);
  side.loaded = true;
}

fs::path clsTraining::spamFolder() const { return store::StoreFolder(ctx_.folders.MessageFolderPath, "\\SpamBayes\\"); }

bool clsTraining::GenerateFilters(const TrainingChoices& choices) {
  bool completed = false;
  guardedStep(ctx_.log, "GenerateFilters", kModule, [&] {
    filter_.ClearWordTable();
    if (choices.good == TrainingChoices::Source::File) {
      ensureLoaded(good());
    } else {
      rebuildFromFolder(good(), "Good Mail",
                        store::StoreFolder(ctx_.folders.MessageFolderPath, text::lower(choices.goodFolder)),
                        choices.goodSubfolders);
    }
    if (choices.bad == TrainingChoices::Source::File) {
      ensureLoaded(bad());
    } else if (choices.bad == TrainingChoices::Source::Folder) {
      rebuildFromFolder(bad(), "Spam Mail", spamFolder(), choices.badSubfolders);
    } else {
      const std::string fallback = files::TextFromPath(ctx_.folders.MessageFolderPath / "SpamBayes");
      std::string archive = ctx_.Settings.RetrieveSetting("SpamFolder", Value(fallback)).text();
      if (!archive.ends_with('\\') && !archive.ends_with('/')) archive += '/';
      const fs::path folder = files::PathFromText(archive);
      if (!files::FolderExists(folder)) {
        ctx_.prompt.ask("Spam Archive " + archive + " not found. Exiting.", Buttons::Ok, "Vonel");
        return;
      }
      // The archive adds to the table as it stands.
      GenerateTable("Spam Mail", folder, false, choices.badSubfolders, badTable_);
      badTable_.WriteHashTable(BadTableFile(), ctx_.log);
    }
    GenerateWordHash(filter_.GoodTable(), badTable_, ctx_.SpamWordMinimum);
    progress_.status("Spam filters created");
    completed = true;
  });
  return completed;
}

void clsTraining::GenerateTable(std::string_view title, const fs::path& folder, bool unreadOnly, bool subfolders,
                                clsHashTable& table) {
  guardedStep(ctx_.log, "GenerateTable", kModule, [&] {
    std::vector<fs::path> files;
    for (const fs::path& each : foldersToRead(folder, subfolders)) {
      for (const store::ListedFile& listed : store::ListMessageFiles(each)) files.push_back(each / listed.name);
    }
    const std::string total = std::to_string(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
      // An unreadable file reads as an empty message and adds nothing but its count.
      const message::clsMessage message = message::ReadMessageFull(files[i], ctx_.log);
      if (!(unreadOnly && message.Read)) HashMessage(table, message, false);
      progress_.status(std::string(title) + " - Message " + std::to_string(i + 1) + " of " + total);
      progress_.letEventsRun();
    }
    table.MessageCount += static_cast<std::int32_t>(files.size());
  });
}

void clsTraining::GenerateWordHash(clsHashTable& good, clsHashTable& bad, int minimum) {
  guardedStep(ctx_.log, "GenerateWordHash", kModule, [&] {
    const auto started = std::chrono::steady_clock::now();
    clsHashTable words;
    words.InitHuge();
    const double goodTotal = good.MessageCount == 0 ? 1 : good.MessageCount;
    const double badTotal = bad.MessageCount == 0 ? 1 : bad.MessageCount;
    for (std::int32_t i = 1; i <= good.LastRecord; ++i) {
      if (i % kRecordsPerProgress == 0) progress_.status("Checking Good Words");
      const std::string& key = good.RecString(i);
      const float goodCount = good.RecValue(i);
      if (key.empty() || goodCount < static_cast<float>(minimum)) continue;
      const clsHashRec inBad = bad.FindRec(key);
      float p = kGoodOnly;
      if (inBad.Index != 0) {
        const double spamRate = inBad.Value / badTotal;
        const double goodRate = goodCount / goodTotal;
        p = static_cast<float>(text::roundHalfEven(static_cast<float>(spamRate / (goodRate + spamRate)), 2));
      }
      words.InsertRecord(key, std::max(p, kGoodOnly));
    }
    for (std::int32_t i = 1; i <= bad.LastRecord; ++i) {
      if (i % kRecordsPerProgress == 0) progress_.status("Checking Spam Words");
      const std::string& key = bad.RecString(i);
      if (key.empty() || bad.RecValue(i) < static_cast<float>(minimum)) continue;
      // A token known as good at all, even below the minimum, never counts as spam only.
      if (good.FindRec(key).Index == 0) words.InsertRecord(key, kSpamOnly);
    }
    words.WriteHashTable(filter_.WordTableFile(), ctx_.log);
    filter_.ClearWordTable();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    ctx_.log.AddAction("GenerateWordHash completed in " + text::plainText(text::roundHalfEven(took.count(), 2)) +
                           " seconds.",
                       "GenerateWordHash", kModule);
  });
}

void clsTraining::UpdateFromUnread() {
  guardedStep(ctx_.log, "UpdateFromUnread", kModule, [&] {
    ensureLoaded(bad());
    GenerateTable("Spam Mail", spamFolder(), true, false, badTable_);
    ensureLoaded(good());
    GenerateWordHash(filter_.GoodTable(), badTable_, ctx_.SpamWordMinimum);
    progress_.status("Spam filters updated");
  });
}

void clsTraining::SwapStatus(const message::clsMessage& message, bool junk) {
  guardedStep(ctx_.log, "SwapStatus", kModule, [&] {
    const CountTable target = junk ? bad() : good();
    ensureLoaded(target);
    clsHashTable tokens;
    tokens.InitSmall();
    HashMessage(tokens, message, true);
    target.table.MessageCount += 1;
    for (std::int32_t i = 1; i <= tokens.LastRecord; ++i) {
      const std::string& key = tokens.RecString(i);
      if (!key.empty()) target.table.AlterValue(key, 1);
    }
  });
}

void clsTraining::RecreateWordHash() {
  guardedStep(ctx_.log, "RecreateWordHash", kModule, [&] {
    for (const CountTable& side : {good(), bad()}) {
      if (side.loaded) {
        side.table.WriteHashTable(side.file, ctx_.log);
      } else {
        ensureLoaded(side);
      }
    }
    GenerateWordHash(filter_.GoodTable(), badTable_, ctx_.SpamWordMinimum);
  });
}

}  // namespace vonel::bayes
