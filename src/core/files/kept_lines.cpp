#include "core/files/kept_lines.h"

#include "core/text/strings.h"

namespace vonel::files {

void KeptLines::understood(std::string_view anchor) { anchors_.emplace_back(anchor); }

void KeptLines::keep(std::string_view line) {
  if (groups_.empty() || groups_.back().after != anchors_.size()) groups_.push_back(Group{anchors_.size(), {}});
  groups_.back().lines.emplace_back(line);
}

void KeptLines::keepAtEnd(std::string_view line) { atEnd_.emplace_back(line); }

void KeptLines::clear() {
  anchors_.clear();
  groups_.clear();
  atEnd_.clear();
}

std::vector<std::string> KeptLines::lines() const {
  std::vector<std::string> all;
  for (const Group& group : groups_) all.insert(all.end(), group.lines.begin(), group.lines.end());
  all.insert(all.end(), atEnd_.begin(), atEnd_.end());
  return all;
}

KeptLines::Writer::Writer(const KeptLines* kept, std::string& out)
    : kept_(kept != nullptr && !kept->empty() ? kept : nullptr), out_(out) {
  if (!kept_) return;
  for (std::size_t i = 0; i < kept_->anchors_.size(); ++i) positions_[text::upper(kept_->anchors_[i])].push_back(i + 1);
  writeGroupsUpTo(0);
}

void KeptLines::Writer::line(std::string_view anchor, std::string_view text) { place(anchor, &text); }

void KeptLines::Writer::place(std::string_view anchor, const std::string_view* text) {
  std::size_t position = 0;
  if (kept_) {
    std::string folded = text::upper(anchor);
    const auto found = positions_.find(folded);
    if (found != positions_.end()) {
      const std::size_t occurrence = seen_[std::move(folded)]++;
      if (occurrence < found->second.size()) position = found->second[occurrence];
    }
  }
  // Lines that followed a neighbour no longer written come before the next one that is.
  if (position > 0) writeGroupsUpTo(position - 1);
  if (text) append(*text);
  if (position > 0) writeGroupsUpTo(position);
}

void KeptLines::Writer::writeGroupsUpTo(std::size_t position) {
  const auto& groups = kept_->groups_;
  for (; nextGroup_ < groups.size() && groups[nextGroup_].after <= position; ++nextGroup_) {
    for (const std::string& kept : groups[nextGroup_].lines) append(kept);
  }
}

void KeptLines::Writer::finish() {
  if (!kept_) return;
  writeGroupsUpTo(kept_->anchors_.size());
  for (const std::string& kept : kept_->atEnd_) append(kept);
}

void KeptLines::Writer::append(std::string_view text) { out_.append(text).append("\r\n"); }

}  // namespace vonel::files
