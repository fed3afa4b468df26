// vonel-inspect check --home DIR FILE...
//   Judges each message file by the rule sets, lists, word table and settings
//   of the home, as the program would: by the server set on its headers alone
//   and by the local set on the whole message. One line per set:
//   FILE, set, status word, colour, score, filterReason (tab-separated).
#include <ostream>

#include "core/bayes/bayes_filter.h"
#include "core/message/message_file.h"
#include "core/rules/rule_engine.h"
#include "core/rules/status_word.h"
#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"
#include "inspect/command.h"
#include "inspect/inspect_home.h"

namespace vonel::inspect {
namespace {

void printVerdict(std::ostream& out, const std::string& file, std::string_view set, const message::Message& m) {
  out << file << "\t" << set << "\t" << rules::statusWord(m) << "\t" << rules::colourName(m.colour) << "\t"
      << text::plainText(m.bayes) << "\t" << text::cp1252ToUtf8(m.filterReason) << "\n";
}

int run(const Arguments& args, std::ostream& out, std::ostream& err) {
  if (args.size() < 3 || args[0] != "--home") {
    err << "usage: vonel-inspect check --home DIR FILE...\n";
    return 2;
  }
  InspectHome home(files::pathFromText(args[1]));
  AppContext& context = home.context;
  bayes::BayesFilter bayesFilter(context);
  bayesFilter.loadWordHash();
  rules::RuleEngine serverFilters(context);
  rules::RuleEngine localFilters(context);
  serverFilters.setScorer(&bayesFilter);
  localFilters.setScorer(&bayesFilter);
  serverFilters.reloadFilters(false);
  localFilters.reloadFilters(true);

  int status = 0;
  for (std::size_t i = 2; i < args.size(); ++i) {
    const auto path = files::pathFromText(args[i]);
    if (!files::fileExists(path) || files::fileSize(path).value_or(0) == 0) {
      err << args[i] << ": no such message file, or an empty one\n";
      status = 1;
      continue;
    }
    auto onServer = message::readMessageHeader(path, context.log);
    serverFilters.checkMessage(onServer, true);
    printVerdict(out, args[i], "server", onServer);
    auto downloaded = message::readMessageFull(path, context.log);
    localFilters.checkMessage(downloaded, true);
    printVerdict(out, args[i], "local", downloaded);
  }
  return status;
}

const bool registered = registerCommand({"check", "--home DIR FILE...", run});

}  // namespace
}  // namespace vonel::inspect
