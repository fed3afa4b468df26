// vonel-inspect message FILE [--headers-only] [--now "YYYY-MM-DD HH:MM:SS"] [--bias MINUTES]
// Prints what the program reads from a message file. --now and --bias fix
// the receive-date stamp and the local zone, so that output can be compared.
#include <optional>
#include <ostream>

#include "core/log/app_error.h"
#include "core/message/message.h"
#include "core/message/message_report.h"
#include "core/message/send_date.h"
#include "core/services/file_subs.h"
#include "core/text/numbers.h"
#include "inspect/command.h"

namespace vonel::inspect {
namespace {

struct MessageOptions {
  std::string file;
  bool headersOnly = false;
  std::optional<text::DateTime> now;
  int bias = message::StandardZoneBias();
};

std::optional<MessageOptions> readOptions(const Arguments& args, std::ostream& err) {
  MessageOptions options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    if (arg == "--headers-only") {
      options.headersOnly = true;
    } else if (arg == "--now" && hasValue) {
      options.now = text::parseStoreDate(args[++i]);
      if (!options.now) {
        err << "--now wants \"YYYY-MM-DD HH:MM:SS\"\n";
        return std::nullopt;
      }
    } else if (arg == "--bias" && hasValue) {
      const auto minutes = text::toNumber(args[++i]);
      if (!minutes) {
        err << "--bias wants a number of minutes\n";
        return std::nullopt;
      }
      options.bias = text::toWhole<int>(*minutes);
    } else if (options.file.empty() && !arg.starts_with("--")) {
      options.file = arg;
    } else {
      err << "unexpected argument: " << arg << "\n";
      return std::nullopt;
    }
  }
  if (options.file.empty()) {
    err << "which message file?\n";
    return std::nullopt;
  }
  return options;
}

int runMessage(const Arguments& args, std::ostream& out, std::ostream& err) {
  const auto options = readOptions(args, err);
  if (!options) return 2;
  std::string text;
  try {
    text = files::LoadTextFile(options->file);
  } catch (const AppError& error) {
    err << options->file << ": " << error.description() << "\n";
    return 1;
  }
  SystemClock systemClock;
  std::optional<FixedClock> fixedClock;
  if (options->now) fixedClock.emplace(*options->now);
  const Clock& clock = fixedClock ? static_cast<const Clock&>(*fixedClock) : systemClock;
  message::clsMessage parsed(nullptr, &clock);
  parsed.CreateFromText(std::move(text), options->headersOnly);
  out << message::DescribeMessage(parsed, options->bias);
  return 0;
}

const bool registered = registerCommand(
    {"message", "FILE [--headers-only] [--now \"YYYY-MM-DD HH:MM:SS\"] [--bias MINUTES]", runMessage});

}  // namespace
}  // namespace vonel::inspect
