#include "core/bayes/blacklist.h"

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/log_places.h"
#include "core/text/strings.h"

namespace vonel::bayes {

void BlackList::loadBlackList(const std::filesystem::path& file, Log& log) {
  words_.clear();
  loaded_ = true;
  if (!files::fileExists(file)) return;
  guardedStep(log, log_places::kLoadBlackList, log_places::kBayesModule, [&] {
    const std::string content = files::loadTextFile(file);
    if (!text::trimView(content).empty()) words_ = text::split(content, "\r\n");
  });
}

std::optional<std::string> BlackList::searchSubject(std::string_view subject) const {
  std::optional<std::string> found;
  std::size_t pos = 0;
  std::size_t least = 0;
  for (const std::string& word : words_) {
    if (word.empty()) continue;
    bool matched = true;
    for (char c : word) {
      pos = text::find(subject, std::string_view(&c, 1), pos + 1);
      if (pos == 0 || pos < least) {
        pos = 0;
        matched = false;
        break;
      }
      least = pos;
    }
    if (matched) found = word;
  }
  return found;
}

}  // namespace vonel::bayes
