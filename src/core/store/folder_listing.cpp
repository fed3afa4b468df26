#include "core/store/folder_listing.h"

#include <algorithm>

#include "core/services/file_subs.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace fs = std::filesystem;

namespace {

bool isMessageName(std::string_view name) {
  constexpr std::string_view kExtension = ".eml";
  return name.size() > kExtension.size() && text::equalsNoCase(name.substr(name.size() - kExtension.size()), kExtension);
}

}  // namespace

std::vector<ListedFile> ListMessageFiles(const fs::path& folder) {
  std::vector<ListedFile> files;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    std::string name = it->path().filename().string();
    if (!isMessageName(name)) continue;
    std::error_code statError;
    if (!it->is_regular_file(statError)) continue;
    const auto written = it->last_write_time(statError);
    if (statError) continue;  // gone between the listing and the look
    files.push_back({std::move(name), files::LocalFileTime(written)});
  }
  std::sort(files.begin(), files.end(), [](const ListedFile& a, const ListedFile& b) {
    return std::lexicographical_compare(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                        [](char x, char y) {
                                          return static_cast<unsigned char>(text::upperByte(x)) <
                                                 static_cast<unsigned char>(text::upperByte(y));
                                        });
  });
  return files;
}

}  // namespace vonel::store
