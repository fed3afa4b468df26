#include "core/log/app_error.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>

namespace vonel {

AppError AppError::fromErrno(int errnoValue, const std::string& what) {
  const std::string suffix = what.empty() ? std::string() : ": " + what;
  switch (errnoValue) {
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return {error_number::kDiskFull, "Disk full" + suffix};
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return {error_number::kPathFileAccess, "Path/File access error" + suffix};
    case ENOENT:
    case ENOTDIR:
      return {error_number::kPathNotFound, "Path not found" + suffix};
    case ENAMETOOLONG:
    case EINVAL:
      return {error_number::kBadFileName, "Bad file name or number" + suffix};
    case ENOMEM:
      return {error_number::kOutOfMemory, "Out of memory" + suffix};
    default:
      return {error_number::kDeviceIo, std::string("Device I/O error (") + std::strerror(errnoValue) + ")" + suffix};
  }
}

AppError AppError::from(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const AppError& e) {
    return e;
  } catch (const std::filesystem::filesystem_error& e) {
    return fromErrno(e.code().value(), e.path1().string());
  } catch (const std::bad_alloc&) {
    return {error_number::kOutOfMemory, "Out of memory"};
  } catch (const std::out_of_range& e) {
    return {error_number::kSubscriptOutOfRange, std::string("Subscript out of range: ") + e.what()};
  } catch (const std::exception& e) {
    return {error_number::kInternal, std::string("Internal error: ") + e.what()};
  } catch (...) {
    return {error_number::kInternal, "Internal error"};
  }
}

}  // namespace vonel
