#pragma once
// Message files of the store: one ".eml" file a message, the raw text with the
// store flags written in as headers, and the read state in the case of the
// file's name (upper case unread, lower case read). Only the name is ever
// folded; the folders keep their case.
#include <filesystem>
#include <string_view>

#include "core/files/write_batch.h"
#include "core/log/log.h"
#include "core/message/message.h"
#include "core/time/clock.h"

namespace vonel::message {

// The message in a file; an empty message when the file is missing or empty.
// A header read takes at most the first 10,000 bytes and parses no MIME.
Message readMessageHeader(const std::filesystem::path& path, Log& log);
Message readMessageFull(const std::filesystem::path& path, Log& log);

// Writes the message under its path in the case of its read state, replacing
// the file of either case, through a temporary file: a failure leaves the old
// file as it was. The file waits for the disk as `writes` decides.
void saveMessage(const Message& message, Log& log);
void saveMessage(const Message& message, Log& log, files::WriteBatch& writes);

// A free path in the folder: the base's letters, digits and blanks, a time
// stamp " (HHMMSS-YYMMDD)", a counter when the name is taken, the extension;
// the name in the case of the read state.
std::filesystem::path getUnusedFilename(bool read, const std::filesystem::path& folder, std::string_view base,
                                        std::string_view extension, const Clock& clock);

// A selection of a message's text as a message of its own beside it, unread,
// its subject marked "PART: " in the list.
Message duplicateSelection(const std::filesystem::path& original, std::string_view selection,
                              Log& log, const Clock& clock);

}  // namespace vonel::message
