#include "core/files/file_view.h"

#include <cerrno>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/files/file_text.h"
#include "core/log/app_error.h"

namespace vonel::files {

FileView::FileView(const std::filesystem::path& file) {
#ifndef _WIN32
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw AppError::fromErrno(errno, file.string());
  struct stat facts {};
  if (::fstat(fd, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size > 0) {
    void* mapped = ::mmap(nullptr, static_cast<std::size_t>(facts.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    if (mapped != MAP_FAILED) {
      mapped_ = mapped;
      mappedSize_ = static_cast<std::size_t>(facts.st_size);
      text_ = std::string_view(static_cast<const char*>(mapped), mappedSize_);
    }
  }
  ::close(fd);
  if (mapped_ != nullptr) return;
#endif
  copy_ = loadTextFile(file);
  text_ = copy_;
}

FileView::~FileView() {
#ifndef _WIN32
  if (mapped_ != nullptr) ::munmap(mapped_, mappedSize_);
#endif
}

}  // namespace vonel::files
