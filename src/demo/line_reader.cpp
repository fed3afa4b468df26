#include "demo/line_reader.h"

namespace vonel::sandbox {

void LineReader::append(std::string_view bytes) {
  if (start_ > 0 && start_ >= buffer_.size() / 2) {
    buffer_.erase(0, start_);
    start_ = 0;
  }
  buffer_.append(bytes);
}

std::optional<ReadLine> LineReader::next() {
  const std::size_t end = buffer_.find('\n', start_);
  if (end == std::string::npos) {
    if (buffer_.size() - start_ > limit_) {
      discarding_ = true;
      buffer_.clear();
      start_ = 0;
    }
    return std::nullopt;
  }
  std::string_view line(buffer_.data() + start_, end - start_);
  start_ = end + 1;
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  if (discarding_ || line.size() > limit_) {
    discarding_ = false;
    return ReadLine{LineKind::TooLong, {}};
  }
  return ReadLine{LineKind::Complete, std::string(line)};
}

}  // namespace vonel::sandbox
