#pragma once
// Paths kept in settings are Windows-1252 text; the file system takes UTF-8.
#include <filesystem>
#include <string>
#include <string_view>

namespace vonel::files {

std::filesystem::path pathFromText(std::string_view text);
std::string textFromPath(const std::filesystem::path& path);

}  // namespace vonel::files
