#pragma once
// Training: stored mail counted into the good and bad tables
// ("HashGood.dat", "HashBad.dat"), and from those two the word table
// ("HashTable.dat") computed whole. Only the count tables grow piece by
// piece; every file is written through a temporary file.
#include <filesystem>
#include <string>
#include <string_view>

#include "core/bayes/bayes_filter.h"
#include "core/bayes/word_table.h"
#include "core/message/message.h"
#include "core/context/app_context.h"
#include "core/interaction/progress.h"

namespace vonel::bayes {

// What the training window offers, kept in the settings between runs.
struct TrainingChoices {
  enum class Source { File, Folder, Archive };
  Source good = Source::Folder;  // never Archive
  std::string goodFolder = "\\Inbox\\";  // a store folder as the folder lists show it
  bool goodSubfolders = false;
  Source bad = Source::Folder;
  bool badSubfolders = false;

  static TrainingChoices read(const SettingsStore& settings);
  void store(SettingsStore& settings) const;
};

// Which table a message a user judged is counted into.
enum class Verdict { Good, Junk };

class BayesTrainer {
 public:
  BayesTrainer(AppContext& context, BayesFilter& filter, Progress& progress)
      : ctx_(context), filter_(filter), progress_(progress) {}

  // Full training; false when the spam archive is missing, which ends it
  // after the good side was rebuilt and the word table cleared.
  bool generateFilters(const TrainingChoices& choices);
  // Counts the mail of a folder into the table; every file found counts as a
  // message, also those passed over as read.
  void generateTable(std::string_view title, const std::filesystem::path& folder, bool unreadOnly, bool subfolders,
                     WordTable& table);
  void generateWordHash(WordTable& good, WordTable& bad, int minimum);
  // The unread mail of the spam folder into the bad table (in memory only), then the word table.
  void updateFromUnread();
  // One message into the junk (bad) or good table, each token once; nothing
  // is ever subtracted, so a message taken back out of junk counts on both sides.
  void countMessage(const message::Message& message, Verdict verdict);
  // Writes both count tables and computes the word table.
  void recreateWordHash();

  WordTable& goodTable() { return filter_.goodTable(); }
  WordTable& badTable() { return badTable_; }
  std::filesystem::path goodTableFile() const;
  std::filesystem::path badTableFile() const;

 private:
  struct CountTable {
    WordTable& table;
    bool& loaded;
    std::filesystem::path file;
    const char* loadingText;
  };
  CountTable good();
  CountTable bad();
  void ensureLoaded(const CountTable& side);
  void rebuildFromFolder(const CountTable& side, std::string_view title, const std::filesystem::path& folder,
                         bool subfolders);
  std::filesystem::path spamFolder() const;

  AppContext& ctx_;
  BayesFilter& filter_;
  Progress& progress_;
  WordTable badTable_;
  bool goodLoaded_ = false;
  bool badLoaded_ = false;
};

}  // namespace vonel::bayes
