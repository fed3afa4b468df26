// vonel-inspect check --home DIR FILE...
//   Judges each message file by the rule sets, lists, word table and settings
//   of the home, as the program would: by the server set on its headers alone
//   and by the local set on the whole message. One line per set:
//   FILE, set, status word, colour, score, FilterReason (tab-separated).
#include <ostream>

#include "core/bayes/bayes_filter.h"
#include "core/message/message_file.h"
#include "core/rules/frm_filters.h"
#include "core/rules/status_word.h"
#include "core/services/file_subs.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"
#include "inspect/command.h"
#include "inspect/inspect_home.h"

namespace vonel::inspect {
namespace {

void printVerdict(std::ostream& out, const std::string& file, std::string_view set, const message::clsMessage& m) {
  out << file << "\t" << set << "\t" << rules::StatusWord(m) << "\t" << rules::ColourName(m.Colour) << "\t"
      << text::plainText(m.Bayes) << "\t" << text::cp1252ToUtf8(m.FilterReason) << "\n";
}

int run(const Arguments& args, std::ostream& out, std::ostream& err) {
  if (args.size() < 3 || args[0] != "--home") {
    err << "usage: vonel-inspect check --home DIR FILE...\n";
    return 2;
  }
  InspectHome home(files::PathFromText(args[1]));
  AppContext& context = home.context;
  bayes::frmBayesFilter bayesFilter(context);
  bayesFilter.LoadWordHash();
  rules::frmFilters serverFilters(context);
  rules::frmFilters localFilters(context);
  serverFilters.setScorer(&bayesFilter);
  localFilters.setScorer(&bayesFilter);
  serverFilters.ReloadFilters(false);
  localFilters.ReloadFilters(true);

  int status = 0;
  for (std::size_t i = 2; i < args.size(); ++i) {
    const auto path = files::PathFromText(args[i]);
    if (!files::FileExists(path) || files::FileSize(path).value_or(0) == 0) {
      err << args[i] << ": no such message file, or an empty one\n";
      status = 1;
      continue;
    }
    auto onServer = message::ReadMessageHeader(path, context.log);
    serverFilters.CheckMessage(onServer, true);
    printVerdict(out, args[i], "server", onServer);
    auto downloaded = message::ReadMessageFull(path, context.log);
    localFilters.CheckMessage(downloaded, true);
    printVerdict(out, args[i], "local", downloaded);
  }
  return status;
}

const bool registered = registerCommand({"check", "--home DIR FILE...", run});

}  // namespace
}  // namespace vonel::inspect
