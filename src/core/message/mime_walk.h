#pragma once
// The MIME walk of a whole message: a search for fixed marker strings, not a
// parser of the grammar. Nesting is flattened; a multipart adds no part itself.
#include <string>
#include <string_view>

#include "core/message/mime_part.h"

namespace vonel::message {

// Walks `text` (a whole message or one section of it) and appends its parts
// and attachment names to `content`.
void newDecodePart(std::string_view text, MimeContent& content);

// The pieces of a part header the walk reads.
std::string extractContentType(std::string_view header);
std::string extractContentEncoding(std::string_view header);
std::string extractBoundaryString(std::string_view header);
std::string extractFilename(std::string_view header, std::string_view contentType);
std::string appendExtension(std::string_view filename, std::string_view contentType);

}  // namespace vonel::message
