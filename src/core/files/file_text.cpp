#include "core/files/file_text.h"

#include <algorithm>
#include <cerrno>
#include <fstream>

#include "core/log/app_error.h"

namespace vonel::files {

std::string loadTextFile(const std::filesystem::path& file) { return readFileStart(file, std::string::npos); }

std::string readFileStart(const std::filesystem::path& file, std::size_t limit) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) throw AppError::fromErrno(errno ? errno : ENOENT, file.string());
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
  if (in.bad()) throw AppError(error_number::kDeviceIo, "Device I/O error: " + file.string());
  return bytes;
}

}  // namespace vonel::files
