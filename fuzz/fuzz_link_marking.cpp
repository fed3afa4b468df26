// Every body a message can carry goes through the preview's text and its
// link marks: the marks must lie inside the text, never start on a blank or
// a line end, and a mail mark must hold its "@" and a point.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/message/preview_body.h"
#include "core/text/link_marking.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view body(reinterpret_cast<const char*>(data), size);
  const std::string shown = vonel::message::previewBody(body);
  if (shown.size() > 2 * body.size()) std::abort();
  for (const std::string_view text : {body, std::string_view(shown)}) {
    for (const vonel::text::LinkSpan& link : vonel::text::underlineLinks(text)) {
      if (link.length == 0 || link.start + link.length > text.size()) std::abort();
      const std::string_view marked = text.substr(link.start, link.length);
      if (marked.find_first_of(" \r\n\"") != std::string_view::npos) std::abort();
    }
  }
  return 0;
}
