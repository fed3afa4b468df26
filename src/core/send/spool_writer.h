#pragma once
// The spool file of one outgoing message: headers, body and attachments
// (base64 parts of a multipart/mixed message, or the uuencode form) in the
// outbox. Written through a temporary file, so a failure leaves no file.
#include <filesystem>
#include <string>

#include "core/files/write_batch.h"
#include "core/send/attachment_failed.h"
#include "core/send/mail_fields.h"
#include "core/text/dates.h"

namespace vonel::send {

// The bytes of a base64 slice: 11400 bytes make one line of 15200 characters.
inline constexpr std::size_t kBase64Slice = 11400;

// The boundary: a fixed prefix and the moment as a day serial, "00000000.00000000".
std::string spoolBoundary(const text::DateTime& now);

// The sender as the headers show it: the quoted name (or address) and <address>.
std::string senderText(const MailFields& mail);

// Writes the spool file; throws AttachmentFailed, or AppError when the file can't be written.
// `version` is the program's version for the X-Mailer line. The file waits
// for the disk as `writes` decides.
void writeSpoolFile(const std::filesystem::path& file, const MailFields& mail, const text::DateTime& now,
                    const std::string& version, files::WriteBatch& writes);

}  // namespace vonel::send
