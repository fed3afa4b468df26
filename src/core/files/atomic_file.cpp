#include "core/files/atomic_file.h"

#include <atomic>
#include <cerrno>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/log/app_error.h"

namespace vonel::files {
namespace {

fs::path temporarySibling(const fs::path& file) {
  static std::atomic<unsigned> counter{0};
#ifdef _WIN32
  const int pid = _getpid();
#else
  const int pid = static_cast<int>(getpid());
#endif
  const std::string name = file.filename().string();
  return file.parent_path() / ("." + name + ".tmp" + std::to_string(pid) + "-" + std::to_string(++counter));
}

#ifndef _WIN32
void writeAll(int fd, std::string_view bytes, const fs::path& file) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw AppError::fromErrno(errno, file.string());
    }
    done += static_cast<std::size_t>(n);
  }
}
#endif

}  // namespace

void writeTextFile(const fs::path& file, std::string_view bytes, Durability durability) {
  AtomicFileWriter writer(file, durability);
  writer.write(bytes);
  writer.commit();
}

void writeTextFile(const fs::path& file, std::string_view bytes, WriteBatch& batch) {
  AtomicFileWriter writer(file, batch);
  writer.write(bytes);
  writer.commit();
}

AtomicFileWriter::AtomicFileWriter(fs::path file, WriteBatch& batch)
    : AtomicFileWriter(std::move(file), Durability::Synced) {
  batch_ = &batch;
}

AtomicFileWriter::AtomicFileWriter(fs::path file, Durability durability)
    : file_(std::move(file)), temporary_(temporarySibling(file_)), durability_(durability) {
#ifdef _WIN32
  out_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!out_) throw AppError::fromErrno(errno ? errno : EACCES, file_.string());
#else
  fd_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd_ < 0) throw AppError::fromErrno(errno, file_.string());
  // Keep the permissions of the file being replaced.
  struct stat old {};
  if (::stat(file_.c_str(), &old) == 0) ::fchmod(fd_, old.st_mode & 07777);
#endif
}

AtomicFileWriter::~AtomicFileWriter() {
  if (committed_) return;
#ifdef _WIN32
  out_.close();
#else
  ::close(fd_);
#endif
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

void AtomicFileWriter::write(std::string_view bytes) {
#ifdef _WIN32
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out_) throw AppError(error_number::kDiskFull, "Disk full: " + file_.string());
#else
  writeAll(fd_, bytes, file_);
#endif
}

void AtomicFileWriter::commit() {
  // Looked at now: the batch may have been committed since the writer began.
  const bool deferred = batch_ != nullptr && batch_->isOpen();
#ifdef _WIN32
  out_.flush();
  if (!out_) throw AppError(error_number::kDiskFull, "Disk full: " + file_.string());
  out_.close();
#else
  if (durability_ == Durability::Synced && !deferred && ::fsync(fd_) != 0) {
    throw AppError::fromErrno(errno, file_.string());
  }
  const int closed = ::close(fd_);
  fd_ = -1;
  if (closed != 0) {
    const int saved = errno;
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    committed_ = true;
    throw AppError::fromErrno(saved, file_.string());
  }
#endif
  std::error_code ec;
  fs::rename(temporary_, file_, ec);
  committed_ = true;
  if (ec) {
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    throw AppError::fromErrno(ec.value(), file_.string());
  }
  if (deferred) batch_->addFile(file_);
}

}  // namespace vonel::files
