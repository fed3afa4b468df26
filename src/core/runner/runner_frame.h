#pragma once
// The one frame a second copy sends to the running copy over the local
// socket: "VONEL1 " + the command's length in bytes (decimal) + "\n" + the
// command as UTF-8. The reader takes bytes as they come and tells as soon as
// it knows whether they make a frame.
#include <cstddef>
#include <string>
#include <string_view>

namespace vonel::runner {

inline constexpr std::string_view kFrameMagic = "VONEL1 ";
// A command line is short; anything longer is not from a copy of the program.
inline constexpr std::size_t kMaxCommandBytes = 64 * 1024;

// The running copy's one-byte answer: the command is in the slot, or the slot was busy.
inline constexpr char kAccepted = '1';
inline constexpr char kBusy = '0';

// The frame of `command`; nothing when the command is empty or too long.
std::string encodeFrame(std::string_view command);

enum class FrameState { Incomplete, Complete, Invalid };

class FrameReader {
 public:
  // Takes the next bytes of the connection. Once the state is Complete or
  // Invalid it stays so; bytes after a complete frame make it Invalid.
  FrameState feed(std::string_view bytes);
  FrameState state() const { return state_; }
  // The command of a complete frame.
  const std::string& command() const { return command_; }

 private:
  enum class Part { Magic, Length, Command };
  bool takeHeaderByte(char c);

  FrameState state_ = FrameState::Incomplete;
  Part part_ = Part::Magic;
  std::size_t magicSeen_ = 0;
  std::size_t digits_ = 0;
  std::size_t length_ = 0;
  std::string command_;
};

// Whether `bytes` is well-formed UTF-8 without NUL: what a command line can hold.
bool isCommandText(std::string_view bytes);

}  // namespace vonel::runner
