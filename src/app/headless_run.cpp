#include "app/headless_run.h"

#include <cstdio>

#include "app/console_prompt.h"
#include "app/frm_main.h"
#include "app/headless_windows.h"
#include "app/platform.h"
#include "core/services/file_subs.h"

namespace vonel {

int runHeadless(const CommandLine& line) {
  const auto home = resolveHome(line.home);
  SystemClock clock;
  ConsolePrompt prompt;
  AppContext context(clock, prompt, platformAppInfo(home), platformLocaleFacts());
  HeadlessWindows windows;
  frmMain controller(context, windows);
  if (controller.Startup() == StartupResult::NoAccount) {
    std::fprintf(stderr,
                 "vonel: no account is set up: %s has no Vonel.ini; start Vonel with its window to set one up\n",
                 home.string().c_str());
    return 2;
  }
  return controller.ExitProg() ? 0 : 1;
}

}  // namespace vonel
