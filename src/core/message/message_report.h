#pragma once
// A plain-text account of everything a parsed message holds, one
// "Name: value" line each in a fixed order, for the inspection tool and the
// sample files checked against it.
#include <string>

#include "core/message/message.h"

namespace vonel::message {

// Control characters are shown escaped (CR as \r, LF as \n, others as \xNN)
// and the text comes out as UTF-8. The local send date is worked out for the
// given bias; rawMessage is shown, then whether reading it back and writing
// it again gives the same text.
std::string describeMessage(const Message& message, int biasMinutes);

}  // namespace vonel::message
