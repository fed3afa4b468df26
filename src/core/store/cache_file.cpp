#include "core/store/cache_file.h"

#include <cstring>
#include <optional>

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

// The elements a message piece may hold, as the reader asks for them.
enum Field { kFilename, kBayes, kReceiveDate, kSendDate, kSize, kFiledate, kRead, kReplied, kHighPriority,
             kHasAttachment, kFrom, kSubject, kTo, kMessageId, kTags, kFieldCount };
constexpr std::string_view kFieldNames[kFieldCount] = {
    "FILENAME", "BAYES", "RECEIVEDATE",   "SENDDATE", "SIZE",    "FILEDATE",  "READ", "REPLIED",
    "HIGHPRIORITY", "HASATTACHMENT", "FROM", "SUBJECT", "TO", "MESSAGEID", "TAGS"};

// The elements of one piece, found in a single pass over it. Where a value
// stands plainly between its tags (as the writer puts every value, escaped
// so that it holds no "<"), it is taken from there, which is exactly what
// the tag extraction gives; any other shape goes through the extraction.
class PieceFields {
 public:
  explicit PieceFields(std::string_view piece) : piece_(piece) {
    for (std::size_t open = piece.find('<'); open != std::string_view::npos; open = piece.find('<', open + 1)) {
      const std::size_t close = piece.find('>', open + 1);
      if (close == std::string_view::npos) break;
      const std::optional<Field> named = fieldNamed(piece.substr(open + 1, close - open - 1));
      if (!named || state_[*named] != State::Absent) continue;
      const Field field = *named;
      const std::size_t valueStart = close + 1;
      const std::size_t next = piece.find('<', valueStart);
      const std::string_view rest = next == std::string_view::npos ? std::string_view() : piece.substr(next);
      const std::string_view name = kFieldNames[field];
      const bool closedAtOnce = rest.size() >= name.size() + 3 && rest.substr(0, 2) == "</" &&
                                text::equalsNoCase(rest.substr(2, name.size()), name) && rest[name.size() + 2] == '>';
      state_[field] = closedAtOnce ? State::Plain : State::Other;
      if (closedAtOnce) value_[field] = piece.substr(valueStart, next - valueStart);
    }
  }

  bool present(Field field) const { return state_[field] != State::Absent; }
  std::string text(Field field) const {
    return state_[field] == State::Plain ? htmlDecode(value_[field]) : htmlDecode(extracted(field));
  }
  double number(Field field) const {
    return state_[field] == State::Plain ? text::val(value_[field]) : text::val(extracted(field));
  }
  bool flag(Field field) const {
    return state_[field] == State::Plain ? value_[field] == "-1" : extracted(field) == "-1";
  }

 private:
  enum class State { Absent, Plain, Other };

  static std::optional<Field> fieldNamed(std::string_view name) {
    for (int field = 0; field < kFieldCount; ++field) {
      if (name.size() == kFieldNames[field].size() && text::equalsNoCase(name, kFieldNames[field])) {
        return static_cast<Field>(field);
      }
    }
    return std::nullopt;
  }

  std::string extracted(Field field) const {
    if (state_[field] == State::Absent) return {};
    const std::string name(kFieldNames[field]);
    return extractBetweenTags(piece_, "<" + name + ">", "</" + name + ">");
  }

  std::string_view piece_;
  State state_[kFieldCount] = {};
  std::string_view value_[kFieldCount];
};

CachedMessage readPiece(const PieceFields& fields, const fs::path& file) {
  CachedMessage m;
  m.filename = message::pathInReadCase(file.string(), true);
  m.bayes = static_cast<float>(fields.number(kBayes));
  m.receiveDate = fields.text(kReceiveDate);
  m.sendDate = fields.text(kSendDate);
  m.size = static_cast<float>(fields.number(kSize));
  if (fields.present(kFiledate)) {
    if (const auto date = text::parseStoreDate(fields.text(kFiledate))) m.fileDate = *date;
  }
  m.read = fields.flag(kRead);
  m.replied = fields.flag(kReplied);
  m.highPriority = fields.flag(kHighPriority);
  m.hasAttachment = fields.flag(kHasAttachment);
  m.from = fields.text(kFrom);
  m.subject = fields.text(kSubject);
  m.toEmail = fields.text(kTo);
  m.messageId = fields.text(kMessageId);
  m.tags = fields.text(kTags);
  return m;
}

// The text between "<MESSAGES>" and "</MESSAGES>", as the tag extraction
// gives it. The extraction deletes the tags inside too; a file of the writer
// has none, and then the section is a view of the file, not a copy of it.
std::string_view messagesSection(std::string_view text, std::string& edited) {
  constexpr std::string_view kOpen = "<MESSAGES>";
  constexpr std::string_view kClose = "</MESSAGES>";
  const std::size_t start = findNoCaseAt(text, kOpen, 0);
  if (start == std::string_view::npos) return {};
  const std::size_t end = findNoCaseAt(text, kClose, start);
  const std::string_view inner =
      text.substr(start + kOpen.size(), end == std::string_view::npos ? std::string_view::npos : end - start - kOpen.size());
  if (findNoCaseAt(inner, kOpen, 0) == std::string_view::npos) return inner;
  edited = extractBetweenTags(text, kOpen, kClose);
  return edited;
}

}  // namespace

double cacheFileVersion(std::string_view text) {
  // The writer never closed this element, so the extraction runs to the end of
  // the file; the number in it ends at the first line end all the same, and
  // looking only that far keeps a big file from being copied for it.
  const std::size_t start = findNoCaseAt(text, kVersionOpen, 0);
  if (start == std::string_view::npos) return 0;
  return extractFloat(text.substr(0, text.find('\r', start)), kVersionOpen, kVersionClose);
}

fs::path rebaseCachedPath(std::string_view listed, const fs::path& storeRoot) {
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

CacheTextRead readCacheText(std::string_view text, const fs::path& storeRoot, const FileExistsTest& exists,
                            const CachedMessageSink& add, const KeepGoing& keepGoing) {
  // A piece costs a few microseconds; this many stay well inside a window's frame.
  constexpr std::size_t kPiecesBetweenAsks = 64;
  if (cacheFileVersion(text) < kCacheVersion) return CacheTextRead::TooOld;
  std::string edited;
  const std::string_view all = messagesSection(text, edited);
  constexpr std::string_view kEnd = "</MESSAGE>";
  // A piece without its closing tag is a file cut short: what it lists is read
  // again from the message file rather than trusted half-told.
  std::size_t pieces = 0;
  for (std::size_t start = 0, end = findNoCaseAt(all, kEnd, 0); end != std::string_view::npos;
       start = end + kEnd.size(), end = findNoCaseAt(all, kEnd, start)) {
    if (keepGoing && ++pieces % kPiecesBetweenAsks == 0 && !keepGoing()) return CacheTextRead::Stopped;
    const std::string_view piece = all.substr(start, end - start);
    if (findNoCaseAt(piece, "<MESSAGE>", 0) == std::string_view::npos) continue;
    const PieceFields fields(piece);
    const fs::path file = rebaseCachedPath(fields.text(kFilename), storeRoot);
    if (exists(file)) add(readPiece(fields, file));
  }
  return CacheTextRead::Whole;
}

std::string_view cacheFileHead() {
  return "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n<VONELCACHE>\r\n\t<CACHEVER>3<CACHEVER>\r\n\t<MESSAGES>\r\n";
}

std::string_view cacheFileTail() { return "\t</MESSAGES>\r\n</VONELCACHE>\r\n"; }

void appendCacheElement(std::string& out, const CachedMessage& m, const std::optional<text::DateTime>& fileDate) {
  out.append("\t<MESSAGE>\r\n");
  appendElement(out, "Filename", htmlEncode(m.pathInReadCase()));
  appendElement(out, "SIZE", numberForm(m.size));
  if (m.bayes != 0.0f) appendElement(out, "Bayes", numberForm(m.bayes));
  if (fileDate) appendElement(out, "Filedate", htmlEncode(text::formatStoreDate(*fileDate)));
  appendElement(out, "SendDate", htmlEncode(m.sendDate));
  appendElement(out, "ReceiveDate", htmlEncode(m.receiveDate));
  appendFlag(out, "Read", m.read);
  appendFlag(out, "Replied", m.replied);
  appendFlag(out, "HighPriority", m.highPriority);
  appendFlag(out, "HasAttachment", m.hasAttachment);
  appendElement(out, "From", htmlEncode(m.from));
  appendElement(out, "To", htmlEncode(m.toEmail));
  appendElement(out, "MessageID", htmlEncode(m.messageId));
  if (!m.tags.empty()) appendElement(out, "Tags", htmlEncode(m.tags));
  appendElement(out, "Subject", htmlEncode(m.subject));
  out.append("\t</MESSAGE>\r\n");
}

}  // namespace vonel::store
