#pragma once
// The unique ids (UIDL) of one account's messages that are already in the
// store, so that mail left on the server is downloaded once: "Fetched<n>.txt"
// in the data folder, one id a line. The id of a message being stored is
// first noted in "Fetching<n>.txt" beside the file it goes to: a run cut off
// after the message's file and before its id is put right at the next load,
// and one cut off before the file leaves nothing to put right.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/files/write_batch.h"

namespace vonel::store {

class FetchedIds {
 public:
  // Loads the account's ids; a file that is missing or can't be read holds
  // none. Throws AppError only when putting a cut-off run right can't be written.
  // The file of ids is written through `writes`.
  FetchedIds(const std::filesystem::path& dataFolder, int account, files::WriteBatch& writes);

  bool contains(std::string_view id) const { return set_.contains(std::string(id)); }
  std::size_t size() const { return ids_.size(); }

  // Forgets the ids the server no longer lists, and writes the file when that changed.
  void keepOnly(const std::unordered_set<std::string>& listed);
  // Before the message's file is written: which id goes to which file.
  void beginStoring(const std::string& id, const std::filesystem::path& file);
  // Once the file is whole on disk: the id joins the others.
  void finishStoring();

 private:
  void add(const std::string& id);
  void save() const;
  void recoverCutOffStore();

  files::WriteBatch& writes_;
  std::filesystem::path file_;
  std::filesystem::path pendingFile_;
  std::string pendingId_;
  std::vector<std::string> ids_;  // in the order they were stored
  std::unordered_set<std::string> set_;
};

}  // namespace vonel::store
