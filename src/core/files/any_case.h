#pragma once
// File names looked up without regard to case, for data files whose name a
// user or another system may have written in any case.
#include <filesystem>
#include <optional>
#include <string_view>

namespace vonel::files {

// The existing file in the folder whose name equals `name` ignoring case;
// the exact spelling wins. Only the name is folded, never the folder.
std::optional<std::filesystem::path> findAnyCase(const std::filesystem::path& folder, std::string_view name);
// `folder / name` if some spelling of it exists there, that spelling; else as given.
std::filesystem::path resolveAnyCase(const std::filesystem::path& folder, std::string_view name);

}  // namespace vonel::files
