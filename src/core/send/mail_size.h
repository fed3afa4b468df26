#pragma once
// A rough size of the message on the wire, for progress before the text is known.
#include <cstdint>

#include "core/send/mail_fields.h"

namespace vonel::send {

std::int64_t estimateMailSize(const MailFields& mail);

}  // namespace vonel::send
