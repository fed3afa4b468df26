#pragma once
// The data of a multi-line POP3 reply as it arrives in pieces split anywhere:
// the status line dropped, the dot-stuffing undone (a line that starts with a
// dot loses that dot) and the terminating "." line found. What the server
// held is what comes out, every line end included.
#include <string>
#include <string_view>

namespace vonel::pop3 {

class MultiLineDecoder {
 public:
  // Appends the data in `piece` to `out`; true once the terminating line is
  // in. Bytes behind the terminator belong to no reply and are dropped.
  bool decode(std::string_view piece, std::string& out);
  // Ready for the next reply.
  void reset() { position_ = Position::StatusLine; }

 private:
  // Where the last byte seen left the decoder.
  enum class Position {
    StatusLine,  // inside the "+OK" line
    LineStart,   // behind a line feed
    AfterDot,    // a line's first byte was a dot, still held back
    AfterDotCr,  // ". CR" so far: the terminator, if a line feed follows
    InLine,
    Ended,
  };
  Position position_ = Position::StatusLine;
};

}  // namespace vonel::pop3
