#pragma once
// One part of a message as the MIME walk leaves it, and what the walk builds:
// the flat list of parts in depth-first order and the attachment names.
#include <cstdint>
#include <string>
#include <vector>

namespace vonel::message {

struct clsMimeType {
  std::string ContentType;  // lower case, may be empty
  std::string Data;         // decoded unless the part is an attachment or an unknown encoding
  std::string Filename;
  std::string SectionName;  // always empty
  std::string Encoding;     // still to be undone; empty when done or none
  std::int32_t Size = 0;
};

struct MimeContent {
  std::vector<clsMimeType> parts;
  std::vector<std::string> attachmentNames;
  std::int16_t attachedMessages = 0;
};

}  // namespace vonel::message
