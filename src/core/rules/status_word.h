#pragma once
// The verdict word of a judged message, derived from its flags and never stored.
#include <cstdint>
#include <string>

#include "core/message/message.h"

namespace vonel::rules {

// "BLOCK" or "FAIL" for a deleted message, then "IGNORE", "SPAM?", "PASS".
std::string statusWord(const message::Message& message);

// "green", "red", "grey", "orange" or "purple"; another value as its number.
std::string colourName(std::int32_t colour);

}  // namespace vonel::rules
