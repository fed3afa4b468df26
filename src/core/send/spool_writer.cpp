#include "core/send/spool_writer.h"

#include <cstdio>
#include <fstream>

#include "core/send/content_type.h"
#include "core/send/spool_line_writer.h"
#include "core/message/transfer_encoding.h"
#include "core/files/atomic_file.h"
#include "core/files/path_text.h"
#include "core/text/strings.h"

namespace vonel::send {
namespace {

constexpr std::string_view kCrLf = "\r\n";
constexpr std::string_view kListSeparator = ", \r\n    ";

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Where the name array reaches, a quoted name (or, when it is empty, the
// quoted address) and a blank stand in front of <address>; beyond it, only <address>.
std::string addressList(const std::vector<std::string>& addresses, const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    if (i > 0) list += kListSeparator;
    if (i < names.size()) {
      list += inQuotes(names[i].empty() ? addresses[i] : names[i]);
      list += ' ';
    }
    list += "<" + addresses[i] + ">";
  }
  return list;
}

std::string bccList(const std::vector<std::string>& addresses) {
  std::string list;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    if (i > 0) list += kListSeparator;
    list += "<" + text::trim(addresses[i]) + ">";
  }
  return list;
}

void writeHeaders(SpoolLineWriter& out, const MailFields& mail, const std::string& boundary, const std::string& version) {
  const std::string sender = senderText(mail);
  out.line("From: " + sender);
  out.line("To: " + addressList(mail.recipient, mail.recipientDisplayName));
  if (const std::string cc = addressList(mail.ccRecipient, mail.ccDisplayName); !cc.empty()) out.line("Cc: " + cc);
  if (const std::string bcc = bccList(mail.bccRecipient); !bcc.empty()) out.line("Bcc: " + bcc);
  if (!mail.replyToAddress.empty()) out.line("Reply-to: <" + mail.replyToAddress + ">");
  if (!mail.inReplyTo.empty()) out.line("In-Reply-To: " + mail.inReplyTo);
  out.line("Subject: " + mail.subject);
  if (!mail.messageId.empty()) out.line("Message-ID: " + mail.messageId);
  if (mail.encodeType != EncodeType::Mime) return;
  out.line("MIME-Version: 1.0");
  out.line("X-Priority: " + std::to_string(static_cast<std::int32_t>(mail.priority)));
  out.line("X-MSMail-Priority: " + mail.priorityWord);
  out.line("X-Mailer: Vonel " + version);
  if (mail.receipt) out.line("Disposition-Notification-To: " + sender);
  if (!mail.attachmentPaths.empty()) {
    out.line("Content-Type: multipart/mixed;");
    out.line("\tboundary=" + inQuotes(boundary) + std::string(kCrLf));
    out.line("This is a multi-part message in MIME format." + std::string(kCrLf));
    out.line("--" + boundary);
  }
  out.line(std::string("Content-Type: ") + (mail.asHtml ? "text/html;" : "text/plain;"));
  out.line("\tcharset=" + inQuotes("iso-8859-1"));
  out.line(std::string("Content-Transfer-Encoding: ") + (mail.eightBit ? "8bit" : "7bit"));
  if (mail.asHtml && !mail.contentBase.empty()) out.line("Content-Base: " + inQuotes(mail.contentBase));
}

// One base64 line per slice, read as it goes, so a large file costs one slice
// of memory. The uuencode mode has no file encoder and fails at once with
// error 5, so a uuencoded message with an attachment is never spooled: the
// user sees "Invalid procedure call or argument", and the spool tests expect it.
void writeEncodedFile(SpoolLineWriter& out, const std::string& path, EncodeType mode) {
  if (mode == EncodeType::UUEncode) throw AttachmentFailed(error_number::kInvalidCall, "Invalid procedure call or argument");
  std::ifstream in(files::pathFromText(path), std::ios::binary);
  if (!in) throw AttachmentFailed(error_number::kFileNotFound, "File not found: " + path);
  std::string slice(kBase64Slice, '\0');
  while (in.read(slice.data(), static_cast<std::streamsize>(slice.size())) || in.gcount() > 0) {
    out.line(message::encodeMime64String(std::string_view(slice).substr(0, static_cast<std::size_t>(in.gcount()))));
  }
  if (in.bad()) throw AttachmentFailed(error_number::kDeviceIo, "Device I/O error: " + path);
}

void writeAttachment(SpoolLineWriter& out, const std::string& boundary, const std::string& path, const std::string& name,
                     EncodeType mode) {
  if (mode == EncodeType::UUEncode) {
    out.line("begin 600 " + name);
    writeEncodedFile(out, path, mode);
    return;
  }
  out.line("--" + boundary);
  out.line("Content-Type: " + contentTypeOf(name, "application/octet-stream") + ";");
  out.line("\tname=" + inQuotes(name));
  out.line("Content-Transfer-Encoding: base64");
  out.line("Content-Disposition: attachment;");
  out.line("\tfilename=" + inQuotes(name) + std::string(kCrLf));
  writeEncodedFile(out, path, mode);
  out.line();
  out.line();
}

}  // namespace

std::string spoolBoundary(const text::DateTime& now) {
  char serial[32];
  std::snprintf(serial, sizeof serial, "%017.8f", now.serial());
  return std::string("----_=_NextPart_000_") + serial;
}

std::string senderText(const MailFields& mail) {
  return inQuotes(mail.fromDisplayName.empty() ? mail.from : mail.fromDisplayName) + " <" + mail.from + ">";
}

void writeSpoolFile(const std::filesystem::path& file, const MailFields& mail, const text::DateTime& now,
                    const std::string& version, files::WriteBatch& writes) {
  files::AtomicFileWriter writer(file, writes);
  SpoolLineWriter out(writer);
  const std::string boundary = spoolBoundary(now);
  writeHeaders(out, mail, boundary, version);
  out.line();
  out.line();
  out.line(mail.message);
  out.line();
  for (std::size_t i = 0; i < mail.attachmentPaths.size(); ++i) {
    writeAttachment(out, boundary, mail.attachmentPaths[i], mail.attachmentNames[i], mail.encodeType);
  }
  if (mail.encodeType == EncodeType::Mime && !mail.attachmentPaths.empty()) {
    out.line("--" + boundary + "--" + std::string(kCrLf));
  }
  out.flush();
  writer.commit();
}

}  // namespace vonel::send
