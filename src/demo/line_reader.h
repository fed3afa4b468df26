#pragma once
// Splits what a client sends into lines, holding at most `limit` bytes of a
// line that has not ended: a line longer than that is thrown away as it
// comes and reported once, when it ends, so no client can make the sandbox
// hold more than the limit.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vonel::sandbox {

enum class LineKind { Complete, TooLong };

struct ReadLine {
  LineKind kind = LineKind::Complete;
  std::string text;  // without its line end; empty for a line that was too long
};

class LineReader {
 public:
  explicit LineReader(std::size_t limit) : limit_(limit) {}

  void setLimit(std::size_t limit) { limit_ = limit; }
  void append(std::string_view bytes);
  // The next whole line, or nothing until more bytes come.
  std::optional<ReadLine> next();

 private:
  std::size_t limit_;
  std::string buffer_;
  std::size_t start_ = 0;
  bool discarding_ = false;
};

}  // namespace vonel::sandbox
