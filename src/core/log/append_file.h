#pragma once
// The log's way to a file: a plain append, not the replacement that user
// data gets, since a log line lost in a crash costs nothing. It lies in the
// log's layer because the file helpers above it report through AppError.
#include <filesystem>
#include <string_view>

namespace vonel {

// Appends the bytes, creating the file if needed. Throws AppError.
void appendToFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace vonel
