#include "core/message/attachment_files.h"

#include <algorithm>
#include <array>

#include "core/log/app_error.h"
#include "core/message/transfer_encoding.h"
#include "core/services/file_subs.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kModule = "modAttachments";
constexpr std::string_view kFallbackName = "attachment";
// Short enough that the UTF-8 form of any Windows-1252 name fits a file system's 255 bytes.
constexpr std::size_t kLongestName = 80;
constexpr std::size_t kLongestExtension = 16;

bool isDeviceName(std::string_view stem) {
  static constexpr std::array<std::string_view, 4> kDevices = {"CON", "PRN", "AUX", "NUL"};
  const std::string upper = text::upper(stem);
  if (std::find(kDevices.begin(), kDevices.end(), upper) != kDevices.end()) return true;
  return upper.size() == 4 && (upper.starts_with("COM") || upper.starts_with("LPT")) && upper[3] >= '1' &&
         upper[3] <= '9';
}

// The part of the name that Windows reads as a device: all before the first dot, blanks dropped.
bool namesADevice(std::string_view name) {
  return isDeviceName(text::trimView(name.substr(0, name.find('.'))));
}

std::string cutToLength(std::string name) {
  if (name.size() <= kLongestName) return name;
  const std::size_t dot = name.rfind('.');
  const std::size_t extensionLength = dot != std::string::npos && name.size() - dot <= kLongestExtension
                                          ? name.size() - dot
                                          : 0;
  const std::string extension = name.substr(name.size() - extensionLength);
  return text::trimRight(name.substr(0, kLongestName - extensionLength)) + extension;
}

void logWriteFailure(cSharedLogging* log, std::string_view procedure) {
  if (log) logFailure(*log, AppError::from(std::current_exception()), procedure, kModule);
}

}  // namespace

std::string DecodedPartBytes(std::string_view data, std::string_view encoding) {
  if (encoding == "base64") return DecodeBase64Bytes(data);
  if (encoding == "quoted-printable") return DecodeQuotedPrintableBytes(data);
  return std::string(data);
}

void WriteFile(const fs::path& path, std::string_view data, std::string_view encoding) {
  files::WriteTextFile(path, DecodedPartBytes(data, encoding));
}

std::string SafeAttachmentName(std::string_view name) {
  std::string_view plain = name.substr(name.find_last_of("/\\") + 1);  // npos + 1 is 0
  if (plain.size() >= 2 && plain[1] == ':') plain.remove_prefix(2);
  std::string safe = text::CleanString(plain);
  std::erase_if(safe, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  const std::size_t first = safe.find_first_not_of(". ");
  safe = first == std::string::npos ? std::string() : safe.substr(first, safe.find_last_not_of(". ") + 1 - first);
  if (safe.empty()) return std::string(kFallbackName);
  if (namesADevice(safe)) safe.insert(std::min(safe.find('.'), safe.size()), "1");
  return cutToLength(std::move(safe));
}

fs::path AttachmentPath(const fs::path& folder, std::string_view filename) {
  return folder / files::PathFromText(SafeAttachmentName(filename));
}

std::optional<fs::path> SaveAttachment(const clsMimeType& part, const fs::path& folder, cSharedLogging* log) {
  try {
    const fs::path file = AttachmentPath(folder, part.Filename);
    WriteFile(file, part.Data, part.Encoding);
    return file;
  } catch (...) {
    logWriteFailure(log, "WriteFile");
    return std::nullopt;
  }
}

std::vector<fs::path> SaveAllAttachmentsNoUserInput(const clsMessage& message, const fs::path& folder,
                                                    cSharedLogging* log) {
  std::vector<fs::path> written;
  for (std::size_t i = 1; i <= message.MimePartCount(); ++i) {
    const clsMimeType& part = message.MimePart(i);
    if (part.Filename.empty()) continue;
    if (auto file = SaveAttachment(part, folder, log)) written.push_back(std::move(*file));
  }
  return written;
}

bool IsAttachedMessage(std::string_view filename) { return text::upper(filename).ends_with(".EML"); }

std::optional<fs::path> WriteAttachmentToOpen(clsMessage& message, std::size_t index, const fs::path& folder,
                                              cSharedLogging* log) {
  const clsMimeType& part = message.MimePart(index);
  if (part.Filename.empty()) return std::nullopt;
  message.AttachmentsFolder = files::TextFromPath(folder);
  if (text::findNoCase(part.Filename, ".htm") && !IsAttachedMessage(part.Filename)) {
    SaveAllAttachmentsNoUserInput(message, folder, log);
    const fs::path file = AttachmentPath(folder, part.Filename);
    return files::FileExists(file) ? std::optional<fs::path>(file) : std::nullopt;
  }
  return SaveAttachment(part, folder, log);
}

}  // namespace vonel::message
