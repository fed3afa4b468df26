#pragma once
// The words that mark a subject as spam outright, from "BlacklistedWords.txt":
// one word a line, read once per run.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/log.h"

namespace vonel::bayes {

class BlackList {
 public:
  // A missing or blank file gives an empty list; either way the list counts as read.
  void loadBlackList(const std::filesystem::path& file, Log& log);
  bool loaded() const { return loaded_; }
  std::size_t count() const { return words_.size(); }

  // A word matches when its characters occur in the subject in order, with
  // anything between them. The search position carries over from one word to
  // the next (back to the start after a failure, while the lowest accepted
  // position stays), so a word can miss what a search of its own would find.
  // The last word that matched is the result. Empty lines match nothing.
  std::optional<std::string> searchSubject(std::string_view subject) const;

 private:
  std::vector<std::string> words_;
  bool loaded_ = false;
};

}  // namespace vonel::bayes
