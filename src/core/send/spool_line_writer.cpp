#include "core/send/spool_line_writer.h"

namespace vonel::send {
namespace {

constexpr std::size_t kBlockBytes = 1 << 16;

}  // namespace

void SpoolLineWriter::line(std::string_view text) {
  buffer_ += text;
  buffer_ += "\r\n";
  if (buffer_.size() >= kBlockBytes) flush();
}

void SpoolLineWriter::flush() {
  file_.write(buffer_);
  buffer_.clear();
}

}  // namespace vonel::send
