#include "core/message/attachment_files.h"

#include <algorithm>
#include <array>

#include "core/files/atomic_file.h"
#include "core/files/path_text.h"
#include "core/log/app_error.h"
#include "core/log/log_places.h"
#include "core/message/transfer_encoding.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kModule = log_places::kAttachmentsModule;
constexpr std::string_view kFallbackName = "attachment";
constexpr std::string_view kSaveTitle = "Save attachments";
constexpr std::string_view kTitle = "Vonel";
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

// The part's bytes into the file; a failure is logged, not thrown.
std::optional<fs::path> writeLogged(const fs::path& file, const MimePart& part, Log* log) {
  try {
    writeFile(file, part.data, part.encoding);
    return file;
  } catch (...) {
    if (log) logFailure(*log, AppError::from(std::current_exception()), log_places::kWriteFile, kModule);
    return std::nullopt;
  }
}

}  // namespace

std::string decodedPartBytes(std::string_view data, std::string_view encoding) {
  // Not the display decoders: they pad base64 with blanks, keep soft breaks as
  // line ends and trim, and a saved picture or archive would not open.
  if (encoding == "base64") return decodeBase64Bytes(data);
  if (encoding == "quoted-printable") return decodeQuotedPrintableBytes(data);
  return std::string(data);
}

void writeFile(const fs::path& path, std::string_view data, std::string_view encoding) {
  files::writeTextFile(path, decodedPartBytes(data, encoding));
}

std::string safeAttachmentName(std::string_view name) {
  std::string_view plain = name.substr(name.find_last_of("/\\") + 1);  // npos + 1 is 0
  if (plain.size() >= 2 && plain[1] == ':') plain.remove_prefix(2);
  std::string safe = text::cleanString(plain);
  std::erase_if(safe, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  safe = cutToLength(std::move(safe));
  // Leading dots hide a file or climb a folder; Windows drops trailing ones.
  const std::size_t first = safe.find_first_not_of(". ");
  if (first == std::string::npos) return std::string(kFallbackName);
  safe.erase(safe.find_last_not_of(". ") + 1);
  safe.erase(0, first);
  if (namesADevice(safe)) safe.insert(std::min(safe.find('.'), safe.size()), 1, '1');
  return safe;
}

fs::path attachmentPath(const fs::path& folder, std::string_view filename) {
  return folder / files::pathFromText(safeAttachmentName(filename));
}

std::optional<fs::path> saveAttachment(const MimePart& part, const fs::path& folder, Log* log) {
  return writeLogged(attachmentPath(folder, part.filename), part, log);
}

std::vector<fs::path> saveAllAttachmentsNoUserInput(const Message& message, const fs::path& folder,
                                                    Log* log) {
  std::vector<fs::path> written;
  for (std::size_t i = 1; i <= message.mimePartCount(); ++i) {
    const MimePart& part = message.mimePart(i);
    if (part.filename.empty()) continue;
    if (auto file = saveAttachment(part, folder, log)) written.push_back(std::move(*file));
  }
  return written;
}

std::vector<fs::path> saveAllAttachments(const Message& message, bool ask, const fs::path& folder,
                                         SaveFileChooser& chooser, Prompt& prompt, Log* log) {
  std::vector<const MimePart*> named;
  for (std::size_t i = 1; i <= message.mimePartCount(); ++i) {
    if (!message.mimePart(i).filename.empty()) named.push_back(&message.mimePart(i));
  }
  if (named.empty()) return {};
  if (named.size() == 1) {
    const fs::path proposal = attachmentPath(folder, named.front()->filename);
    // The file the user picked is taken as chosen; only names from mail are made safe.
    const auto chosen = ask ? chooser.chooseSaveFile(kSaveTitle, proposal) : std::optional<fs::path>(proposal);
    if (!chosen) return {};
    if (auto file = writeLogged(*chosen, *named.front(), log)) return {std::move(*file)};
    prompt.ask("The attachment could not be saved to:\r\n" + files::textFromPath(*chosen), Buttons::Ok, kTitle);
    return {};
  }
  fs::path target = folder;
  if (ask) {
    const auto chosen = chooser.chooseSaveFile(kSaveTitle, folder / "Click SAVE to save all files");
    if (!chosen) return {};
    target = chosen->parent_path();
  }
  const auto written = saveAllAttachmentsNoUserInput(message, target, log);
  const std::string_view outcome =
      written.size() == named.size() ? "All attachments saved to:" : "Some attachments could not be saved to:";
  prompt.ask(std::string(outcome) + "\r\n" + files::textFromPath(target), Buttons::Ok, kTitle);
  return written;
}

bool isAttachedMessage(std::string_view filename) { return text::upper(filename).ends_with(".EML"); }

std::optional<fs::path> writeAttachmentToOpen(Message& message, std::size_t index, const fs::path& folder,
                                              Log* log) {
  const MimePart& part = message.mimePart(index);
  if (part.filename.empty()) return std::nullopt;
  message.attachmentsFolder = files::textFromPath(folder);
  if (text::findNoCase(part.filename, ".htm") && !isAttachedMessage(part.filename)) {
    const auto written = saveAllAttachmentsNoUserInput(message, folder, log);
    const fs::path file = attachmentPath(folder, part.filename);
    return std::find(written.begin(), written.end(), file) != written.end() ? std::optional<fs::path>(file)
                                                                              : std::nullopt;
  }
  return saveAttachment(part, folder, log);
}

}  // namespace vonel::message
