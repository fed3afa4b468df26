#pragma once
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace vonel::files {

// A whole file to read through, mapped into memory where the system can, so
// that a large file costs no copy. Throws AppError when the file can't be read.
class FileView {
 public:
  explicit FileView(const std::filesystem::path& file);
  ~FileView();
  FileView(const FileView&) = delete;
  FileView& operator=(const FileView&) = delete;

  std::string_view text() const { return text_; }

 private:
  std::string copy_;  // where mapping isn't possible
  void* mapped_ = nullptr;
  std::size_t mappedSize_ = 0;
  std::string_view text_;
};

}  // namespace vonel::files
