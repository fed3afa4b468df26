#include "core/files/kept_lines.h"

#include <gtest/gtest.h>

#include <vector>

namespace vonel::files {
namespace {

// Reads "key" lines as understood and "#..." lines as kept.
KeptLines read(const std::vector<std::string>& lines) {
  KeptLines kept;
  for (const std::string& line : lines) {
    if (line.starts_with("#")) {
      kept.keep(line);
    } else {
      kept.understood(line);
    }
  }
  return kept;
}

std::string write(const KeptLines& kept, const std::vector<std::string>& lines) {
  std::string out;
  KeptLines::Writer writer(&kept, out);
  for (const std::string& line : lines) writer.line(line, line);
  writer.finish();
  return out;
}

TEST(KeptLinesTest, KeptLinesReturnBetweenTheSameNeighbours) {
  const KeptLines kept = read({"#top", "a", "#after a", "#and more", "b", "c", "#last"});
  EXPECT_EQ(write(kept, {"a", "b", "c"}), "#top\r\na\r\n#after a\r\n#and more\r\nb\r\nc\r\n#last\r\n");
  // Anchors ignore case; new lines go where the writer puts them.
  EXPECT_EQ(write(kept, {"A", "B", "C", "d"}), "#top\r\nA\r\n#after a\r\n#and more\r\nB\r\nC\r\n#last\r\nd\r\n");
}

TEST(KeptLinesTest, LinesOfAGoneNeighbourComeBeforeTheNextOneStillWritten) {
  const KeptLines kept = read({"a", "#after a", "b", "#after b", "c"});
  EXPECT_EQ(write(kept, {"b", "c"}), "#after a\r\nb\r\n#after b\r\nc\r\n");
  EXPECT_EQ(write(kept, {"a", "c"}), "a\r\n#after a\r\n#after b\r\nc\r\n");
  EXPECT_EQ(write(kept, {"a"}), "a\r\n#after a\r\n#after b\r\n");
  EXPECT_EQ(write(kept, {}), "#after a\r\n#after b\r\n");
}

TEST(KeptLinesTest, RepeatedAnchorsMatchOccurrenceByOccurrence) {
  const KeptLines kept = read({"x", "#first x", "y", "x", "#second x"});
  EXPECT_EQ(write(kept, {"x", "y", "x"}), "x\r\n#first x\r\ny\r\nx\r\n#second x\r\n");
  // The second x is no longer written: its line stays after y.
  EXPECT_EQ(write(kept, {"x", "y"}), "x\r\n#first x\r\ny\r\n#second x\r\n");
}

TEST(KeptLinesTest, LinesKeptAtTheEndFollowEverythingAndMarksPlaceWithoutALine) {
  KeptLines kept;
  kept.understood("a");
  kept.understood("a-end");
  kept.keep("#after the block");
  kept.keepAtEnd("#unread 1");
  kept.keepAtEnd("#unread 2");
  std::string out;
  KeptLines::Writer writer(&kept, out);
  writer.line("a", "a");
  writer.line("a2", "more of a");
  writer.mark("a-end");
  writer.line("new", "new");
  writer.finish();
  EXPECT_EQ(out, "a\r\nmore of a\r\n#after the block\r\nnew\r\n#unread 1\r\n#unread 2\r\n");
  EXPECT_EQ(kept.lines(), (std::vector<std::string>{"#after the block", "#unread 1", "#unread 2"}));
}

TEST(KeptLinesTest, WithoutKeptLinesTheWriterWritesOnlyItsOwn) {
  KeptLines none;
  none.understood("a");
  std::string out;
  KeptLines::Writer writer(&none, out);
  EXPECT_FALSE(writer.placing());
  writer.line("a", "a");
  writer.finish();
  EXPECT_EQ(out, "a\r\n");
  std::string plain;
  KeptLines::Writer nothing(nullptr, plain);
  nothing.line("", "x");
  nothing.finish();
  EXPECT_EQ(plain, "x\r\n");
}

}  // namespace
}  // namespace vonel::files
