// vonel-inspect tokens FILE [--headers-only]: the token table of a message.
// vonel-inspect score --home DIR FILE...: score, filterReason and spamSplit of
// each message against the word table and blacklist of that home.
#include <optional>
#include <ostream>

#include "core/bayes/message_file_score.h"
#include "core/bayes/token_report.h"
#include "core/bayes/tokeniser.h"
#include "core/log/app_error.h"
#include "core/message/message.h"
#include "core/context/app_context.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/text/numbers.h"
#include "inspect/command.h"
#include "inspect/inspect_home.h"

namespace vonel::inspect {
namespace {

int runTokens(const Arguments& args, std::ostream& out, std::ostream& err) {
  const bool headersOnly = args.size() == 2 && args[1] == "--headers-only";
  if (args.empty() || args.size() > 2 || (args.size() == 2 && !headersOnly)) {
    err << "usage: vonel-inspect tokens FILE [--headers-only]\n";
    return 2;
  }
  try {
    message::Message message;
    message.createFromText(files::loadTextFile(files::pathFromText(args[0])), headersOnly);
    bayes::WordTable table;
    table.initSmall();
    bayes::hashMessage(table, message, headersOnly);
    out << bayes::describeTable(table);
    return 0;
  } catch (const AppError& e) {
    err << e.description() << "\n";
    return 1;
  }
}

// Shows control characters, so the breakdown's tabs and line ends are visible.
std::string escaped(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n\n  ";
    } else if (c == '\t') {
      out += "\\t";
    } else {
      out += c;
    }
  }
  return out;
}

int runScore(const Arguments& args, std::ostream& out, std::ostream& err) {
  if (args.size() < 3 || args[0] != "--home") {
    err << "usage: vonel-inspect score --home DIR FILE...\n";
    return 2;
  }
  InspectHome home(files::pathFromText(args[1]));
  AppContext& context = home.context;
  bayes::BayesFilter filter(context);

  int status = 0;
  for (std::size_t i = 2; i < args.size(); ++i) {
    out << args[i] << "\n";
    try {
      const auto result = bayes::scoreMessageFile(filter, files::pathFromText(args[i]));
      out << "  Score: " << text::plainText(result.score) << " " << bayes::verdictWord(result.score, context) << "\n";
      out << "  FilterReason: " << result.filterReason << "\n";
      out << "  SpamSplit:\n  " << escaped(result.spamSplit) << "\n";
    } catch (const AppError& e) {
      err << args[i] << ": " << e.description() << "\n";
      status = 1;
    }
  }
  return status;
}

const bool registeredTokens = registerCommand({"tokens", "FILE [--headers-only]", runTokens});
const bool registeredScore = registerCommand({"score", "--home DIR FILE...", runScore});

}  // namespace
}  // namespace vonel::inspect
