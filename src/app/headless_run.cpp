#include "app/headless_run.h"

#include <cstdio>

#include "app/console_prompt.h"
#include "app/frm_main.h"
#include "app/headless_windows.h"
#include "app/platform.h"
#include "app/qtext.h"
#include "app/terminal_password.h"
#include "core/bayes/message_file_score.h"
#include "core/rules/status_word.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"

#include <QEventLoop>
#include "core/services/file_subs.h"

namespace vonel {

namespace {

// One pass over the servers, each listed header printed as a line.
void scan(frmMain& controller, HeadlessWindows& windows, const CommandLine& line) {
  windows.onServerMessage = [](const message::clsMessage& m, long number, const std::string& title) {
    const std::string subject = m.Ignored ? "N/A" : m.Subject;
    std::printf("%ld\t%s\t%s\t%s\t%s\t%s\n", number, text::cp1252ToUtf8(title).c_str(),
                rules::StatusWord(m).c_str(), text::plainText(m.Bayes).c_str(), text::cp1252ToUtf8(m.From).c_str(),
                text::cp1252ToUtf8(subject).c_str());
  };
  QEventLoop loop;
  QString outcome;
  bool ended = false;
  QObject::connect(&controller, &frmMain::passEnded, &loop, [&](const QString& text) {
    if (ended) return;  // a time-out ends a session more than once
    outcome = text;
    ended = true;
    loop.quit();
  });
  controller.TimerAutoScan.stop();
  const bool oneAccount = line.account >= 0;
  controller.ProcessMail(line.deleteOnServer, oneAccount, oneAccount ? line.account : 0, false, false);
  if (!ended) loop.exec();
  std::printf("%s\n", qPrintable(outcome.isEmpty() ? toQString(windows.statusText) : outcome));
  std::fflush(stdout);
}

// One line a file, "<score> <verdict>"; an unreadable file is named on the error stream.
bool score(frmMain& controller, AppContext& context, const CommandLine& line) {
  bool allRead = true;
  for (const QString& file : line.passOn) {
    try {
      std::printf("%s\n", bayes::ScoreLine(*controller.BayesForm(), context, file.toStdU16String()).c_str());
    } catch (const AppError& e) {
      std::fprintf(stderr, "vonel: %s: %s\n", qPrintable(file), e.description().c_str());
      allRead = false;
    }
  }
  std::fflush(stdout);
  return allRead;
}

}  // namespace

int runHeadless(const CommandLine& line) {
  const auto home = resolveHome(line.home);
  SystemClock clock;
  ConsolePrompt prompt;
  AppContext context(clock, prompt, platformAppInfo(home), platformLocaleFacts());
  HeadlessWindows windows;
  TerminalPasswordPrompt passwords;
  frmMain controller(context, windows, passwords);
  if (controller.Startup() == StartupResult::NoAccount) {
    std::fprintf(stderr,
                 "vonel: no account is set up: %s has no Vonel.ini; start Vonel with its window to set one up\n",
                 home.string().c_str());
    return 2;
  }
  if (line.scan) scan(controller, windows, line);
  const bool scored = !line.score || score(controller, context, line);
  return controller.ExitProg() && scored ? 0 : 1;
}

}  // namespace vonel
