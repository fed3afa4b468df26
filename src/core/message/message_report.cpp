#include "core/message/message_report.h"

#include <cstdio>

#include "core/log/app_error.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"

namespace vonel::message {
namespace {

std::string escaped(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else if (code < 0x20 || code == 0x7F) {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02X", code);
      out += hex;
    } else {
      out += c;
    }
  }
  return text::cp1252ToUtf8(out);
}

class Report {
 public:
  void line(std::string_view name, std::string_view value) {
    out_.append(name).append(": ").append(escaped(value)).append("\n");
  }
  void line(std::string_view name, bool value) { line(name, std::string_view(value ? "True" : "False")); }
  void line(std::string_view name, long long value) { line(name, std::to_string(value)); }
  void line(std::string_view name, float value) { line(name, text::plainText(value)); }
  void line(std::string_view name, const text::DateTime& value) { line(name, text::formatStoreDate(value)); }
  std::string take() { return std::move(out_); }

 private:
  std::string out_;
};

void describeMembers(Report& r, const Message& m) {
  r.line("HeaderOnly", m.headerOnly);
  r.line("StrippedBody", m.strippedBody);
  r.line("HtmlStrippedBody", m.htmlStrippedBody);
  r.line("SpamSplit", m.spamSplit);
  r.line("ContentTypeMain", m.contentTypeMain);
  // A message's place in an archive file of many messages. This store keeps
  // one file a message, so the lines stay empty; the sample reports and the
  // tools that compare them line by line expect them.
  r.line("VNLFilename", std::string_view());
  r.line("IdxRec", 0LL);
  r.line("VNLFileLoc", 0LL);
  r.line("VNLFileEndLoc", 0LL);
  r.line("InVNLFile", false);
  r.line("Replied", m.replied);
  r.line("HighPriority", m.highPriority);
  r.line("XSpamStatus", m.xSpamStatus);
  r.line("XSpamReport", m.xSpamReport);
  r.line("XMailer", m.xMailer);
  r.line("FilterReason", m.filterReason);
  r.line("Ignored", m.ignored);
  r.line("Suspicious", m.suspicious);
  r.line("Bayes", m.bayes);
  r.line("BlockedSender", m.blockedSender);
  r.line("BlockedRecip", m.blockedRecip);
  r.line("DomainKey", m.domainKey);
  r.line("ReturnReceiptTo", m.returnReceiptTo);
  r.line("FileDate", m.fileDate);
  r.line("MessageNumThisAcc", static_cast<long long>(m.messageNumThisAcc));
  r.line("AttachmentsFolder", m.attachmentsFolder);
  r.line("RunThisFile", m.runThisFile);
}

void describeParts(Report& r, const Message& m) {
  r.line("MimePartCount", static_cast<long long>(m.mimePartCount()));
  for (std::size_t i = 1; i <= m.mimePartCount(); ++i) {
    const MimePart& part = m.mimePart(i);
    const std::string name = "MimePart(" + std::to_string(i) + ").";
    r.line(name + "ContentType", part.contentType);
    r.line(name + "Filename", part.filename);
    r.line(name + "SectionName", part.sectionName);
    r.line(name + "Encoding", part.encoding);
    r.line(name + "Size", static_cast<long long>(part.size));
    r.line(name + "Data", part.data);
  }
}

std::string localSendDate(const Message& m, int biasMinutes) {
  try {
    return text::formatStoreDate(m.sendDateInZone(biasMinutes));
  } catch (const AppError& error) {
    return "(error " + std::to_string(error.number()) + ": " + error.description() + ")";
  }
}

void describeProperties(Report& r, const Message& m, int biasMinutes) {
  r.line("AttachmentFilenames", m.attachmentFilenames());
  r.line("SendDateInLocalZone", localSendDate(m, biasMinutes));
  describeParts(r, m);
  r.line("SpamTestsFailed", m.spamTestsFailed);
  r.line("XEnvelopeTo", m.xEnvelopeTo);
  r.line("Deleted", m.deleted);
  r.line("HasAttachment", m.hasAttachment);
  r.line("Read", m.read);
  r.line("Tags", m.tags());
  r.line("FromAccount", static_cast<long long>(m.fromAccount));
  r.line("Colour", static_cast<long long>(m.colour));
  r.line("Size", m.size);
  for (std::size_t i = 0; i < m.attachmentNames().size(); ++i) {
    r.line("AttachmentNames(" + std::to_string(i + 1) + ")", m.attachmentNames()[i]);
  }
  r.line("Headers", m.headers);
  r.line("Filename", m.filename());
  r.line("DestFolder", m.destFolder);
  r.line("MessageBody", m.messageBody());
  r.line("Messagetext", m.messageText());
  r.line("Encrypted", m.encrypted);
  r.line("Comments", m.comments);
  r.line("Keywords", m.keywords);
  r.line("References", m.references);
  r.line("InReplyTo", m.inReplyTo);
  r.line("OrigIP", m.origIp);
  r.line("UserAgent", m.userAgent);
  r.line("To_Email", m.toEmail());
  r.line("DeliveredTo_Email", m.deliveredToEmail);
  r.line("BCC", m.bcc);
  r.line("CC", m.cc);
  r.line("Sender", m.sender);
  r.line("ReplyTo", m.replyTo);
  r.line("Subject", m.subject);
  r.line("From", m.from);
  r.line("MessageTo", m.messageTo);
  r.line("MessageID", m.messageId);
  r.line("SendDate", m.sendDate);
  r.line("Received", m.received);
  r.line("ReceiveDate", m.receiveDate);
  r.line("ReturnPath", m.returnPath);
}

}  // namespace

std::string describeMessage(const Message& message, int biasMinutes) {
  Report report;
  describeMembers(report, message);
  describeProperties(report, message, biasMinutes);
  const std::string raw = message.rawMessage();
  report.line("RawMessage", raw);
  Message reread = message;
  reread.createFromText(raw, message.headerOnly);
  const std::string again = reread.rawMessage();
  report.line("RawMessage after re-reading", again == raw ? std::string_view("(the same)") : std::string_view(again));
  return report.take();
}

}  // namespace vonel::message
