#pragma once
// Store folders of made-up mail for the message list's tests, benchmark and
// screenshots: the same seed gives the same folder, byte for byte.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "core/context/app_context.h"
#include "core/text/dates.h"

namespace vonel::testing {

// One message as the generator writes it.
struct GeneratedMessage {
  std::string name;  // the file name; its case follows the read state when written
  std::string from = "\"Ann Example\" <ann@example.com>";
  std::string to = "bob@example.com";
  std::string subject = "Hello";
  text::DateTime received{2026, 11, 23, 9, 0, 0};
  std::string sendDate = "Mon, 23 Nov 2026 09:00:00 +0000";
  std::string tags;
  bool read = false;
  bool replied = false;
  bool highPriority = false;
  std::size_t bodyBytes = 200;
};

// Writes the message into the folder and gives its path.
std::filesystem::path writeGeneratedMessage(const std::filesystem::path& folder, const GeneratedMessage& message);

struct GeneratedFolderPlan {
  std::size_t count = 100;
  std::uint32_t seed = 1;
  // The newest message arrives at this moment; the others spread over the 60 days before it.
  text::DateTime newest{2026, 11, 23, 9, 0, 0};
  // Also fill a cache from the files and write its "cache.xml".
  bool warmCache = false;
};

struct GeneratedFolder {
  std::vector<std::filesystem::path> files;
  std::size_t unread = 0;
};

GeneratedFolder generateStoreFolder(AppContext& context, const std::filesystem::path& folder,
                                    const GeneratedFolderPlan& plan);

}  // namespace vonel::testing
