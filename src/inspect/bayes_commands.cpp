// vonel-inspect tokens FILE [--headers-only]: the token table of a message.
#include <ostream>

#include "core/bayes/token_report.h"
#include "core/bayes/tokeniser.h"
#include "core/log/app_error.h"
#include "core/message/message.h"
#include "core/services/file_subs.h"
#include "inspect/command.h"

namespace vonel::inspect {
namespace {

int runTokens(const Arguments& args, std::ostream& out, std::ostream& err) {
  const bool headersOnly = args.size() == 2 && args[1] == "--headers-only";
  if (args.empty() || args.size() > 2 || (args.size() == 2 && !headersOnly)) {
    err << "usage: vonel-inspect tokens FILE [--headers-only]\n";
    return 2;
  }
  try {
    message::clsMessage message;
    message.CreateFromText(files::LoadTextFile(files::PathFromText(args[0])), headersOnly);
    bayes::clsHashTable table;
    table.InitSmall();
    bayes::HashMessage(table, message, headersOnly);
    out << bayes::DescribeTable(table);
    return 0;
  } catch (const AppError& e) {
    err << e.description() << "\n";
    return 1;
  }
}

const bool registeredTokens = registerCommand({"tokens", "FILE [--headers-only]", runTokens});

}  // namespace
}  // namespace vonel::inspect
