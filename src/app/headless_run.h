#pragma once
// A run without windows: start-up, the requested work, shutdown.
#include "app/command_line.h"

namespace vonel {

// Returns the process exit code.
int runHeadless(const CommandLine& line);

}  // namespace vonel
