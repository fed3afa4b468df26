#pragma once
// The newest end of a log that may be far too large to show whole.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vonel {

// Where the last `limit` bytes of the text begin, moved on to the next line
// start so that no line is shown cut; a single line longer than the limit is
// cut instead of dropped.
std::size_t tailStart(std::string_view text, std::size_t limit);

// The end of the file from such a line start; none when the file is absent
// or can't be read.
std::optional<std::string> readLogTail(const std::filesystem::path& file, std::size_t limit);

}  // namespace vonel
