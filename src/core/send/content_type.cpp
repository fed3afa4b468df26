#include "core/send/content_type.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/text/strings.h"

namespace vonel::send {
namespace {

// Sorted by extension, for a binary search.
constexpr std::array<std::pair<std::string_view, std::string_view>, 52> kTypes{{
    {".7z", "application/x-7z-compressed"},
    {".avi", "video/x-msvideo"},
    {".bmp", "image/bmp"},
    {".css", "text/css"},
    {".csv", "text/csv"},
    {".doc", "application/msword"},
    {".docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {".eml", "message/rfc822"},
    {".exe", "application/x-msdownload"},
    {".gif", "image/gif"},
    {".gz", "application/x-gzip"},
    {".htm", "text/html"},
    {".html", "text/html"},
    {".ico", "image/x-icon"},
    {".ics", "text/calendar"},
    {".jpe", "image/jpeg"},
    {".jpeg", "image/jpeg"},
    {".jpg", "image/jpeg"},
    {".js", "application/javascript"},
    {".json", "application/json"},
    {".log", "text/plain"},
    {".m4a", "audio/mp4"},
    {".mid", "audio/mid"},
    {".mov", "video/quicktime"},
    {".mp3", "audio/mpeg"},
    {".mp4", "video/mp4"},
    {".mpeg", "video/mpeg"},
    {".mpg", "video/mpeg"},
    {".odp", "application/vnd.oasis.opendocument.presentation"},
    {".ods", "application/vnd.oasis.opendocument.spreadsheet"},
    {".odt", "application/vnd.oasis.opendocument.text"},
    {".pdf", "application/pdf"},
    {".png", "image/png"},
    {".pps", "application/vnd.ms-powerpoint"},
    {".ppt", "application/vnd.ms-powerpoint"},
    {".pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    {".rtf", "application/msword"},
    {".svg", "image/svg+xml"},
    {".tar", "application/x-tar"},
    {".tgz", "application/x-compressed"},
    {".tif", "image/tiff"},
    {".tiff", "image/tiff"},
    {".txt", "text/plain"},
    {".vcf", "text/x-vcard"},
    {".wav", "audio/wav"},
    {".webp", "image/webp"},
    {".wma", "audio/x-ms-wma"},
    {".wmv", "video/x-ms-wmv"},
    {".xls", "application/vnd.ms-excel"},
    {".xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {".xml", "text/xml"},
    {".zip", "application/x-zip-compressed"},
}};

static_assert(std::is_sorted(kTypes.begin(), kTypes.end()));

}  // namespace

std::string contentTypeOf(std::string_view fileName, std::string_view defaultType) {
  const std::size_t dot = fileName.rfind('.');
  if (dot == std::string_view::npos) return std::string(defaultType);
  const std::string extension = text::lower(fileName.substr(dot));
  const auto found = std::lower_bound(kTypes.begin(), kTypes.end(), extension,
                                      [](const auto& entry, const std::string& key) { return entry.first < key; });
  if (found == kTypes.end() || found->first != extension) return std::string(defaultType);
  return std::string(found->second);
}

}  // namespace vonel::send
