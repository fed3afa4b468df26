#pragma once
// Text made fit for the DATA command. Lines longer than 998 characters are
// cut once, where the message is spooled and again (with no effect on what
// was cut already) on its way out; the dot of transparency is added only on
// the wire, so the spool and Sent Items hold the message as written.
#include <string>
#include <string_view>

namespace vonel::send {

// Lines cut at the last blank at or before position 998, else at 998; the
// text's own line separator (CR LF, else CR) is kept, and a text without
// one gets CR LF where it is cut.
std::string cutLongLines(std::string_view text);

// Every line that begins with "." gets one more in front, once, as DATA
// wants it; a line begins at the start of the text and after every LF,
// where servers take a line to begin.
std::string dotStuffed(std::string_view text);

// True when a byte of the text is above 127.
bool hasEightBit(std::string_view text);

}  // namespace vonel::send
