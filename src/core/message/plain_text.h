#pragma once
// The text of a message to show in a plain preview, quote in a reply or
// search: chosen from the flat list of parts, plain before HTML, with HTML
// rendered as plain text.
#include <string>

#include "core/log/log.h"
#include "core/message/message.h"
#include "core/context/app_context.h"

namespace vonel::message {

// `tweaks` is the "Tweaks" setting: it cuts off a mailing-list footer.
// A failure is logged (when there is a log) and what was made so far returned.
std::string extractPlainMessage(const Message& message, bool tweaks, Log* log = nullptr);
// The same with the program's "Tweaks" setting (default false) and its log.
std::string extractPlainMessage(const Message& message, AppContext& context);

// The part's data with its transfer encoding undone, mark-up turned into
// plain lines, link targets kept visible and entities decoded.
std::string extractHtmlPartText(const MimePart& part);

// The part's data with its transfer encoding undone.
std::string extractDecodedPartText(const MimePart& part);

}  // namespace vonel::message
