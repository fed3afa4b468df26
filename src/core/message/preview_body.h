#pragma once
// The body text as the mail window's preview shows it.
#include <string>
#include <string_view>

namespace vonel::message {

// Puts two blanks before every CR LF, then drops the blanks, CRs and LFs
// before the first visible character, so the text opens on its first line.
// One pass over the text, as bodies run to many megabytes.
std::string previewBody(std::string_view plainText);

}  // namespace vonel::message
