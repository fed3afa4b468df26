#pragma once
// Why a session on an account did not go through, as its owner reports it.
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "protocol/socket_error.h"

namespace vonel::pop3 {

enum class FailureKind {
  LoginRefused,       // the server refused USER or PASS
  ServerRefused,      // the server refused another command or greeted with an error
  BadReply,           // a reply the session can't take, such as one without end
  HostNotFound,
  ConnectionRefused,
  NetworkUnreachable,
  ConnectionFailed,   // any other failure to reach the server
  TimedOut,           // the server fell silent
  ConnectionLost,     // the connection broke during the session
  DiskFull,           // a message could not be written: no space left
  NotStored,          // a message could not be written for another reason
};

struct Pop3Failure {
  explicit Pop3Failure(FailureKind why, std::string text = {}) : kind(why), detail(std::move(text)) {}

  FailureKind kind;
  int account = 0;
  // The server's reply or the system's description, as received.
  std::string detail;
  // Messages of the walk handled before the failure, of those the server counted (0 before STAT).
  long messagesDone = 0;
  long messageCount = 0;
  // Seconds of silence before a time-out.
  int seconds = 0;
  // The socket error behind a failure to connect.
  std::optional<protocol::SocketError> socketError;
};

// A message that could not be written, by the program's file error number.
FailureKind storeFailure(int errorNumber);

// A failure of the socket; a time-out after the seconds of silence so far.
Pop3Failure socketFailure(protocol::SocketError error, std::string_view description, int idleSeconds);

}  // namespace vonel::pop3
