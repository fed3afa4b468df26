#pragma once
// What the running copy does with a command from the slot, and with its own
// command line at the end of start-up: show a window, compose to a mail link,
// or open a saved message file. Every step is a line in the log.
#include <QString>

#include "app/app_windows.h"
#include "core/context/app_context.h"

namespace vonel {

class RunnerCommands {
 public:
  RunnerCommands(AppContext& context, AppWindows& windows);

  // TimerRunner's action on the command it found in the slot.
  void onCommandArrived(const QString& command);
  // The mail window when it is loaded, else the main window.
  void showWindow();
  // A mail link opens a composer, a message file its window; anything else is ignored.
  void showMail(const QString& command);

 private:
  void logAction(const std::string& text);

  AppContext& ctx_;
  AppWindows& windows_;
};

}  // namespace vonel
