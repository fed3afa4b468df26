// Any bytes as a log file's text: its newest lines, and the error report and
// mail link made of it. The link must carry none of the characters that
// would end or split its body.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/log/error_report.h"
#include "core/log/log_tail.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t limit = size == 0 ? 0 : data[0];
  const std::size_t start = vonel::tailStart(bytes, limit);
  if (start > size || (size > limit && size - start > limit)) __builtin_trap();

  const vonel::AppInfo info{"Vonel", "1.0", "os", "/", "/"};
  const vonel::ErrorReport report{std::string(bytes.substr(0, size / 2)), std::string(bytes.substr(size / 2)),
                                  std::string(bytes)};
  const std::string link = vonel::errorReportMailLink(info, report, "bugs@example.org", "/tmp/FullLog.txt");
  const std::string_view body = std::string_view(link).substr(link.find("&body=") + 6);
  if (body.find_first_of("?&# \r\n") != std::string_view::npos) __builtin_trap();
  return 0;
}
