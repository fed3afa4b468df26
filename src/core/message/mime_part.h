#pragma once
// One part of a message as the MIME walk leaves it, and what the walk builds:
// the flat list of parts in depth-first order and the attachment names.
#include <cstdint>
#include <string>
#include <vector>

namespace vonel::message {

struct MimePart {
  std::string contentType;  // lower case, may be empty
  std::string data;         // decoded unless the part is an attachment or an unknown encoding
  std::string filename;
  std::string sectionName;  // always empty
  std::string encoding;     // still to be undone; empty when done or none
  std::int32_t size = 0;
};

struct MimeContent {
  std::vector<MimePart> parts;
  std::vector<std::string> attachmentNames;
  std::int16_t attachedMessages = 0;
};

}  // namespace vonel::message
