// Any bytes as a word table file: loaded, looked up, altered and written back.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/bayes/word_table.h"
#include "core/log/app_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  vonel::bayes::WordTable table;
  table.loadText(bytes);
  for (std::int32_t i = 1; i <= table.lastRecord; ++i) {
    const std::string key = table.keyAt(i);
    table.addCount(key, static_cast<std::int16_t>(i % 7 - 3));
    if (i % 3 == 0) {
      try {
        table.remove(key);
      } catch (const vonel::AppError&) {
        // A key that a repeated hash already removed.
      }
    }
  }
  vonel::bayes::WordTable reloaded;
  reloaded.loadText(table.fileText());
  return 0;
}
