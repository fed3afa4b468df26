#pragma once
// Files read whole into memory as bytes. Failures throw AppError with the
// program's file error numbers.
#include <cstddef>
#include <filesystem>
#include <string>

namespace vonel::files {

// The whole file as bytes. Throws when it can't be read.
std::string loadTextFile(const std::filesystem::path& file);
// The first `limit` bytes of the file. Throws when it can't be read.
std::string readFileStart(const std::filesystem::path& file, std::size_t limit);

}  // namespace vonel::files
