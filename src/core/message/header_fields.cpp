// The header pass of CreateFromText: one line at a time, a line without a
// colon continues the last key, and only a fixed list of names is read.
#include <array>

#include "core/message/iso_decode.h"
#include "core/message/message.h"
#include "core/text/numbers.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

enum class Field {
  Ignored,
  To,
  ReturnPath,
  DeliveredTo,
  Received,
  From,
  Sender,
  ReplyTo,
  Cc,
  Bcc,
  DomainKey,
  MessageId,
  InReplyTo,
  UserAgent,
  OriginatingIp,
  References,
  ReturnReceiptTo,
  Keywords,
  Subject,
  Comments,
  Encrypted,
  Date,
  ReceiveDate,
  ContentType,
  MessageRead,
  MessageTags,
  MessageHighPriority,
  MessageReplied,
  Mailer,
  SpamStatus,
  SpamReport,
  EnvelopeTo,
  SpamTestsFailed,
};

struct KnownName {
  std::string_view name;
  Field field;
};

// A second "to" test used to follow "reply-to" to fill MessageTo; the first
// always won, so MessageTo is never filled by parsing.
constexpr std::array<KnownName, 32> kKnownNames = {{
    {"to", Field::To},
    {"return-path", Field::ReturnPath},
    {"delivered-to", Field::DeliveredTo},
    {"received", Field::Received},
    {"from", Field::From},
    {"sender", Field::Sender},
    {"reply-to", Field::ReplyTo},
    {"cc", Field::Cc},
    {"bcc", Field::Bcc},
    {"domainkey-signature", Field::DomainKey},
    {"message-id", Field::MessageId},
    {"in-reply-to", Field::InReplyTo},
    {"user-agent", Field::UserAgent},
    {"x-originating-ip", Field::OriginatingIp},
    {"references", Field::References},
    {"return-receipt-to", Field::ReturnReceiptTo},
    {"keywords", Field::Keywords},
    {"subject", Field::Subject},
    {"comments", Field::Comments},
    {"encrypted", Field::Encrypted},
    {"date", Field::Date},
    {"x-receive-date", Field::ReceiveDate},
    {"content-type", Field::ContentType},
    {"x-message-read", Field::MessageRead},
    {"x-message-tags", Field::MessageTags},
    {"x-message-highpriority", Field::MessageHighPriority},
    {"x-message-replied", Field::MessageReplied},
    {"x-mailer", Field::Mailer},
    {"x-spam-status", Field::SpamStatus},
    {"x-spam-report", Field::SpamReport},
    {"x-envelope-to", Field::EnvelopeTo},
    {"x-spam-tests-failed", Field::SpamTestsFailed},
}};

// The key is compared in lower case and untrimmed; comparing without regard
// to case against lower-case names gives the same answer without a copy.
Field fieldNamed(std::string_view key) {
  for (const auto& known : kKnownNames) {
    if (text::equalsNoCase(key, known.name)) return known.field;
  }
  return Field::Ignored;
}

// The key a line stands for. A line without a colon, or with nothing before
// it, continues the last key; so does "h=received", which starts the folded
// list of signed fields of a signature header.
Field fieldOfLine(std::string_view line, Field lastField, std::string_view& value) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) {
    value = text::trimView(line);
    return lastField;
  }
  value = text::trimView(line.substr(colon + 1));
  const std::string_view key = line.substr(0, colon);
  if (key.empty() || text::equalsNoCase(text::trimView(key), "h=received")) return lastField;
  return fieldNamed(key);
}

bool isFlagSet(std::string_view value) { return text::val(value) == 1.0; }

std::string withoutSemicolons(std::string_view value) {
  std::string out(value);
  std::erase(out, ';');
  return out;
}

std::string withoutJunkAtEnd(std::string_view value) {
  std::string out(value);
  text::EatCrapFromEnd(out);
  return out;
}

}  // namespace

void clsMessage::parseHeaderLines() {
  const std::string_view headers = Headers;
  Field lastField = Field::Ignored;
  std::size_t lineStart = 0;
  for (;;) {
    const std::size_t lineEnd = headers.find("\r\n", lineStart);
    const std::string_view line = headers.substr(lineStart, lineEnd - lineStart);
    std::string_view value;
    const Field field = fieldOfLine(line, lastField, value);
    // A repeated header or a continuation line runs through the same branch:
    // most fields keep the last line only.
    switch (field) {
      case Field::Ignored: break;
      case Field::To: to_ = ISODecode(value); break;
      case Field::ReturnPath: ReturnPath = value; break;
      case Field::DeliveredTo: DeliveredTo_Email = ISODecode(value); break;
      case Field::Received: Received.append(" ").append(value); break;
      case Field::From: From = ISODecode(value); break;
      case Field::Sender: Sender = ISODecode(value); break;
      case Field::ReplyTo: ReplyTo = ISODecode(value); break;
      case Field::Cc: CC = value; break;
      case Field::Bcc: BCC = value; break;
      case Field::DomainKey: DomainKey += value; break;
      case Field::MessageId: MessageID = value; break;
      case Field::InReplyTo: InReplyTo = value; break;
      case Field::UserAgent: UserAgent = value; break;
      case Field::OriginatingIp: OrigIP = value; break;
      case Field::References: References = value; break;
      case Field::ReturnReceiptTo: ReturnReceiptTo = value; break;
      case Field::Keywords: Keywords = value; break;
      case Field::Subject:
        // Folded subjects join, and so do two Subject headers in a row.
        Subject = lastField == Field::Subject ? Subject + " " + ISODecode(value) : ISODecode(value);
        break;
      case Field::Comments: Comments = value; break;
      case Field::Encrypted: Encrypted = value; break;
      case Field::Date: SendDate = withoutJunkAtEnd(value); break;
      case Field::ReceiveDate: ReceiveDate = withoutJunkAtEnd(value); break;
      case Field::ContentType:
        if (ContentTypeMain.empty()) ContentTypeMain = withoutSemicolons(value);
        break;
      case Field::MessageRead: Read = isFlagSet(value); break;
      case Field::MessageTags:
        tags_ = value;
        std::erase(tags_, '\r');
        break;
      case Field::MessageHighPriority: HighPriority = isFlagSet(value); break;
      case Field::MessageReplied: Replied = isFlagSet(value); break;
      case Field::Mailer: XMailer = value; break;
      case Field::SpamStatus: XSpamStatus += value; break;
      case Field::SpamReport: XSpamReport += value; break;
      case Field::EnvelopeTo: XEnvelopeTo = value; break;
      case Field::SpamTestsFailed: SpamTestsFailed = value; break;
    }
    lastField = field;
    if (lineEnd == std::string_view::npos) break;
    lineStart = lineEnd + 2;
  }
}

}  // namespace vonel::message
