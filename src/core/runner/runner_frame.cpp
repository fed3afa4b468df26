#include "core/runner/runner_frame.h"

#include <algorithm>

namespace vonel::runner {
std::string encodeFrame(std::string_view command) {
  if (command.empty() || command.size() > kMaxCommandBytes) return {};
  std::string frame(kFrameMagic);
  frame += std::to_string(command.size());
  frame += '\n';
  frame += command;
  return frame;
}

bool FrameReader::takeHeaderByte(char c) {
  if (part_ == Part::Magic) {
    if (c != kFrameMagic[magicSeen_]) return false;
    if (++magicSeen_ == kFrameMagic.size()) part_ = Part::Length;
    return true;
  }
  if (c == '\n') {
    if (digits_ == 0) return false;
    part_ = Part::Command;
    command_.reserve(length_);
    return true;
  }
  // No leading zero: one frame has one spelling, and an empty command none.
  if (c < '0' || c > '9' || (digits_ == 0 && c == '0')) return false;
  ++digits_;
  // Checked at each digit, so the length never grows past the limit's size.
  length_ = length_ * 10 + static_cast<std::size_t>(c - '0');
  return length_ <= kMaxCommandBytes;
}

FrameState FrameReader::feed(std::string_view bytes) {
  if (state_ == FrameState::Invalid) return state_;
  if (state_ == FrameState::Complete) {
    if (!bytes.empty()) state_ = FrameState::Invalid;
    return state_;
  }
  while (!bytes.empty() && part_ != Part::Command) {
    if (!takeHeaderByte(bytes.front())) return state_ = FrameState::Invalid;
    bytes.remove_prefix(1);
  }
  if (part_ != Part::Command) return state_;
  const std::size_t wanted = length_ - command_.size();
  command_.append(bytes.substr(0, std::min(wanted, bytes.size())));
  if (bytes.size() > wanted) return state_ = FrameState::Invalid;
  if (command_.size() < length_) return state_;
  state_ = isCommandText(command_) ? FrameState::Complete : FrameState::Invalid;
  return state_;
}

bool isCommandText(std::string_view bytes) {
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead == 0) return false;
    std::size_t length = 0;
    char32_t lowest = 0;
    if (lead < 0x80) {
      length = 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      lowest = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      lowest = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      lowest = 0x10000;
    } else {
      return false;
    }
    if (i + length > bytes.size()) return false;
    char32_t codePoint = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      codePoint = (codePoint << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and code points past Unicode's end.
    if (codePoint < lowest || (codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF) return false;
    i += length;
  }
  return true;
}

}  // namespace vonel::runner
