#pragma once
// The program's own command line: where its home is and how it runs.
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

#include "core/settings/transport_security.h"

namespace vonel {

struct CommandLine {
  bool help = false;     // print the usage and end
  bool version = false;  // print the version and end
  std::optional<QString> home;
  bool headless = false;
  bool scan = false;           // one pass over the servers, headers only
  bool download = false;       // one pass that downloads what passes into the store
  bool daemon = false;         // passes on the auto-scan timer until stopped
  bool train = false;          // train the Bayes filter on the stored mail
  bool deleteOnServer = false;
  bool lockstep = false;       // scan without sending commands ahead
  std::optional<int> account;  // the one account of the pass; every account when empty
  bool score = false;          // print the Bayes score of each message file in passOn
  bool send = false;           // send the outbox, beside the pass if there is one
  bool merge = false;          // spool a mail merge of mergeData and mergeTemplate
  QString mergeData;
  QString mergeTemplate;
  // --trust-cert N pop|smtp: show that server's certificate and trust it on "y".
  std::optional<std::pair<int, MailService>> trustCertificate;
  QStringList passOn;  // the rest, for the command handler of a running copy
  QString error;       // set when the line can't be understood
};

CommandLine parseCommandLine(const QStringList& arguments);
QString commandLineHelp();
// "vonel 1.2.3"
QString versionText();

// The command a start hands to the running copy, and to its own command
// handler: the plain arguments joined by blanks; a file: URL becomes its path
// and a relative path that names a file becomes absolute, as the running copy
// works in another folder. Empty without plain arguments.
QString passedCommand(const CommandLine& line);

}  // namespace vonel
