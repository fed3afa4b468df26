#include "core/log/append_file.h"

#include <cerrno>
#include <fstream>

#include "core/log/app_error.h"

namespace vonel {

void appendToFile(const std::filesystem::path& file, std::string_view bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::app);
  if (!out) throw AppError::fromErrno(errno ? errno : EACCES, file.string());
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.flush();
  if (!out) throw AppError(error_number::kDiskFull, "Disk full: " + file.string());
}

}  // namespace vonel
