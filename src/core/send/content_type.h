#pragma once
// The MIME type of an attachment, from a built-in table of file extensions.
#include <string>
#include <string_view>

namespace vonel::send {

// The type registered for the text from the last "." of the name on (any
// case); `defaultType` when the name has no "." or the extension is unknown.
std::string contentTypeOf(std::string_view fileName, std::string_view defaultType);

}  // namespace vonel::send
