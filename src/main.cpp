#include <QApplication>
#include <cstdio>
#include <cstdlib>

#include "app/command_line.h"
#include "app/mail_controller.h"
#include "app/headless_run.h"
#include "app/platform.h"
#include "app/termination_signal.h"
#include "app/runner_commands.h"
#include "app/single_instance.h"
#include "demo/demo_command.h"
#include "ui/dialog_prompt.h"
#include "ui/guarded_application.h"
#include "ui/password_dialog.h"
#include "ui/scanner/scanner_window.h"

namespace {

QStringList argumentsOf(int argc, char** argv) {
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  return arguments;
}

// Qt would end the program with a page of its own on a machine without a
// display; a user who only wanted a command deserves one line instead.
bool displayAvailable() {
#ifdef Q_OS_LINUX
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
#else
  return true;
#endif
}

int runWithWindows(int argc, char** argv, const vonel::CommandLine& line) {
  vonel::GuardedApplication application(argc, argv);
  application.setApplicationName("Vonel");
  application.setQuitOnLastWindowClosed(false);
  const auto home = vonel::resolveHome(line.home);
  const std::unique_ptr<vonel::Clock> clock = vonel::platformClock();
  vonel::DialogPrompt prompt;
  vonel::AppContext context(*clock, prompt, vonel::platformAppInfo(home), vonel::platformLocaleFacts());
  const QString command = vonel::passedCommand(line);
  vonel::SingleInstance instance(home);
  if (instance.passToRunningCopy(command, context.log)) return 0;
  instance.listen();
  prompt.setContext(&context);
  application.setContext(&context);
  vonel::ScannerWindow window(context);
  prompt.setParent(&window);
  vonel::PasswordDialog passwords(&window);
  vonel::MailController controller(context, window, passwords);
  window.attach(controller);
  window.onExit = [&controller] { return controller.exitProgram(); };
  // The end of the session or a stop from the system leaves without a question.
  const auto leaveQuietly = [&controller] {
    controller.exitProgram(vonel::ExitQuestions::Skip);
    QApplication::quit();
  };
  vonel::TerminationSignal termination;
  QObject::connect(&termination, &vonel::TerminationSignal::received, leaveQuietly);
  QObject::connect(&application, &QGuiApplication::commitDataRequest, leaveQuietly);
  vonel::RunnerCommands runnerCommands(context, window);
  QObject::connect(&instance, &vonel::SingleInstance::commandArrived,
                   [&runnerCommands](const QString& text) { runnerCommands.onCommandArrived(text); });
  if (controller.startup() == vonel::StartupResult::Started && !command.isEmpty()) runnerCommands.showMail(command);
  return application.exec();
}

}  // namespace

int main(int argc, char** argv) {
  const vonel::demo::DemoOptions demo = vonel::demo::takeDemoOptions(argumentsOf(argc, argv));
  if (demo.requested || !demo.error.isEmpty()) return vonel::demo::runDemo(argc, argv, demo);
  const vonel::CommandLine line = vonel::parseCommandLine(argumentsOf(argc, argv));
  if (line.help) {
    std::printf("%s%s", qPrintable(vonel::commandLineHelp()), qPrintable(vonel::demo::demoHelp()));
    return 0;
  }
  if (line.version) {
    std::printf("%s\n", qPrintable(vonel::versionText()));
    return 0;
  }
  if (!line.error.isEmpty()) {
    std::fprintf(stderr, "vonel: %s\n%s", qPrintable(line.error), qPrintable(vonel::commandLineHelp()));
    return 2;
  }
  if (line.headless) {
    // Qt's timers and sockets need an application object even without windows.
    QCoreApplication application(argc, argv);
    application.setApplicationName("Vonel");
    return vonel::runHeadless(line);
  }
  if (!displayAvailable()) {
    std::fprintf(stderr, "vonel: no display for the window (DISPLAY and WAYLAND_DISPLAY are not set); "
                         "see vonel --help for the commands that run without one\n");
    return 2;
  }
  return runWithWindows(argc, argv, line);
}
