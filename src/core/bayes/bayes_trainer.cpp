#include "core/bayes/bayes_trainer.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "core/bayes/tokeniser.h"
#include "core/files/any_case.h"
#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/message/message_file.h"
#include "core/store/folder_listing.h"
#include "core/store/folder_lists.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::bayes {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kBayesModule;
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

TrainingChoices TrainingChoices::read(const SettingsStore& settings) {
  TrainingChoices choices;
  choices.good = sourceNamed(settings.get("TrainGoodSource", Value("")).text(), Source::Folder);
  if (choices.good == Source::Archive) choices.good = Source::Folder;
  choices.goodFolder = settings.get("TrainGoodFolder", Value(choices.goodFolder)).text();
  choices.goodSubfolders = settings.get("TrainGoodSubfolders", Value(false)).flag();
  choices.bad = sourceNamed(settings.get("TrainBadSource", Value("")).text(), Source::Folder);
  choices.badSubfolders = settings.get("TrainBadSubfolders", Value(false)).flag();
  return choices;
}

void TrainingChoices::store(SettingsStore& settings) const {
  settings.set("TrainGoodSource", Value(sourceName(good)));
  settings.set("TrainGoodFolder", Value(goodFolder));
  settings.set("TrainGoodSubfolders", Value(goodSubfolders));
  settings.set("TrainBadSource", Value(sourceName(bad)));
  settings.set("TrainBadSubfolders", Value(badSubfolders));
}

fs::path BayesTrainer::goodTableFile() const { return files::resolveAnyCase(ctx_.folders.dataFolderPath, "HashGood.dat"); }
fs::path BayesTrainer::badTableFile() const { return files::resolveAnyCase(ctx_.folders.dataFolderPath, "HashBad.dat"); }

BayesTrainer::CountTable BayesTrainer::good() {
  return {filter_.goodTable(), goodLoaded_, goodTableFile(), "Loading 'Good' words"};
}
BayesTrainer::CountTable BayesTrainer::bad() { return {badTable_, badLoaded_, badTableFile(), "Loading 'Spam' words"}; }

// A fresh table of the fixed huge size, filled from its file when there is
// one. With no file it still counts as loaded, so that what is added to it
// next isn't wiped by a second load.
void BayesTrainer::ensureLoaded(const CountTable& side) {
  if (side.loaded) return;
  progress_.status(side.loadingText);
  side.table.clear();
  side.table.initHuge();
  side.table.loadTable(side.file, ctx_.log);
  side.loaded = true;
}

void BayesTrainer::rebuildFromFolder(const CountTable& side, std::string_view title, const fs::path& folder,
                                    bool subfolders) {
  side.table.clear();
  side.table.initHuge();
  generateTable(title, folder, false, subfolders, side.table);
  side.table.writeHashTable(side.file, ctx_.log);
  side.loaded = true;
}

fs::path BayesTrainer::spamFolder() const { return store::storeFolder(ctx_.folders.messageFolderPath, "\\SpamBayes\\"); }

bool BayesTrainer::generateFilters(const TrainingChoices& choices) {
  bool completed = false;
  guardedStep(ctx_.log, log_places::kGenerateFilters, kModule, [&] {
    filter_.clearWordTable();
    if (choices.good == TrainingChoices::Source::File) {
      ensureLoaded(good());
    } else {
      rebuildFromFolder(good(), "Good Mail",
                        store::storeFolder(ctx_.folders.messageFolderPath, text::lower(choices.goodFolder)),
                        choices.goodSubfolders);
    }
    if (choices.bad == TrainingChoices::Source::File) {
      ensureLoaded(bad());
    } else if (choices.bad == TrainingChoices::Source::Folder) {
      rebuildFromFolder(bad(), "Spam Mail", spamFolder(), choices.badSubfolders);
    } else {
      const std::string fallback = files::textFromPath(ctx_.folders.messageFolderPath / "SpamBayes");
      std::string archive = ctx_.settings.get("SpamFolder", Value(fallback)).text();
      if (!archive.ends_with('\\') && !archive.ends_with('/')) archive += '/';
      const fs::path folder = files::pathFromText(archive);
      if (!files::folderExists(folder)) {
        ctx_.prompt.ask("Spam Archive " + archive + " not found. Exiting.", Buttons::Ok, "Vonel");
        return;
      }
      // The archive adds to the table as it stands.
      generateTable("Spam Mail", folder, false, choices.badSubfolders, badTable_);
      badTable_.writeHashTable(badTableFile(), ctx_.log);
    }
    generateWordHash(filter_.goodTable(), badTable_, ctx_.spamWordMinimum);
    progress_.status("Spam filters created");
    completed = true;
  });
  return completed;
}

void BayesTrainer::generateTable(std::string_view title, const fs::path& folder, bool unreadOnly, bool subfolders,
                                WordTable& table) {
  guardedStep(ctx_.log, log_places::kGenerateTable, kModule, [&] {
    std::vector<fs::path> files;
    for (const fs::path& each : foldersToRead(folder, subfolders)) {
      for (const store::ListedFile& listed : store::listMessageFiles(each)) files.push_back(each / listed.name);
    }
    const std::string total = std::to_string(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
      // An unreadable file reads as an empty message and adds nothing but its count.
      const message::Message message = message::readMessageFull(files[i], ctx_.log);
      if (!(unreadOnly && message.read)) hashMessage(table, message, false);
      progress_.status(std::string(title) + " - Message " + std::to_string(i + 1) + " of " + total);
      progress_.letEventsRun();
    }
    table.messageCount += static_cast<std::int32_t>(files.size());
  });
}

void BayesTrainer::generateWordHash(WordTable& good, WordTable& bad, int minimum) {
  guardedStep(ctx_.log, log_places::kGenerateWordHash, kModule, [&] {
    const auto started = std::chrono::steady_clock::now();
    WordTable words;
    words.initHuge();
    const double goodTotal = good.messageCount == 0 ? 1 : good.messageCount;
    const double badTotal = bad.messageCount == 0 ? 1 : bad.messageCount;
    for (std::int32_t i = 1; i <= good.lastRecord; ++i) {
      if (i % kRecordsPerProgress == 0) progress_.status("Checking Good Words");
      const std::string& key = good.keyAt(i);
      const float goodCount = good.valueAt(i);
      if (key.empty() || goodCount < static_cast<float>(minimum)) continue;
      const std::optional<WordRecord> inBad = bad.findRecord(key);
      float p = kGoodOnly;
      if (inBad) {
        const double spamRate = inBad->value / badTotal;
        const double goodRate = goodCount / goodTotal;
        p = static_cast<float>(text::roundHalfEven(static_cast<float>(spamRate / (goodRate + spamRate)), 2));
      }
      words.insertRecord(key, std::max(p, kGoodOnly));
    }
    for (std::int32_t i = 1; i <= bad.lastRecord; ++i) {
      if (i % kRecordsPerProgress == 0) progress_.status("Checking Spam Words");
      const std::string& key = bad.keyAt(i);
      if (key.empty() || bad.valueAt(i) < static_cast<float>(minimum)) continue;
      // A token known as good at all, even below the minimum, never counts as spam only.
      if (!good.findRecord(key)) words.insertRecord(key, kSpamOnly);
    }
    words.writeHashTable(filter_.wordTableFile(), ctx_.log);
    filter_.clearWordTable();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    ctx_.log.addAction("GenerateWordHash completed in " + text::plainText(text::roundHalfEven(took.count(), 2)) +
                           " seconds.",
                       log_places::kGenerateWordHash, kModule);
  });
}

void BayesTrainer::updateFromUnread() {
  guardedStep(ctx_.log, log_places::kUpdateFromUnread, kModule, [&] {
    ensureLoaded(bad());
    generateTable("Spam Mail", spamFolder(), true, false, badTable_);
    ensureLoaded(good());
    generateWordHash(filter_.goodTable(), badTable_, ctx_.spamWordMinimum);
    progress_.status("Spam filters updated");
  });
}

void BayesTrainer::countMessage(const message::Message& message, Verdict verdict) {
  guardedStep(ctx_.log, log_places::kSwapStatus, kModule, [&] {
    const CountTable target = verdict == Verdict::Junk ? bad() : good();
    ensureLoaded(target);
    WordTable tokens;
    tokens.initSmall();
    hashMessage(tokens, message, true);
    target.table.messageCount += 1;
    for (std::int32_t i = 1; i <= tokens.lastRecord; ++i) {
      const std::string& key = tokens.keyAt(i);
      if (!key.empty()) target.table.addCount(key);
    }
  });
}

void BayesTrainer::recreateWordHash() {
  guardedStep(ctx_.log, log_places::kRecreateWordHash, kModule, [&] {
    for (const CountTable& side : {good(), bad()}) {
      if (side.loaded) {
        side.table.writeHashTable(side.file, ctx_.log);
      } else {
        ensureLoaded(side);
      }
    }
    generateWordHash(filter_.goodTable(), badTable_, ctx_.spamWordMinimum);
  });
}

}  // namespace vonel::bayes
