// vonel-inspect spool --home DIR --to ADDR [--cc ADDR ...] [--bcc ADDR ...]
//   [--attach FILE ...] --subject S --body-file F [--html] [--in-reply-to ID]
//   [--message-id ID] [--now "YYYY-MM-DD HH:MM:SS"] [--version V] OUT
// Writes the spool file that the program would put in the outbox for the
// first account of the home. --message-id, --now and --version fix the
// Message-ID, the boundary and the X-Mailer line, so that output can be compared.
#include <optional>
#include <ostream>

#include "core/log/app_error.h"
#include "core/context/app_context.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/settings/accounts.h"
#include "inspect/command.h"
#include "protocol/smtp/smtp_session.h"

namespace vonel::inspect {
namespace {

struct SpoolOptions {
  std::string home;
  std::string to, cc, bcc, attach;
  std::string subject;
  std::string bodyFile;
  std::string inReplyTo;
  std::string messageId;
  bool html = false;
  std::optional<text::DateTime> now;
  std::string version = "0.0.0";
  std::string out;
};

void appendListEntry(std::string& list, const std::string& entry) { list += (list.empty() ? "" : ";") + entry; }

std::optional<SpoolOptions> readOptions(const Arguments& args, std::ostream& err) {
  SpoolOptions options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    if (arg == "--html") {
      options.html = true;
    } else if (arg == "--home" && hasValue) {
      options.home = args[++i];
    } else if (arg == "--to" && hasValue) {
      appendListEntry(options.to, args[++i]);
    } else if (arg == "--cc" && hasValue) {
      appendListEntry(options.cc, args[++i]);
    } else if (arg == "--bcc" && hasValue) {
      appendListEntry(options.bcc, args[++i]);
    } else if (arg == "--attach" && hasValue) {
      appendListEntry(options.attach, args[++i]);
    } else if (arg == "--subject" && hasValue) {
      options.subject = args[++i];
    } else if (arg == "--body-file" && hasValue) {
      options.bodyFile = args[++i];
    } else if (arg == "--in-reply-to" && hasValue) {
      options.inReplyTo = args[++i];
    } else if (arg == "--message-id" && hasValue) {
      options.messageId = args[++i];
    } else if (arg == "--version" && hasValue) {
      options.version = args[++i];
    } else if (arg == "--now" && hasValue) {
      options.now = text::parseStoreDate(args[++i]);
      if (!options.now) {
        err << "--now wants \"YYYY-MM-DD HH:MM:SS\"\n";
        return std::nullopt;
      }
    } else if (options.out.empty() && !arg.starts_with("--")) {
      options.out = arg;
    } else {
      err << "unexpected argument: " << arg << "\n";
      return std::nullopt;
    }
  }
  if (options.home.empty() || options.out.empty()) {
    err << "--home and an output file are needed\n";
    return std::nullopt;
  }
  return options;
}

// Spooling never touches the network; any attempt would be a fault.
class NoNetwork final : public smtp::SmtpLink {
 public:
  void connect(const std::string&, int) override { throw AppError(error_number::kInternal, "spooling has no network"); }
  void send(std::string_view) override { throw AppError(error_number::kInternal, "spooling has no network"); }
  void close() override {}
  void setTimer(bool) override {}
  smtp::SocketState state() const override { return smtp::SocketState::Closed; }
};

// Reports failures; every other event of the sender is silent here.
class FailureReport final : public smtp::SmtpListener {
 public:
  explicit FailureReport(std::ostream& err) : err_(err) {}
  void onConnected() override {}
  void onErrorConnecting() override {}
  void onDisconnected() override {}
  void onSendSuccessful() override {}
  void onSendFailed(const std::string& errors) override { err_ << errors << "\n"; }
  void onMessageRefused(const std::string&) override {}
  void onStatus(const std::string&) override {}
  void onProgress(std::int32_t) override {}

 private:
  std::ostream& err_;
};

int runSpool(const Arguments& args, std::ostream& out, std::ostream& err) {
  const auto options = readOptions(args, err);
  if (!options) return 2;
  std::string body;
  try {
    if (!options->bodyFile.empty()) body = files::loadTextFile(options->bodyFile);
  } catch (const AppError& error) {
    err << options->bodyFile << ": " << error.description() << "\n";
    return 1;
  }
  SystemClock systemClock;
  std::optional<FixedClock> fixedClock;
  if (options->now) fixedClock.emplace(*options->now);
  const Clock& clock = fixedClock ? static_cast<const Clock&>(*fixedClock) : systemClock;
  ScriptedPrompt prompt;
  const std::filesystem::path home = files::pathFromText(options->home);
  AppContext context(clock, prompt, AppInfo{"Vonel", options->version, {}, home, home});
  context.log.loggingOff = true;
  if (files::fileExists(context.settingsFile())) context.settings.loadSettings(context.settingsFile());

  NoNetwork link;
  FailureReport report(err);
  smtp::SmtpSession sender(context, link, report, 0);
  sender.initialise(static_cast<std::int16_t>(firstAccount(context.settings).value_or(0)));
  sender.setRecipient(options->to);
  sender.setCcRecipient(options->cc);
  sender.setBccRecipient(options->bcc);
  sender.setAttachment(options->attach);
  sender.setSubject(options->subject);
  sender.setInReplyTo(options->inReplyTo);
  sender.setMessageId(options->messageId);
  sender.setAsHtml(options->html);
  sender.setMessage(body);
  if (!sender.spoolToFile(files::pathFromText(options->out))) return 1;
  out << options->out << "\n";
  return 0;
}

const bool registered = registerCommand(
    {"spool",
     "--home DIR --to ADDR [--cc ADDR] [--bcc ADDR] [--attach FILE] --subject S --body-file F [--html] "
     "[--in-reply-to ID] [--message-id ID] [--now \"YYYY-MM-DD HH:MM:SS\"] [--version V] OUT",
     runSpool});

}  // namespace
}  // namespace vonel::inspect
