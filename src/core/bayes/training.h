#pragma once
// Training: stored mail counted into the good and bad tables
// ("HashGood.dat", "HashBad.dat"), and from those two the word table
// ("HashTable.dat") computed whole. Only the count tables grow piece by
// piece; every file is written through a temporary file.
#include <filesystem>
#include <string>
#include <string_view>

#include "core/bayes/bayes_filter.h"
#include "core/bayes/hash_table.h"
#include "core/message/message.h"
#include "core/services/app_context.h"
#include "core/services/progress.h"

namespace vonel::bayes {

// What the training window offers, kept in the settings between runs.
struct TrainingChoices {
  enum class Source { File, Folder, Archive };
  Source good = Source::Folder;  // never Archive
  std::string goodFolder = "\\Inbox\\";  // a store folder as the folder lists show it
  bool goodSubfolders = false;
  Source bad = Source::Folder;
  bool badSubfolders = false;

  static TrainingChoices Read(const cSHAREDSettings& settings);
  void Store(cSHAREDSettings& settings) const;
};

class clsTraining {
 public:
  clsTraining(AppContext& context, frmBayesFilter& filter, Progress& progress)
      : ctx_(context), filter_(filter), progress_(progress) {}

  // Full training; false when the spam archive is missing, which ends it
  // after the good side was rebuilt and the word table cleared.
  bool GenerateFilters(const TrainingChoices& choices);
  // Counts the mail of a folder into the table; every file found counts as a
  // message, also those passed over as read.
  void GenerateTable(std::string_view title, const std::filesystem::path& folder, bool unreadOnly, bool subfolders,
                     clsHashTable& table);
  void GenerateWordHash(clsHashTable& good, clsHashTable& bad, int minimum);
  // The unread mail of the spam folder into the bad table (in memory only), then the word table.
  void UpdateFromUnread();
  // One message into the bad (junk) or good table, each token once; nothing is ever subtracted.
  void SwapStatus(const message::clsMessage& message, bool junk);
  void AddToJunk(const message::clsMessage& message) { SwapStatus(message, true); }
  void RemoveFromJunk(const message::clsMessage& message) { SwapStatus(message, false); }
  // Writes both count tables and computes the word table.
  void RecreateWordHash();

  clsHashTable& GoodTable() { return filter_.GoodTable(); }
  clsHashTable& BadTable() { return badTable_; }
  std::filesystem::path GoodTableFile() const;
  std::filesystem::path BadTableFile() const;

 private:
  struct CountTable {
    clsHashTable& table;
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
  frmBayesFilter& filter_;
  Progress& progress_;
  clsHashTable badTable_;
  bool goodLoaded_ = false;
  bool badLoaded_ = false;
};

}  // namespace vonel::bayes
