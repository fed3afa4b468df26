#include "core/text/link_marking.h"

#include <algorithm>
#include <string>

#include "core/text/strings.h"

namespace vonel::text {
namespace {

constexpr std::string_view kWebStartStops = " ;!'(<[\r\n\"";
constexpr std::string_view kMailStartStops = " ;!'(<[\r\n\",:";
constexpr std::string_view kEndStops = " !'>)]\r\n\"";

class LinkMarker {
 public:
  explicit LinkMarker(std::string_view text) : text_(text), underlined_(text.size(), false) {}

  void markUrl(std::string_view marker) {
    if (findNoCase(text_, marker) == 0) return;
    const bool mail = marker == "@";
    const std::string_view startStops = mail ? kMailStartStops : kWebStartStops;
    // Hits come in order, so the stop before each and the stop after its
    // start only ever move forwards; tracking them keeps the scan linear.
    std::size_t scanned = 0;
    std::size_t start = 0;
    std::size_t end = std::string_view::npos;
    std::size_t dot = std::string_view::npos;  // the first "." from the start on, for mail addresses
    std::size_t handledStart = std::string_view::npos;  // a start always gives the same selection
    for (std::size_t hit = find(text_, marker); hit != 0; hit = find(text_, marker, hit + 1)) {
      const std::size_t at = hit - 1;
      if (underlined_[at]) return;
      for (; scanned <= at; ++scanned) {
        if (startStops.find(text_[scanned]) != std::string_view::npos) start = scanned + 1;
      }
      if (end == std::string_view::npos || end < start) {
        end = text_.find_first_of(kEndStops, start);
        if (end == std::string_view::npos) end = text_.size();
      }
      if (start == handledStart) continue;
      handledStart = start;
      std::string_view selected = text_.substr(start, end - start);
      if (mail) {
        if (dot == std::string_view::npos || dot < start) dot = std::min(text_.find('.', start), text_.size());
        if (dot >= end || selected.starts_with(marker)) continue;
      }
      if (!mail && selected.ends_with(',')) selected.remove_suffix(1);
      if (!selected.empty()) underline(start, selected.size());
    }
  }

  std::vector<LinkSpan> take() { return std::move(links_); }

 private:
  void underline(std::size_t start, std::size_t length) {
    for (std::size_t i = start; i < start + length; ++i) underlined_[i] = true;
    links_.push_back(LinkSpan{start, length});
  }

  std::string_view text_;
  std::vector<bool> underlined_;
  std::vector<LinkSpan> links_;
};

}  // namespace

std::vector<LinkSpan> underlineLinks(std::string_view text) {
  LinkMarker marker(text);
  for (const std::string_view urlMarker : {"http:", "ftp:", "https:", "www.", "@"}) marker.markUrl(urlMarker);
  return marker.take();
}

}  // namespace vonel::text
