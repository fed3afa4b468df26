#pragma once
// What the running copy does with a command handed over by a second start,
// or with its own command line at start-up: show the window, compose to a
// mail link, or open a saved message file. Commands are UTF-8.
#include <string>
#include <string_view>

#include "core/message/mailto_link.h"

namespace vonel::runner {

// What the slot holds while no command waits in it.
inline constexpr std::string_view kIdleSlot = "RUNNER";
// The command of a start without arguments.
inline constexpr std::string_view kShowCommand = "SHOW";

// True when the command, trimmed, is empty or "SHOW": it asks for the window.
bool showsWindow(std::string_view command);

enum class MailCommandKind { None, Compose, OpenFile };

struct MailCommand {
  MailCommandKind kind = MailCommandKind::None;
  message::ComposeRequest compose;  // Compose
  std::string path;                 // OpenFile: trimmed, without double quotes, case as given
};

// A command holding "/mailto:", or starting with "mailto:", composes to the
// link that follows; else one holding ".eml" opens that file; else nothing.
// The tests ignore case; what is cut out keeps the command's own case.
MailCommand readMailCommand(std::string_view command);

}  // namespace vonel::runner
