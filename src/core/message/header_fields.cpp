// The header pass of createFromText: one line at a time, a line without a
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

// "to" fills the To address only: messageTo has no header of its own and
// stays empty, as the message report shows.
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
  text::trimJunkFromEnd(out);
  return out;
}

}  // namespace

void Message::parseHeaderLines() {
  const std::string_view lines = headers;
  Field lastField = Field::Ignored;
  std::size_t lineStart = 0;
  for (;;) {
    const std::size_t lineEnd = lines.find("\r\n", lineStart);
    const std::string_view line = lines.substr(lineStart, lineEnd - lineStart);
    std::string_view value;
    const Field field = fieldOfLine(line, lastField, value);
    // A repeated header or a continuation line runs through the same branch:
    // most fields keep the last line only.
    switch (field) {
      case Field::Ignored: break;
      case Field::To: to_ = isoDecode(value); break;
      case Field::ReturnPath: returnPath = value; break;
      case Field::DeliveredTo: deliveredToEmail = isoDecode(value); break;
      case Field::Received: received.append(" ").append(value); break;
      case Field::From: from = isoDecode(value); break;
      case Field::Sender: sender = isoDecode(value); break;
      case Field::ReplyTo: replyTo = isoDecode(value); break;
      case Field::Cc: cc = value; break;
      case Field::Bcc: bcc = value; break;
      case Field::DomainKey: domainKey += value; break;
      case Field::MessageId: messageId = value; break;
      case Field::InReplyTo: inReplyTo = value; break;
      case Field::UserAgent: userAgent = value; break;
      case Field::OriginatingIp: origIp = value; break;
      case Field::References: references = value; break;
      case Field::ReturnReceiptTo: returnReceiptTo = value; break;
      case Field::Keywords: keywords = value; break;
      case Field::Subject:
        // Folded subjects join, and so do two Subject headers in a row.
        subject = lastField == Field::Subject ? subject + " " + isoDecode(value) : isoDecode(value);
        break;
      case Field::Comments: comments = value; break;
      case Field::Encrypted: encrypted = value; break;
      case Field::Date: sendDate = withoutJunkAtEnd(value); break;
      case Field::ReceiveDate: receiveDate = withoutJunkAtEnd(value); break;
      case Field::ContentType:
        if (contentTypeMain.empty()) contentTypeMain = withoutSemicolons(value);
        break;
      case Field::MessageRead: read = isFlagSet(value); break;
      case Field::MessageTags:
        tags_ = value;
        std::erase(tags_, '\r');
        break;
      case Field::MessageHighPriority: highPriority = isFlagSet(value); break;
      case Field::MessageReplied: replied = isFlagSet(value); break;
      case Field::Mailer: xMailer = value; break;
      case Field::SpamStatus: xSpamStatus += value; break;
      case Field::SpamReport: xSpamReport += value; break;
      case Field::EnvelopeTo: xEnvelopeTo = value; break;
      case Field::SpamTestsFailed: spamTestsFailed = value; break;
    }
    lastField = field;
    if (lineEnd == std::string_view::npos) break;
    lineStart = lineEnd + 2;
  }
}

}  // namespace vonel::message
