#pragma once
// The outbox as the sender sees it: file names that carry the sending
// account in their first two digits, the list of waiting files, and the move
// of a sent file into Sent Items.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/log.h"
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
// deletes it from the outbox.
SentMessage moveToSentItems(const std::filesystem::path& outbox, const std::filesystem::path& sentItems,
                     const std::string& name, Log& log, const Clock& clock);

}  // namespace vonel::send
