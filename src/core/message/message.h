#pragma once
// The one in-memory form of a mail message: scanned headers, downloaded
// mail, stored files and composed mail alike. It is filled from raw text by
// a plain single pass over the header lines, with a fixed list of names, and
// the rule check, the Bayes tokeniser and the folder cache all depend on the
// exact (sometimes surprising) results of that pass.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/logging.h"
#include "core/message/mime_part.h"
#include "core/services/clock.h"
#include "core/text/dates.h"

namespace vonel::message {

class clsMessage {
 public:
  // Without a log, bad input goes unrecorded; without a clock, RawMessage
  // stamps receive dates with the machine's time.
  explicit clsMessage(cSharedLogging* log = nullptr, const Clock* clock = nullptr);

  bool HeaderOnly = false;
  std::string StrippedBody;
  std::string HtmlStrippedBody;
  std::string SpamSplit;
  std::string ContentTypeMain;
  std::string VNLFilename;
  std::int64_t IdxRec = 0;
  std::int64_t VNLFileLoc = 0;
  std::int64_t VNLFileEndLoc = 0;
  bool InVNLFile = false;
  bool Replied = false;
  bool HighPriority = false;
  std::string XSpamStatus;
  std::string XSpamReport;
  std::string XMailer;
  std::string FilterReason;
  bool Ignored = false;
  bool Suspicious = false;
  float Bayes = 0.0f;
  bool BlockedSender = false;
  bool BlockedRecip = false;
  std::string DomainKey;
  std::string ReturnReceiptTo;
  text::DateTime FileDate;
  int MessageNumThisAcc = 0;
  std::string AttachmentsFolder;
  std::string RunThisFile;

  // Plain read/write properties.
  std::string SpamTestsFailed;
  std::string XEnvelopeTo;
  bool Deleted = false;
  bool HasAttachment = false;
  bool Read = false;
  std::int16_t FromAccount = 0;
  std::int32_t Colour = 0;
  float Size = 0.0f;  // whole kilobytes, at least 1
  std::string Headers;
  std::string DestFolder;
  std::string Encrypted;
  std::string Comments;
  std::string Keywords;
  std::string References;
  std::string InReplyTo;
  std::string OrigIP;
  std::string UserAgent;
  std::string DeliveredTo_Email;
  std::string BCC;
  std::string CC;
  std::string Sender;
  std::string ReplyTo;
  std::string Subject;
  std::string From;
  std::string MessageTo;  // never filled by parsing
  std::string MessageID;
  std::string SendDate;
  std::string Received;  // every Received line joined by blanks, with a leading blank
  std::string ReceiveDate;
  std::string ReturnPath;

  // Every attachment name followed by " * ", the last one too.
  std::string AttachmentFilenames() const;
  // The send date moved into the machine's standard time (no daylight
  // saving). Throws AppError when the date or its zone can't be read.
  text::DateTime SendDateInLocalZone() const;
  // The same for a given bias in minutes (UTC = local time + bias).
  text::DateTime SendDateInZone(int biasMinutes) const;

  // 1-based; an index outside the list gives an empty part.
  const clsMimeType& MimePart(std::size_t index) const;
  std::size_t MimePartCount() const { return mime_.parts.size(); }

  const std::string& Tags() const { return tags_; }
  // Trimmed, and a leading comma dropped ("," alone becomes empty).
  void setTags(std::string_view tags);
  // True for an empty list, else when any item of the comma list occurs
  // inside the tags, ignoring case.
  bool TagsPresent(std::string_view list) const;

  // Never raises: bad input is logged and leaves what could be read.
  void CreateFromText(std::string text, bool headerOnly);

  // Appends a name; HasAttachment is left as it is.
  void AddAttachment(std::string name);
  const std::vector<std::string>& AttachmentNames() const { return mime_.attachmentNames; }

  void TagAsSpam();
  void ReplaceRawMessage(std::string text);
  // The text to store, with the store flags written in as header lines.
  std::string RawMessage() const;
  void RemoveReceiveDate();

  // The file name's case carries the read state: lower case when read.
  std::string Filename() const;
  void setFilename(std::string path) { filename_ = std::move(path); }

  std::string_view MessageBody() const;
  void setMessageBody(std::string body);
  const std::string& Messagetext() const { return *messageText_; }
  void setMessagetext(std::string text);

  // Falls back on the Delivered-To address when there is no To.
  const std::string& To_Email() const { return to_.empty() ? DeliveredTo_Email : to_; }
  void setTo_Email(std::string to) { to_ = std::move(to); }

 private:
  using SharedText = std::shared_ptr<const std::string>;

  void clearForParse(bool headerOnly);
  void parseHeaderLines();
  void CreateStrippedBody();
  void logAction(std::string_view text, std::string_view procedure) const;
  void logFailure(const AppError& error, std::string_view procedure) const;

  cSharedLogging* log_;
  const Clock* clock_;
  SharedText raw_;
  SharedText messageText_;
  SharedText bodySource_;
  std::size_t bodyOffset_ = 0;  // the body is the source text from here on
  std::string tags_;
  std::string filename_;
  std::string to_;
  MimeContent mime_;
};

// The path with its file name in the case that tells the read state:
// lower case when read, upper case when not.
std::string PathInReadCase(std::string path, bool read);

}  // namespace vonel::message
