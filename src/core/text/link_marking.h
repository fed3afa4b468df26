#pragma once
// Which stretches of a preview text get underlined as links: web addresses
// by their markers ("http:", "ftp:", "https:", "www.") and mail addresses by
// "@". The window underlines and colours what this finds.
#include <cstddef>
#include <string_view>
#include <vector>

namespace vonel::text {

struct LinkSpan {
  std::size_t start;  // 0-based
  std::size_t length;
};

// Markers are taken in order; a marker whose next hit lies inside a link
// already found stops its scan there, so later hits of it stay plain.
std::vector<LinkSpan> underlineLinks(std::string_view text);

}  // namespace vonel::text
