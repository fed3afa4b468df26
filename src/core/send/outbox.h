#pragma once
// The outbox as the sender sees it: file names that carry the sending
// account in their first two digits, the list of waiting files, and the move
// of a sent file into Sent Items.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/files/write_batch.h"
#include "core/log/log.h"
#include "core/message/message.h"
#include "core/time/clock.h"

namespace vonel::send {

// The account as the first two characters of an outbox name: "07".
std::string accountDigits(int account);
// "07_outbound_3.eml".
std::string outboxFileName(int account, int counter);
// The first counter of the account, from `from` upward, whose name isn't
// taken in the outbox.
int freeOutboxCounter(const std::filesystem::path& outbox, int account, int from = 0);

// Bare names of the ".eml" files (extension in any case) in the outbox, in
// the order they were spooled: by account, then by counter.
std::vector<std::string> listOutboxFiles(const std::filesystem::path& outbox);

// True when some name begins with the account's two digits.
bool accountHasMail(const std::vector<std::string>& names, int account);
// Index of the first name whose first two characters have the account's
// value; names.size() when there is none.
std::size_t firstFileOfAccount(const std::vector<std::string>& names, int account);

// An outbox file as the upload sends it: its fields, and its bytes as they
// stand in the file (a message serialised again would gain the store's
// lines). An unreadable file gives an empty message and no text.
struct OutboxMessage {
  message::Message fields;
  std::string text;
};
OutboxMessage readOutboxMessage(const std::filesystem::path& file, Log& log);

// The note beside an outbox file that a server refused: "<name>.refused",
// the server's reply on one line. It stays as long as the message waits, and
// it is not an outbox file itself.
std::string refusalNoteName(std::string_view name);
// Writes the note through a temporary file; throws AppError when it can't.
void writeRefusalNote(const std::filesystem::path& outbox, std::string_view name, std::string_view reply);
// Deletes the note if there is one; false when it is there and can't go.
bool clearRefusalNote(const std::filesystem::path& outbox, std::string_view name);

// The name without its extension.
std::string fileRoot(std::string_view name);

// The raw text with a "Date: " line at the end of its header, unless a CR
// straight followed by "Date:" (any case) stands before the blank line, or
// there is no blank line at all. A "Date:" line after CR LF doesn't count.
std::string withSentDate(const std::string& raw, const text::DateTime& now);

struct SentMessage {
  bool filed = false;  // false: the copy couldn't be written and the outbox file is untouched
  std::string subject;
  std::string recipient;
};

// Files a sent outbox message into Sent Items, read and dated, and only then
// deletes it, and any refusal note beside it, from the outbox; both changes
// join `writes`.
SentMessage moveToSentItems(const std::filesystem::path& outbox, const std::filesystem::path& sentItems,
                            const std::string& name, Log& log, const Clock& clock, files::WriteBatch& writes);

}  // namespace vonel::send
