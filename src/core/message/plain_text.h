#pragma once
// The text of a message to show in a plain preview, quote in a reply or
// search: chosen from the flat list of parts, plain before HTML, with HTML
// rendered as plain text.
#include <string>

#include "core/log/logging.h"
#include "core/message/message.h"
#include "core/services/app_context.h"

namespace vonel::message {

// `tweaks` is the "Tweaks" setting: it cuts off a mailing-list footer.
// A failure is logged (when there is a log) and what was made so far returned.
std::string ExtractPlainMessage(const clsMessage& message, bool tweaks, cSharedLogging* log = nullptr);
// The same with the program's "Tweaks" setting (default false) and its log.
std::string ExtractPlainMessage(const clsMessage& message, AppContext& context);

// The part's data with its transfer encoding undone, mark-up turned into
// plain lines, link targets kept visible and entities decoded.
std::string ExtractHtmlPartText(const clsMimeType& part);

// The part's data with its transfer encoding undone.
std::string ExtractDecodedPartText(const clsMimeType& part);

}  // namespace vonel::message
