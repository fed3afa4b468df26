#include "app/command_line.h"

#include <QFileInfo>
#include <QUrl>

#include "core/settings/accounts.h"

namespace vonel {

CommandLine parseCommandLine(const QStringList& arguments) {
  CommandLine line;
  for (int i = 1; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      line.help = true;
    } else if (argument == "--version") {
      line.version = true;
    } else if (argument == "--home") {
      if (i + 1 >= arguments.size()) {
        line.error = "--home needs a folder";
        return line;
      }
      line.home = arguments[++i];
    } else if (argument.startsWith("--home=")) {
      line.home = argument.mid(7);
    } else if (argument == "--headless") {
      line.headless = true;
    } else if (argument == "--scan") {
      line.headless = line.scan = true;
    } else if (argument == "--download") {
      line.headless = line.download = true;
    } else if (argument == "--daemon") {
      line.headless = line.daemon = true;
    } else if (argument == "--train") {
      line.headless = line.train = true;
    } else if (argument == "--score") {
      line.headless = line.score = true;
    } else if (argument == "--send") {
      line.headless = line.send = true;
    } else if (argument == "--merge") {
      if (i + 2 >= arguments.size()) {
        line.error = "--merge needs a data file and a template file";
        return line;
      }
      line.headless = line.merge = true;
      line.mergeData = arguments[++i];
      line.mergeTemplate = arguments[++i];
    } else if (argument == "--trust-cert") {
      bool ok = false;
      const int account = i + 1 < arguments.size() ? arguments[++i].toInt(&ok) : 0;
      const QString service = i + 1 < arguments.size() ? arguments[++i] : QString();
      if (!ok || account < 0 || account >= kAccountCount || (service != "pop" && service != "smtp")) {
        line.error = "--trust-cert needs an account number from 0 to 19 and pop or smtp";
        return line;
      }
      line.headless = true;
      line.trustCertificate = std::pair(account, service == "pop" ? MailService::Pop3 : MailService::Smtp);
    } else if (argument == "--delete") {
      line.deleteOnServer = true;
    } else if (argument == "--lockstep") {
      line.lockstep = true;
    } else if (argument == "--account") {
      bool ok = false;
      const int account = i + 1 < arguments.size() ? arguments[++i].toInt(&ok) : 0;
      if (!ok || account < 0 || account >= kAccountCount) {
        line.error = "--account needs a number from 0 to 19";
        return line;
      }
      line.account = account;
    } else if (argument.startsWith("--")) {
      line.error = "unknown option " + argument;
      return line;
    } else {
      line.passOn << argument;
    }
  }
  if (line.score && line.passOn.isEmpty()) line.error = "--score needs message files";
  if (line.scan + line.download + line.daemon > 1) line.error = "--scan, --download and --daemon each run passes: give one";
  return line;
}

QString commandLineHelp() {
  return "usage: vonel [--home DIR] [--headless | --scan [--lockstep] | --download [--account N] [--delete]\n"
         "             | --daemon"
         " | --train | --score FILE...] [--merge DATAFILE TEMPLATE] [--send]\n"
         "       vonel [--home DIR] --trust-cert N pop|smtp\n"
         "       vonel --help | --version\n"
         "Without a command Vonel opens its window.\n"
         "  --home DIR     keep settings, logs and mail in DIR\n"
         "  --headless     start up and shut down without windows\n"
         "  --scan         judge the headers waiting on every account, print one line each\n"
         "  --download     download what passes into the store, print one line each\n"
         "  --daemon       scan on the auto-scan timer (ScanOnStart, DELAY) until stopped\n"
         "  --train        train the Bayes filter on the stored mail\n"
         "  --account N    only account N (0 to 19)\n"
         "  --delete       delete failing messages on the server\n"
         "  --lockstep     wait for each reply before the next command, even where a\n"
         "                 server takes commands sent ahead (POPPIPELINING)\n"
         "  --score FILE   print the spam score, verdict and name of each message file\n"
         "  --merge DATAFILE TEMPLATE  save one outbox message per row of the data file\n"
         "  --send         send the outbox, one line per step; after --scan, beside the pass\n"
         "  --trust-cert N pop|smtp  show the certificate of account N's server and\n"
         "                 trust it for that account and host on \"y\"\n"
         "  -h, --help     print this and end\n"
         "  --version      print the version and end\n"
         "Each account or message that fails is a line on the error stream\n"
         "(\"vonel: Account 2 (Work): login refused: ...\"); the exit code is 0 when\n"
         "everything went through, 1 when anything failed, 2 for a command line that\n"
         "can't be understood, no account, or no display for the window.\n";
}

QString versionText() { return QStringLiteral("vonel " VONEL_VERSION); }

QString passedCommand(const CommandLine& line) {
  QStringList parts;
  for (const QString& argument : line.passOn) {
    QString part = argument;
    if (argument.startsWith("file:", Qt::CaseInsensitive)) part = QUrl(argument).toLocalFile();
    const QFileInfo file(part);
    if (file.isRelative() && file.isFile()) part = file.absoluteFilePath();
    parts << part;
  }
  return parts.join(' ');
}

}  // namespace vonel
