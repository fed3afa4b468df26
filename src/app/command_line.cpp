#include "app/command_line.h"

namespace vonel {

CommandLine parseCommandLine(const QStringList& arguments) {
  CommandLine line;
  for (int i = 1; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (argument == "--home") {
      if (i + 1 >= arguments.size()) {
        line.error = "--home needs a folder";
        return line;
      }
      line.home = arguments[++i];
    } else if (argument.startsWith("--home=")) {
      line.home = argument.mid(7);
    } else if (argument == "--headless") {
      line.headless = true;
    } else if (argument.startsWith("--")) {
      line.error = "unknown option " + argument;
      return line;
    } else {
      line.passOn << argument;
    }
  }
  return line;
}

QString commandLineHelp() {
  return "usage: vonel [--home DIR] [--headless]\n"
         "  --home DIR   keep settings, logs and mail in DIR\n"
         "  --headless   start up and shut down without windows\n";
}

}  // namespace vonel
