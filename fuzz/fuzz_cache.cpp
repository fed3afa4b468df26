// Any bytes as a folder's "cache.xml" and as the texts of its tag files.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/store/cache_file.h"
#include "core/store/cache_text.h"
#include "core/store/tag_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  vonel::store::readCacheText(
      bytes, "/store/Messages", [](const std::filesystem::path& file) { return !file.empty(); },
      [&](vonel::store::CachedMessage&& message) {
        std::string element;  // what was read must write back
        vonel::store::appendCacheElement(element, message, message.fileDate);
      });
  vonel::store::htmlDecode(bytes);
  vonel::store::unreadCountFromText(bytes);
  vonel::store::dayFromTagText(bytes);
  vonel::store::removeCount(bytes);
  return 0;
}
