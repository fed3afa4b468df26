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

void describeMembers(Report& r, const clsMessage& m) {
  r.line("HeaderOnly", m.HeaderOnly);
  r.line("StrippedBody", m.StrippedBody);
  r.line("HtmlStrippedBody", m.HtmlStrippedBody);
  r.line("SpamSplit", m.SpamSplit);
  r.line("ContentTypeMain", m.ContentTypeMain);
  r.line("VNLFilename", m.VNLFilename);
  r.line("IdxRec", static_cast<long long>(m.IdxRec));
  r.line("VNLFileLoc", static_cast<long long>(m.VNLFileLoc));
  r.line("VNLFileEndLoc", static_cast<long long>(m.VNLFileEndLoc));
  r.line("InVNLFile", m.InVNLFile);
  r.line("Replied", m.Replied);
  r.line("HighPriority", m.HighPriority);
  r.line("XSpamStatus", m.XSpamStatus);
  r.line("XSpamReport", m.XSpamReport);
  r.line("XMailer", m.XMailer);
  r.line("FilterReason", m.FilterReason);
  r.line("Ignored", m.Ignored);
  r.line("Suspicious", m.Suspicious);
  r.line("Bayes", m.Bayes);
  r.line("BlockedSender", m.BlockedSender);
  r.line("BlockedRecip", m.BlockedRecip);
  r.line("DomainKey", m.DomainKey);
  r.line("ReturnReceiptTo", m.ReturnReceiptTo);
  r.line("FileDate", m.FileDate);
  r.line("MessageNumThisAcc", static_cast<long long>(m.MessageNumThisAcc));
  r.line("AttachmentsFolder", m.AttachmentsFolder);
  r.line("RunThisFile", m.RunThisFile);
}

void describeParts(Report& r, const clsMessage& m) {
  r.line("MimePartCount", static_cast<long long>(m.MimePartCount()));
  for (std::size_t i = 1; i <= m.MimePartCount(); ++i) {
    const clsMimeType& part = m.MimePart(i);
    const std::string name = "MimePart(" + std::to_string(i) + ").";
    r.line(name + "ContentType", part.ContentType);
    r.line(name + "Filename", part.Filename);
    r.line(name + "SectionName", part.SectionName);
    r.line(name + "Encoding", part.Encoding);
    r.line(name + "Size", static_cast<long long>(part.Size));
    r.line(name + "Data", part.Data);
  }
}

std::string localSendDate(const clsMessage& m, int biasMinutes) {
  try {
    return text::formatStoreDate(m.SendDateInZone(biasMinutes));
  } catch (const AppError& error) {
    return "(error " + std::to_string(error.number()) + ": " + error.description() + ")";
  }
}

void describeProperties(Report& r, const clsMessage& m, int biasMinutes) {
  r.line("AttachmentFilenames", m.AttachmentFilenames());
  r.line("SendDateInLocalZone", localSendDate(m, biasMinutes));
  describeParts(r, m);
  r.line("SpamTestsFailed", m.SpamTestsFailed);
  r.line("XEnvelopeTo", m.XEnvelopeTo);
  r.line("Deleted", m.Deleted);
  r.line("HasAttachment", m.HasAttachment);
  r.line("Read", m.Read);
  r.line("Tags", m.Tags());
  r.line("FromAccount", static_cast<long long>(m.FromAccount));
  r.line("Colour", static_cast<long long>(m.Colour));
  r.line("Size", m.Size);
  for (std::size_t i = 0; i < m.AttachmentNames().size(); ++i) {
    r.line("AttachmentNames(" + std::to_string(i + 1) + ")", m.AttachmentNames()[i]);
  }
  r.line("Headers", m.Headers);
  r.line("Filename", m.Filename());
  r.line("DestFolder", m.DestFolder);
  r.line("MessageBody", m.MessageBody());
  r.line("Messagetext", m.Messagetext());
  r.line("Encrypted", m.Encrypted);
  r.line("Comments", m.Comments);
  r.line("Keywords", m.Keywords);
  r.line("References", m.References);
  r.line("InReplyTo", m.InReplyTo);
  r.line("OrigIP", m.OrigIP);
  r.line("UserAgent", m.UserAgent);
  r.line("To_Email", m.To_Email());
  r.line("DeliveredTo_Email", m.DeliveredTo_Email);
  r.line("BCC", m.BCC);
  r.line("CC", m.CC);
  r.line("Sender", m.Sender);
  r.line("ReplyTo", m.ReplyTo);
  r.line("Subject", m.Subject);
  r.line("From", m.From);
  r.line("MessageTo", m.MessageTo);
  r.line("MessageID", m.MessageID);
  r.line("SendDate", m.SendDate);
  r.line("Received", m.Received);
  r.line("ReceiveDate", m.ReceiveDate);
  r.line("ReturnPath", m.ReturnPath);
}

}  // namespace

std::string DescribeMessage(const clsMessage& message, int biasMinutes) {
  Report report;
  describeMembers(report, message);
  describeProperties(report, message, biasMinutes);
  const std::string raw = message.RawMessage();
  report.line("RawMessage", raw);
  clsMessage reread = message;
  reread.CreateFromText(raw, message.HeaderOnly);
  const std::string again = reread.RawMessage();
  report.line("RawMessage after re-reading", again == raw ? std::string_view("(the same)") : std::string_view(again));
  return report.take();
}

}  // namespace vonel::message
