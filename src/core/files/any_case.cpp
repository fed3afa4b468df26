#include "core/files/any_case.h"

#include <string>
#include <system_error>

#include "core/text/strings.h"

namespace vonel::files {

namespace fs = std::filesystem;

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

}  // namespace vonel::files
