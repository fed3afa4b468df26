#include "core/files/files.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/log/app_error.h"
#include "core/time/clock.h"
#include "core/text/strings.h"

namespace vonel::files {
namespace {

std::string pathText(const fs::path& p) { return p.string(); }

fs::path temporarySibling(const fs::path& file) {
  static std::atomic<unsigned> counter{0};
#ifdef _WIN32
  const int pid = _getpid();
#else
  const int pid = static_cast<int>(getpid());
#endif
  return file.parent_path() /
         ("." + file.filename().string() + ".tmp" + std::to_string(pid) + "-" + std::to_string(++counter));
}

#ifndef _WIN32
void writeAll(int fd, std::string_view bytes, const fs::path& file) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw AppError::fromErrno(errno, pathText(file));
    }
    done += static_cast<std::size_t>(n);
  }
}
#endif

}  // namespace

bool fileExists(const fs::path& file) {
  std::error_code ec;
  return fs::is_regular_file(file, ec);
}

bool folderExists(const fs::path& folder) {
  std::error_code ec;
  return fs::is_directory(folder, ec);
}

bool mkMissingDir(const fs::path& folder) {
  std::error_code ec;
  if (fs::is_directory(folder, ec)) return true;
  fs::create_directories(folder, ec);
  return fs::is_directory(folder, ec);
}

std::string loadTextFile(const fs::path& file) { return readFileStart(file, std::string::npos); }

std::string readFileStart(const fs::path& file, std::size_t limit) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) throw AppError::fromErrno(errno ? errno : ENOENT, pathText(file));
  // The size known up front makes one allocation and one read; a file that
  // grows meanwhile, or tells no size, is read on in pieces.
  const auto told = in.tellg();
  in.seekg(0);
  std::string bytes;
  const std::size_t expected = told > 0 ? static_cast<std::size_t>(told) : 0;
  bytes.resize(std::min(expected, limit));
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  char buffer[1 << 16];
  while (bytes.size() < limit && in && (in.read(buffer, sizeof buffer), in.gcount() > 0)) {
    bytes.append(buffer, std::min(static_cast<std::size_t>(in.gcount()), limit - bytes.size()));
  }
  if (in.bad()) throw AppError(error_number::kDeviceIo, "Device I/O error: " + pathText(file));
  return bytes;
}

FileView::FileView(const fs::path& file) {
#ifndef _WIN32
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw AppError::fromErrno(errno, pathText(file));
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

void writeTextFile(const fs::path& file, std::string_view bytes) { writeTextFile(file, bytes, Durability::Synced); }

void writeTextFile(const fs::path& file, std::string_view bytes, Durability durability) {
  AtomicFileWriter writer(file, durability);
  writer.write(bytes);
  writer.commit();
}

AtomicFileWriter::AtomicFileWriter(fs::path file, Durability durability)
    : file_(std::move(file)), temporary_(temporarySibling(file_)), durability_(durability) {
#ifdef _WIN32
  out_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!out_) throw AppError::fromErrno(errno ? errno : EACCES, pathText(file_));
#else
  fd_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd_ < 0) throw AppError::fromErrno(errno, pathText(file_));
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
  if (!out_) throw AppError(error_number::kDiskFull, "Disk full: " + pathText(file_));
#else
  writeAll(fd_, bytes, file_);
#endif
}

void AtomicFileWriter::commit() {
#ifdef _WIN32
  out_.flush();
  if (!out_) throw AppError(error_number::kDiskFull, "Disk full: " + pathText(file_));
  out_.close();
#else
  if (durability_ == Durability::Synced && ::fsync(fd_) != 0) throw AppError::fromErrno(errno, pathText(file_));
  const int closed = ::close(fd_);
  fd_ = -1;
  if (closed != 0) {
    const int saved = errno;
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    committed_ = true;
    throw AppError::fromErrno(saved, pathText(file_));
  }
#endif
  std::error_code ec;
  fs::rename(temporary_, file_, ec);
  committed_ = true;
  if (ec) {
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    throw AppError::fromErrno(ec.value(), pathText(file_));
  }
}

void appendToFile(const fs::path& file, std::string_view bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::app);
  if (!out) throw AppError::fromErrno(errno ? errno : EACCES, pathText(file));
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.flush();
  if (!out) throw AppError(error_number::kDiskFull, "Disk full: " + pathText(file));
}

bool eraseFile(const fs::path& file) {
  std::error_code ec;
  fs::remove(file, ec);
  return !ec;
}

bool isReadOnly(const fs::path& file) {
  std::error_code ec;
  const auto status = fs::status(file, ec);
  if (ec || !fs::exists(status)) return false;
  return (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

bool makeReadWrite(const fs::path& file) {
  std::error_code ec;
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, ec);
  return !ec && !isReadOnly(file);
}

std::optional<std::uintmax_t> fileSize(const fs::path& file) {
  std::error_code ec;
  const auto size = fs::file_size(file, ec);
  if (ec) return std::nullopt;
  return size;
}

std::optional<text::DateTime> fileDate(const fs::path& file) {
  std::error_code ec;
  const auto written = fs::last_write_time(file, ec);
  if (ec) return std::nullopt;
  return localFileTime(written);
}

std::optional<FileFacts> fileFactsOf(const fs::path& file) {
#ifdef _WIN32
  std::error_code ec;
  const auto size = fs::file_size(file, ec);
  if (ec) return std::nullopt;
  const auto written = fs::last_write_time(file, ec);
  if (ec) return std::nullopt;
  return FileFacts{size, localFileTime(written)};
#else
  struct stat facts {};
  if (::stat(file.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return std::nullopt;
  return FileFacts{static_cast<std::uintmax_t>(facts.st_size), localDateTime(facts.st_mtime)};
#endif
}

text::DateTime localFileTime(fs::file_time_type written) {
  // An exact conversion: times of one file must compare equal from one look to the next.
  const auto system = std::chrono::floor<std::chrono::seconds>(fs::file_time_type::clock::to_sys(written));
  return localDateTime(std::chrono::system_clock::to_time_t(system));
}

std::optional<fs::path> findAnyCase(const fs::path& folder, std::string_view name) {
  const fs::path exact = folder / fs::path(std::string(name));
  std::error_code ec;
  if (fs::exists(exact, ec)) return exact;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (text::equalsNoCase(it->path().filename().string(), name)) return it->path();
  }
  return std::nullopt;
}

fs::path resolveAnyCase(const fs::path& folder, std::string_view name) {
  return findAnyCase(folder, name).value_or(folder / fs::path(std::string(name)));
}

std::string volumeOf(const fs::path& file) {
  const fs::path absolute = fs::absolute(file);
  if (absolute.has_root_name()) {
    std::string drive = absolute.root_name().string();
    if (!drive.empty() && drive.back() == ':') drive.pop_back();
    return drive;
  }
#ifndef _WIN32
  // The mount point: climb while the parent lies on the same device.
  fs::path current = absolute.parent_path();
  struct stat here {};
  while (!current.empty() && ::stat(current.c_str(), &here) != 0) current = current.parent_path();
  for (;;) {
    const fs::path parent = current.parent_path();
    struct stat above {};
    if (parent == current || ::stat(parent.c_str(), &above) != 0 || above.st_dev != here.st_dev) break;
    current = parent;
  }
  return current.string();
#else
  return absolute.root_path().string();
#endif
}

}  // namespace vonel::files

#include "core/text/cp1252.h"

namespace vonel::files {

fs::path pathFromText(std::string_view text) {
  const std::string utf8 = text::cp1252ToUtf8(text);
  return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string textFromPath(const fs::path& path) {
  const std::u8string utf8 = path.u8string();
  return text::utf8ToCp1252(std::string(utf8.begin(), utf8.end()));
}

}  // namespace vonel::files
