#include "core/store/cache_file.h"

#include <cstring>

#include "core/store/cache_text.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::store {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kVersionOpen = "<CACHEVER>";
constexpr std::string_view kVersionClose = "</CACHEVER>";

// 0-based offset of `needle` at or after `from`, any case; npos when absent.
std::size_t findNoCaseAt(std::string_view text, std::string_view needle, std::size_t from) {
  if (from > text.size()) return std::string_view::npos;
  const std::size_t hit = text::findNoCase(text, needle, from + 1);
  return hit == 0 ? std::string_view::npos : hit - 1;
}

// Numbers stand in the general form: "5", "0.99".
std::string numberForm(float value) { return text::plainText(value); }

void appendElement(std::string& out, std::string_view name, std::string_view value) {
  out.append("\t\t<").append(name).append(">").append(value).append("</").append(name).append(">\r\n");
}

void appendFlag(std::string& out, std::string_view name, bool on) {
  if (on) appendElement(out, name, "-1");
}

CachedMessage readPiece(std::string_view piece, fs::path file) {
  CachedMessage m;
  std::string name = file.filename().string();
  file.replace_filename(text::lower(name));
  m.Filename = file.string();
  m.Bayes = static_cast<float>(ExtractFloat(piece, "<BAYES>", "</BAYES>"));
  m.ReceiveDate = ExtractString(piece, "<RECEIVEDATE>", "</RECEIVEDATE>");
  m.SendDate = ExtractString(piece, "<SENDDATE>", "</SENDDATE>");
  m.Size = static_cast<float>(ExtractFloat(piece, "<SIZE>", "</SIZE>"));
  if (findNoCaseAt(piece, "<FILEDATE>", 0) != std::string_view::npos) {
    if (const auto date = text::parseStoreDate(ExtractString(piece, "<FILEDATE>", "</FILEDATE>"))) m.FileDate = *date;
  }
  m.Read = ExtractBool(piece, "<READ>", "</READ>");
  m.Replied = ExtractBool(piece, "<REPLIED>", "</REPLIED>");
  m.HighPriority = ExtractBool(piece, "<HIGHPRIORITY>", "</HIGHPRIORITY>");
  m.HasAttachment = ExtractBool(piece, "<HASATTACHMENT>", "</HASATTACHMENT>");
  m.From = ExtractString(piece, "<FROM>", "</FROM>");
  m.Subject = ExtractString(piece, "<SUBJECT>", "</SUBJECT>");
  m.To_Email = ExtractString(piece, "<TO>", "</TO>");
  m.MessageID = ExtractString(piece, "<MESSAGEID>", "</MESSAGEID>");
  m.Tags = ExtractString(piece, "<TAGS>", "</TAGS>");
  return m;
}

// The text between "<MESSAGES>" and "</MESSAGES>", as the tag extraction gives it.
std::string messagesSection(std::string_view text) {
  constexpr std::string_view kOpen = "<MESSAGES>";
  constexpr std::string_view kClose = "</MESSAGES>";
  const std::size_t start = findNoCaseAt(text, kOpen, 0);
  if (start == std::string_view::npos) return {};
  const std::size_t end = findNoCaseAt(text, kClose, start);
  const std::string_view inner =
      text.substr(start + kOpen.size(), end == std::string_view::npos ? std::string_view::npos : end - start - kOpen.size());
  // The extraction deletes the tags inside too; a file of the writer has none,
  // and then the section is taken as it stands, without two passes over it.
  if (findNoCaseAt(inner, kOpen, 0) == std::string_view::npos) return std::string(inner);
  return ExtractBetweenTags(text, kOpen, kClose);
}

}  // namespace

double CacheFileVersion(std::string_view text) {
  // The writer never closed this element, so the extraction runs to the end of
  // the file; the number in it ends at the first line end all the same, and
  // looking only that far keeps a big file from being copied for it.
  const std::size_t start = findNoCaseAt(text, kVersionOpen, 0);
  if (start == std::string_view::npos) return 0;
  return ExtractFloat(text.substr(0, text.find('\r', start)), kVersionOpen, kVersionClose);
}

fs::path RebaseCachedPath(std::string_view listed, const fs::path& storeRoot) {
  std::string_view relative = listed;
  const std::string root = storeRoot.string();
  std::size_t at = root.empty() ? std::string_view::npos : findNoCaseAt(listed, root, 0);
  if (at != std::string_view::npos) {
    relative = listed.substr(at + root.size());
    if (!relative.empty() && (relative.front() == '\\' || relative.front() == '/')) relative.remove_prefix(1);
  } else {
    // A file written by the program on another system may use either separator.
    for (const std::string_view marker : {"\\messages\\", "/messages/"}) {
      at = findNoCaseAt(listed, marker, 0);
      if (at != std::string_view::npos) {
        relative = listed.substr(at + marker.size());
        break;
      }
    }
  }
  std::string portable(relative);
  if constexpr (fs::path::preferred_separator == '/') {
    for (char& c : portable) {
      if (c == '\\') c = '/';
    }
  }
  // A path that was kept whole and is absolute stands on its own.
  return storeRoot / fs::path(portable);
}

bool ReadCacheText(std::string_view text, const fs::path& storeRoot, const FileExistsTest& exists,
                   const CachedMessageSink& add) {
  if (CacheFileVersion(text) < kCacheVersion) return false;
  const std::string messages = messagesSection(text);
  const std::string_view all(messages);
  constexpr std::string_view kEnd = "</MESSAGE>";
  // A piece without its closing tag is a file cut short: what it lists is read
  // again from the message file rather than trusted half-told.
  for (std::size_t start = 0, end = findNoCaseAt(all, kEnd, 0); end != std::string_view::npos;
       start = end + kEnd.size(), end = findNoCaseAt(all, kEnd, start)) {
    const std::string_view piece = all.substr(start, end - start);
    if (findNoCaseAt(piece, "<MESSAGE>", 0) == std::string_view::npos) continue;
    const fs::path file = RebaseCachedPath(ExtractString(piece, "<FILENAME>", "</FILENAME>"), storeRoot);
    if (exists(file)) add(readPiece(piece, file));
  }
  return true;
}

std::string_view CacheFileHead() {
  return "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n<VONELCACHE>\r\n\t<CACHEVER>3<CACHEVER>\r\n\t<MESSAGES>\r\n";
}

std::string_view CacheFileTail() { return "\t</MESSAGES>\r\n</VONELCACHE>\r\n"; }

void AppendCacheElement(std::string& out, const CachedMessage& m, const std::optional<text::DateTime>& fileDate) {
  out.append("\t<MESSAGE>\r\n");
  appendElement(out, "Filename", HtmlEncode(m.PathInReadCase()));
  appendElement(out, "SIZE", numberForm(m.Size));
  if (m.Bayes != 0.0f) appendElement(out, "Bayes", numberForm(m.Bayes));
  if (fileDate) appendElement(out, "Filedate", HtmlEncode(text::formatStoreDate(*fileDate)));
  appendElement(out, "SendDate", HtmlEncode(m.SendDate));
  appendElement(out, "ReceiveDate", HtmlEncode(m.ReceiveDate));
  appendFlag(out, "Read", m.Read);
  appendFlag(out, "Replied", m.Replied);
  appendFlag(out, "HighPriority", m.HighPriority);
  appendFlag(out, "HasAttachment", m.HasAttachment);
  appendElement(out, "From", HtmlEncode(m.From));
  appendElement(out, "To", HtmlEncode(m.To_Email));
  appendElement(out, "MessageID", HtmlEncode(m.MessageID));
  if (!m.Tags.empty()) appendElement(out, "Tags", HtmlEncode(m.Tags));
  appendElement(out, "Subject", HtmlEncode(m.Subject));
  out.append("\t</MESSAGE>\r\n");
}

}  // namespace vonel::store
