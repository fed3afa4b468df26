#pragma once
// Mail merge: a data file (a row of field codes, then one row of fields per
// recipient, no quoting; rows end in CR LF or LF) and a template with those
// codes in it become one outbox message per row. Nothing is sent here; the messages wait in the
// outbox for the next upload.
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "core/message/message.h"
#include "core/context/app_context.h"
#include "core/interaction/progress.h"
#include "core/send/message_spooler.h"
#include "core/send/no_email_field.h"

namespace vonel::send {

inline constexpr const char* kMergeNoSubject = "Warning: Your email will have no subject line. Continue anyway?";

// The sender of every merged message: the first account in use (account 0
// when none is set up yet) and its reply address.
struct MergeSender {
  int account = 0;
  std::string replyAddress;
};
MergeSender firstAccountSender(const SettingsStore& settings);

struct MergeCounts {
  long saved = 0;
  long invalid = 0;
};

// Merges the texts row by row and hands each message with an address to
// `spool`; rows with fewer fields than the header are skipped uncounted.
// Throws NoEmailField.
MergeCounts mergeTexts(std::string_view data, std::string_view templateText, const MergeSender& sender,
                       const std::function<void(message::Message&)>& spool, Progress& progress);

// The checks of the merge window's Go button: the missing file's text in a
// box and false, or true once both names are kept in the settings. A
// template without a subject line only earns a warning.
bool acceptMergeFiles(AppContext& context, const std::filesystem::path& dataFile,
                      const std::filesystem::path& templateFile);

// The merge of two files into the outbox, with its questions and its result
// in boxes. Returns the counts; both are 0 when the merge stopped early.
MergeCounts mergeIntoOutbox(AppContext& context, MessageSpooler& spooler, Progress& progress,
                        const std::filesystem::path& dataFile, const std::filesystem::path& templateFile);

}  // namespace vonel::send
