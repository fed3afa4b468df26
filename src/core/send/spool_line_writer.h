#pragma once
// The lines of a spool file, each ended in CR LF, handed to the file in
// blocks of about 64 KiB rather than one write per line.
#include <string>
#include <string_view>

#include "core/files/atomic_file.h"

namespace vonel::send {

class SpoolLineWriter {
 public:
  explicit SpoolLineWriter(files::AtomicFileWriter& file) : file_(file) {}
  void line(std::string_view text = {});
  // Writes what is buffered; call it before the file is committed.
  void flush();

 private:
  files::AtomicFileWriter& file_;
  std::string buffer_;
};

}  // namespace vonel::send
