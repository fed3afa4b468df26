#pragma once
// A failure inside one step of the program: a number and a description. The
// log lines and error reports print the number, so each failure keeps its own.
#include <exception>
#include <stdexcept>
#include <string>

namespace vonel {

namespace error_number {
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscriptOutOfRange = 9;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kInternal = 51;
inline constexpr int kBadFileName = 52;
inline constexpr int kFileNotFound = 53;
inline constexpr int kDeviceIo = 57;
inline constexpr int kDiskFull = 61;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kPathFileAccess = 75;
inline constexpr int kPathNotFound = 76;
}  // namespace error_number

class AppError : public std::runtime_error {
 public:
  AppError(int number, std::string description)
      : std::runtime_error(description), number_(number), description_(std::move(description)) {}

  int number() const { return number_; }
  const std::string& description() const { return description_; }

  // The error of a file operation that failed with the given system errno.
  static AppError fromErrno(int errnoValue, const std::string& what);
  // Whatever was thrown, as an AppError.
  static AppError from(std::exception_ptr thrown);

 private:
  int number_;
  std::string description_;
};

}  // namespace vonel
