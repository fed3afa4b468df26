// vonel-inspect message FILE [--headers-only] [--now "YYYY-MM-DD HH:MM:SS"] [--bias MINUTES]
// vonel-inspect message FILE --parts [--save DIR]
// Prints what the program reads from a message file. --now and --bias fix
// the receive-date stamp and the local zone, so that output can be compared.
// --parts lists the MIME parts instead, one tab-separated line each (number,
// type, name, encoding still to undo, size in bytes once decoded), and
// --save writes every attachment into DIR.
#include <algorithm>
#include <optional>
#include <ostream>

#include "core/log/app_error.h"
#include "core/message/attachment_files.h"
#include "core/message/message.h"
#include "core/message/message_report.h"
#include "core/message/send_date.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"
#include "inspect/command.h"

namespace vonel::inspect {
namespace {

struct MessageOptions {
  std::string file;
  bool headersOnly = false;
  std::optional<text::DateTime> now;
  int bias = message::standardZoneBias();
  bool parts = false;
  std::optional<std::string> saveFolder;
};

std::optional<MessageOptions> readOptions(const Arguments& args, std::ostream& err) {
  MessageOptions options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    if (arg == "--headers-only") {
      options.headersOnly = true;
    } else if (arg == "--parts") {
      options.parts = true;
    } else if (arg == "--save" && hasValue) {
      options.saveFolder = args[++i];
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
  if (options.saveFolder && !options.parts) {
    err << "--save goes with --parts\n";
    return std::nullopt;
  }
  if (options.parts && options.headersOnly) {
    err << "--parts needs the whole message, not --headers-only\n";
    return std::nullopt;
  }
  return options;
}

// Text from mail as one column of a tab-separated line: control characters become "?".
std::string column(std::string_view value) {
  std::string text(value);
  std::replace_if(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
  return text::cp1252ToUtf8(text);
}

int listParts(const message::Message& parsed, const std::optional<std::string>& saveFolder, std::ostream& out,
              std::ostream& err) {
  for (std::size_t i = 1; i <= parsed.mimePartCount(); ++i) {
    const message::MimePart& part = parsed.mimePart(i);
    out << i << '\t' << column(part.contentType) << '\t' << column(part.filename) << '\t' << column(part.encoding)
        << '\t' << message::decodedPartBytes(part.data, part.encoding).size() << '\n';
  }
  if (!saveFolder) return 0;
  const auto folder = files::pathFromText(*saveFolder);
  if (!files::ensureFolder(folder)) {
    err << *saveFolder << ": can't make the folder\n";
    return 1;
  }
  int status = 0;
  for (std::size_t i = 1; i <= parsed.mimePartCount(); ++i) {
    const message::MimePart& part = parsed.mimePart(i);
    if (part.filename.empty()) continue;
    const auto file = message::attachmentPath(folder, part.filename);
    try {
      message::writeFile(file, part.data, part.encoding);
      out << "saved\t" << file.string() << '\n';
    } catch (const AppError& error) {
      err << file.string() << ": " << error.description() << '\n';
      status = 1;
    }
  }
  return status;
}

int runMessage(const Arguments& args, std::ostream& out, std::ostream& err) {
  const auto options = readOptions(args, err);
  if (!options) return 2;
  std::string text;
  try {
    text = files::loadTextFile(options->file);
  } catch (const AppError& error) {
    err << options->file << ": " << error.description() << "\n";
    return 1;
  }
  SystemClock systemClock;
  std::optional<FixedClock> fixedClock;
  if (options->now) fixedClock.emplace(*options->now);
  const Clock& clock = fixedClock ? static_cast<const Clock&>(*fixedClock) : systemClock;
  message::Message parsed(nullptr, &clock);
  parsed.createFromText(std::move(text), options->headersOnly);
  if (options->parts) return listParts(parsed, options->saveFolder, out, err);
  out << message::describeMessage(parsed, options->bias);
  return 0;
}

const bool registered = registerCommand(
    {"message", "FILE [--headers-only] [--now \"YYYY-MM-DD HH:MM:SS\"] [--bias MINUTES] | FILE --parts [--save DIR]",
     runMessage});

}  // namespace
}  // namespace vonel::inspect
