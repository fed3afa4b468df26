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

#include "core/log/log.h"
#include "core/message/mime_part.h"
#include "core/time/clock.h"
#include "core/text/dates.h"

namespace vonel::message {

class Message {
 public:
  // Without a log, bad input goes unrecorded; without a clock, rawMessage
  // stamps receive dates with the machine's time.
  explicit Message(Log* log = nullptr, const Clock* clock = nullptr);

  bool headerOnly = false;
  std::string strippedBody;
  std::string htmlStrippedBody;
  std::string spamSplit;
  std::string contentTypeMain;
  bool replied = false;
  bool highPriority = false;
  std::string xSpamStatus;
  std::string xSpamReport;
  std::string xMailer;
  std::string filterReason;
  bool ignored = false;
  bool suspicious = false;
  float bayes = 0.0f;
  bool blockedSender = false;
  bool blockedRecip = false;
  std::string domainKey;
  std::string returnReceiptTo;
  text::DateTime fileDate;
  int messageNumThisAcc = 0;
  std::string attachmentsFolder;
  std::string runThisFile;

  // Plain read/write properties.
  std::string spamTestsFailed;
  std::string xEnvelopeTo;
  bool deleted = false;
  bool hasAttachment = false;
  bool read = false;
  std::int16_t fromAccount = 0;
  std::int32_t colour = 0;
  float size = 0.0f;  // whole kilobytes, at least 1
  std::string headers;
  std::string destFolder;
  std::string encrypted;
  std::string comments;
  std::string keywords;
  std::string references;
  std::string inReplyTo;
  std::string origIp;
  std::string userAgent;
  std::string deliveredToEmail;
  std::string bcc;
  std::string cc;
  std::string sender;
  std::string replyTo;
  std::string subject;
  std::string from;
  std::string messageTo;  // never filled by parsing
  std::string messageId;
  std::string sendDate;
  std::string received;  // every Received line joined by blanks, with a leading blank
  std::string receiveDate;
  std::string returnPath;
  // The server's unique id (UIDL) of a downloaded message; empty when it gave none.
  std::string serverUniqueId;

  // Every attachment name followed by " * ", the last one too.
  std::string attachmentFilenames() const;
  // The send date moved into the machine's standard time (no daylight
  // saving). Throws AppError when the date or its zone can't be read.
  text::DateTime sendDateInLocalZone() const;
  // The same for a given bias in minutes (UTC = local time + bias).
  text::DateTime sendDateInZone(int biasMinutes) const;

  // 1-based; an index outside the list gives an empty part.
  const MimePart& mimePart(std::size_t index) const;
  std::size_t mimePartCount() const { return mime_.parts.size(); }

  const std::string& tags() const { return tags_; }
  // Trimmed, and a leading comma dropped ("," alone becomes empty).
  void setTags(std::string_view tags);
  // True for an empty list, else when any item of the comma list occurs
  // inside the tags, ignoring case.
  bool tagsPresent(std::string_view list) const;

  // Never raises: bad input is logged and leaves what could be read.
  void createFromText(std::string text, bool headerOnly);

  // Appends a name; hasAttachment is left as it is.
  void addAttachment(std::string name);
  const std::vector<std::string>& attachmentNames() const { return mime_.attachmentNames; }

  void tagAsSpam();
  void replaceRawMessage(std::string text);
  // The text to store, with the store flags written in as header lines.
  std::string rawMessage() const;
  // The text to store for mail as it came from the server: the same store
  // lines close its header block, and nothing else changes, the body least
  // of all. A receive date that came with the mail gives way to the store's.
  std::string arrivedMessage() const;
  void removeReceiveDate();

  // The file name's case carries the read state: lower case when read.
  std::string filename() const;
  void setFilename(std::string path) { filename_ = std::move(path); }

  std::string_view messageBody() const;
  void setMessageBody(std::string body);
  const std::string& messageText() const { return *messageText_; }
  void setMessageText(std::string text);

  // Falls back on the Delivered-To address when there is no To.
  const std::string& toEmail() const { return to_.empty() ? deliveredToEmail : to_; }
  void setToEmail(std::string to) { to_ = std::move(to); }

 private:
  using SharedText = std::shared_ptr<const std::string>;

  void clearForParse(bool headerOnly);
  void writeStoreHeaders(std::string& text) const;
  void parseHeaderLines();
  void createStrippedBody();
  void logAction(std::string_view text, std::string_view procedure) const;
  void logFailure(const AppError& error, std::string_view procedure) const;

  Log* log_;
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
std::string pathInReadCase(std::string path, bool read);

}  // namespace vonel::message
