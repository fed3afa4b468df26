#include "protocol/pop3/multi_line_decoder.h"

namespace vonel::pop3 {

bool MultiLineDecoder::decode(std::string_view piece, std::string& out) {
  std::size_t at = 0;
  while (at < piece.size() && position_ != Position::Ended) {
    const char byte = piece[at];
    switch (position_) {
      case Position::StatusLine:
      case Position::InLine: {
        // The rest of the line goes in one piece.
        const std::size_t lineFeed = piece.find('\n', at);
        const std::size_t end = lineFeed == std::string_view::npos ? piece.size() : lineFeed + 1;
        if (position_ == Position::InLine) out.append(piece.substr(at, end - at));
        if (lineFeed != std::string_view::npos) position_ = Position::LineStart;
        at = end;
        continue;
      }
      case Position::LineStart:
        if (byte == '.') {
          position_ = Position::AfterDot;
          ++at;
          continue;
        }
        position_ = Position::InLine;
        continue;
      case Position::AfterDot:
        if (byte == '\r') {
          position_ = Position::AfterDotCr;
          ++at;
          continue;
        }
        // The held dot was the stuffing: the line goes on from this byte.
        position_ = Position::InLine;
        continue;
      case Position::AfterDotCr:
        if (byte == '\n') {
          position_ = Position::Ended;
          continue;
        }
        out += '\r';
        position_ = Position::InLine;
        continue;
      case Position::Ended:
        break;
    }
  }
  return position_ == Position::Ended;
}

}  // namespace vonel::pop3
