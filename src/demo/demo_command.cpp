#include "demo/demo_command.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <cstdio>
#include <optional>

#include "demo/demo_home.h"
#include "demo/sandbox_server.h"

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace vonel::demo {

namespace {

#ifdef Q_OS_LINUX
// The program's process id, for the signal handler: the one place a signal
// can reach, and all it may do is pass the stop on.
volatile std::sig_atomic_t programPid = 0;

extern "C" void onStopSignal(int) {
  if (programPid > 0) ::kill(static_cast<pid_t>(programPid), SIGTERM);
}

// SIGINT, SIGTERM and SIGHUP stop the program in order; the home goes after.
void passStopsOn() {
  struct sigaction action {};
  action.sa_handler = onStopSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}
#endif

// Qt's own files (QtProject.conf and its kind) land in the home too, and so
// do the program's temporary files and sockets, which a killed program
// can't remove itself. The program's today is the day the mail was dated for.
QProcessEnvironment environmentFor(const std::filesystem::path& home, const QDate& day) {
  const auto folder = [&home](const char* name) {
    const std::filesystem::path path = home / name;
    std::filesystem::create_directories(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return QString::fromStdU16String(path.u16string());
  };
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", folder(".config"));
  environment.insert("XDG_DATA_HOME", folder(".local/share"));
  environment.insert("XDG_CACHE_HOME", folder(".cache"));
  environment.insert("XDG_STATE_HOME", folder(".local/state"));
  environment.insert("TMPDIR", folder(".tmp"));
  // A session's own runtime folder holds its bus; only where there is none
  // would Qt make one in the shared temporary folder.
  if (!environment.contains("XDG_RUNTIME_DIR")) environment.insert("XDG_RUNTIME_DIR", folder(".runtime"));
  environment.remove("VONEL_HOME");
  environment.insert("VONEL_TODAY", day.toString("yyyy-MM-dd"));
  return environment;
}

int fail(const QString& text) {
  std::fprintf(stderr, "vonel: %s\n", qPrintable(text));
  return 2;
}

int runProgram(const DemoOptions& options, const std::filesystem::path& home) {
  QProcess program;
  program.setProgram(QCoreApplication::applicationFilePath());
  program.setArguments(QStringList{"--home", QString::fromStdU16String(home.u16string())} + options.programArguments);
  program.setProcessEnvironment(environmentFor(home, options.day));
  program.setProcessChannelMode(QProcess::ForwardedChannels);
  program.setInputChannelMode(QProcess::ForwardedInputChannel);
#ifdef Q_OS_LINUX
  // Killed with its parent, so that no program runs on a home that is gone.
  program.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
  program.start();
  if (!program.waitForStarted(-1)) return fail("could not start the program: " + program.errorString());
#ifdef Q_OS_LINUX
  programPid = static_cast<std::sig_atomic_t>(program.processId());
  passStopsOn();
#endif
  program.waitForFinished(-1);
#ifdef Q_OS_LINUX
  programPid = 0;
#endif
  return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : 1;
}

}  // namespace

DemoOptions takeDemoOptions(const QStringList& arguments) {
  DemoOptions options;
  std::optional<QDate> day;
  bool homeGiven = false;
  for (int i = 1; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (argument == "--demo") {
      options.requested = true;
    } else if (argument == "--keep") {
      options.keep = true;
    } else if (argument == "--demo-date") {
      day = QDate::fromString(i + 1 < arguments.size() ? arguments[++i] : QString(), "yyyy-MM-dd");
      if (!day->isValid()) options.error = "--demo-date needs a day as YYYY-MM-DD";
    } else {
      homeGiven = homeGiven || argument == "--home" || argument.startsWith("--home=");
      options.programArguments << argument;
    }
  }
  if (!options.requested && (day || options.keep)) options.error = "--demo-date and --keep go with --demo";
  if (options.requested && homeGiven) options.error = "--demo makes its own home: leave out --home";
  options.day = day ? *day : QDate::currentDate();
  return options;
}

QString demoHelp() {
  return "To try Vonel on sample mail, without an account:\n"
         "       vonel --demo [--demo-date YYYY-MM-DD] [--keep] [--scan | --download | --send | --train]\n"
         "  --demo         the whole program on sample mail, served on this machine only,\n"
         "                 in a home of its own that goes when the program ends\n"
         "  --demo-date YYYY-MM-DD  date the sample mail before this day (today unless given)\n"
         "  --keep         keep the demo's home and print where it is\n";
}

int runDemo(int argc, char** argv, const DemoOptions& options) {
  if (!options.error.isEmpty()) return fail(options.error);
  QCoreApplication application(argc, argv);
  // Qt would quietly fall back to /tmp for a TMPDIR that is not there; the
  // user who set it is told instead.
  const QString temporaryFolder = qEnvironmentVariableIsEmpty("TMPDIR") ? QDir::tempPath() : qEnvironmentVariable("TMPDIR");
  const std::filesystem::path temporary = temporaryFolder.toStdU16String();
  DemoHome::removeOrphans(temporary);
  QString error;
  const std::optional<DemoHome> home = DemoHome::create(temporary, error);
  if (!home) return fail("can't make the demo's home in " + temporaryFolder + ": " + error);
  const QString homePath = QString::fromStdU16String(home->folder().u16string());
  sandbox::SandboxServer server(home->sandboxFolder());
  if (!server.open()) {
    home->remove();
    return fail("can't open the sandbox's ports on 127.0.0.1");
  }
  try {
    home->fill({server.pop3Port(), server.smtpPort()}, options.day);
  } catch (const std::exception& e) {
    server.stop();
    home->remove();
    return fail("can't fill the demo's home in " + homePath + ": " + QString::fromLocal8Bit(e.what()));
  }
  if (options.keep) std::fprintf(stderr, "vonel: the demo's home is kept: %s\n", qPrintable(homePath));
  int result = 2;
  try {
    result = runProgram(options, home->folder());
  } catch (const std::exception& e) {
    fail("can't start the program on " + homePath + ": " + QString::fromLocal8Bit(e.what()));
  }
  server.stop();
  if (!options.keep) home->remove();
  return result;
}

}  // namespace vonel::demo
