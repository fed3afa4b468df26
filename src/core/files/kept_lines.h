#pragma once
// The lines of a hand-edited file that its reader could not take, each
// remembered with its place among the lines it did take, so that writing the
// file again puts them back where they stood instead of dropping them.
//
// A reader reports every line in file order: understood(anchor) for a line
// it took, where the anchor names what the writer will write for it (a
// settings key, a list entry, a slot of a rule), and keep(text) for one it
// could not. Anchors match without regard to case; an anchor that occurs
// more than once matches occurrence by occurrence. A writer then sends every
// line through a Writer, and each kept line comes out beside the neighbour
// it followed, or, when that neighbour is gone, before the next one that is
// still written.
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vonel::files {

class KeptLines {
 public:
  void understood(std::string_view anchor);
  void keep(std::string_view line);
  // A line past the point where the reader stopped: it goes after everything.
  void keepAtEnd(std::string_view line);

  void clear();
  bool empty() const { return groups_.empty() && atEnd_.empty(); }
  // Every kept line, in file order, the ones at the end last.
  std::vector<std::string> lines() const;

  class Writer;

 private:
  // Kept lines that followed the `after`-th understood line (0: none yet).
  struct Group {
    std::size_t after = 0;
    std::vector<std::string> lines;
  };

  std::vector<std::string> anchors_;  // of the understood lines, in file order
  std::vector<Group> groups_;         // in file order
  std::vector<std::string> atEnd_;
};

// Writes lines, each ended by CR LF, with the kept lines put back among them.
class KeptLines::Writer {
 public:
  // `kept` may be null: then only the writer's own lines are written.
  Writer(const KeptLines* kept, std::string& out);
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  // Whether anchors matter; a writer may skip making them when not.
  bool placing() const { return kept_ != nullptr; }
  void line(std::string_view anchor, std::string_view text);
  // A place without a line of its own, such as the end of a block of lines.
  void mark(std::string_view anchor) { place(anchor, nullptr); }
  // Writes the kept lines that have not found their place yet.
  void finish();

 private:
  void place(std::string_view anchor, const std::string_view* text);
  void writeGroupsUpTo(std::size_t position);
  void append(std::string_view text);

  const KeptLines* kept_;
  std::string& out_;
  // Each folded anchor's 1-based positions among the understood lines.
  std::unordered_map<std::string, std::vector<std::size_t>> positions_;
  std::unordered_map<std::string, std::size_t> seen_;
  std::size_t nextGroup_ = 0;
};

}  // namespace vonel::files
