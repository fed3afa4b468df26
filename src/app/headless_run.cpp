#include "app/headless_run.h"

#include <QEventLoop>
#include <QTimer>
#include <atomic>
#include <csignal>
#include <cstdio>

#include "app/certificate_probe.h"
#include "app/certificate_trust.h"
#include "app/console_prompt.h"
#include "app/headless_windows.h"
#include "app/mail_controller.h"
#include "app/platform.h"
#include "app/qtext.h"
#include "app/status_line.h"
#include "app/terminal_password.h"
#include "core/bayes/bayes_trainer.h"
#include "core/bayes/message_file_score.h"
#include "core/rules/status_word.h"
#include "core/send/mail_merge.h"
#include "core/settings/accounts.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"

namespace vonel {

namespace {

// A text of the message or the settings as one tab-separated field.
std::string field(std::string_view bytes) { return blanksForBreaks(text::cp1252ToUtf8(bytes)); }

// Each listed header and each stored message of a pass as a line.
void printPassRows(HeadlessWindows& windows, const AppContext& context) {
  windows.onServerMessage = [](const message::Message& m, long number, const std::string& title) {
    const std::string subject = m.ignored ? "N/A" : m.subject;
    std::printf("%ld\t%s\t%s\t%s\t%s\t%s\n", number, field(title).c_str(), rules::statusWord(m).c_str(),
                text::plainText(m.bayes).c_str(), field(m.from).c_str(), field(subject).c_str());
    std::fflush(stdout);
  };
  windows.onMessageStored = [&context](const message::Message& m, const std::filesystem::path& file) {
    const auto relative = file.lexically_relative(context.folders.messageFolderPath);
    std::printf("stored\t%s\t%s\t%s\t%s\n", field(accountTitle(context.settings, m.fromAccount)).c_str(),
                rules::statusWord(m).c_str(), text::plainText(m.bayes).c_str(),
                field(relative.empty() ? file.string() : relative.string()).c_str());
    std::fflush(stdout);
  };
}

// A line on the error stream for each account the last pass failed on; true when there was none.
bool reportFailures(const MailController& controller, const AppContext& context) {
  const std::vector<std::string> lines = controller.tally().failures.lines(context.settings);
  for (const std::string& line : lines) std::fprintf(stderr, "vonel: %s\n", text::cp1252ToUtf8(line).c_str());
  std::fflush(stderr);
  return lines.empty();
}

// One pass over the servers: headers only, or a download into the store.
// False when an account failed.
bool pass(MailController& controller, HeadlessWindows& windows, const AppContext& context, const CommandLine& line) {
  printPassRows(windows, context);
  QEventLoop loop;
  QString outcome;
  bool ended = false;
  QObject::connect(&controller, &MailController::passEnded, &loop, [&](const QString& text) {
    outcome = text;
    ended = true;
    loop.quit();
  });
  controller.startPass({.kind = line.download ? PassKind::Download : PassKind::Scan,
                        .deleteSpam = line.deleteOnServer,
                        .account = line.account});
  // As Send/Receive does: the upload starts right after the pass and runs beside it.
  if (line.send) controller.sendOutbox();
  if (!ended) loop.exec();
  std::printf("%s\n", qPrintable(outcome.isEmpty() ? toQString(windows.statusText) : outcome));
  std::fflush(stdout);
  return reportFailures(controller, context);
}

std::atomic<bool> stopRequested{false};
extern "C" void requestStop(int) { stopRequested = true; }

// Passes on the auto-scan timer, as the window runs them, until SIGINT or
// SIGTERM. False when it could not run or any of its passes failed.
bool daemon(MailController& controller, HeadlessWindows& windows, AppContext& context) {
  if (!context.settings.get("ScanOnStart", Value(false)).flag() ||
      context.settings.get("DELAY", Value(0)).numberOr(0) <= 0) {
    std::fprintf(stderr, "vonel: the auto scan is off: set ScanOnStart to True and DELAY to the seconds between passes\n");
    return false;
  }
  printPassRows(windows, context);
  bool allWent = true;
  QObject::connect(&controller, &MailController::passEnded, [&](const QString& text) {
    if (!text.isEmpty()) std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
    allWent = reportFailures(controller, context) && allWent;
  });
  std::signal(SIGINT, requestStop);
  std::signal(SIGTERM, requestStop);
  QEventLoop loop;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, &loop, [&loop] {
    if (stopRequested) loop.quit();
  });
  watch.start(100);
  loop.exec();
  return allWent;
}

// Each step of training as a line; the events run so that a signal can still end the program.
class PrintedProgress final : public Progress {
 public:
  void status(std::string_view text) override {
    std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
  }
  void letEventsRun() override {}
};

bool train(MailController& controller, AppContext& context) {
  PrintedProgress progress;
  bayes::BayesTrainer training(context, *controller.bayesFilter(), progress);
  const bool trained = training.generateFilters(bayes::TrainingChoices::read(context.settings));
  if (trained) {
    std::printf("%d good and %d spam messages counted\n", training.goodTable().messageCount,
                training.badTable().messageCount);
  }
  std::fflush(stdout);
  return trained;
}

// One line a file, "<score> <verdict> <file>" with tabs between; an
// unreadable file is named on the error stream.
bool score(MailController& controller, AppContext& context, const CommandLine& line) {
  bool allRead = true;
  for (const QString& file : line.passOn) {
    try {
      const float score = bayes::scoreMessageFile(*controller.bayesFilter(), file.toStdU16String()).score;
      std::printf("%s\t%s\t%s\n", text::plainText(score).c_str(), bayes::verdictWord(score, context).data(),
                  blanksForBreaks(file.toLocal8Bit().toStdString()).c_str());
    } catch (const AppError& e) {
      std::fprintf(stderr, "vonel: %s: %s\n", qPrintable(file), e.description().c_str());
      allRead = false;
    }
  }
  std::fflush(stdout);
  return allRead;
}

// Prints each step of sending as a line and its errors on the error stream,
// from spooling on, and waits for an upload to end.
class UploadWatch {
 public:
  explicit UploadWatch(OutboxUpload& upload) : upload_(upload) {
    QObject::connect(&upload, &OutboxUpload::sendProgress, &loop_, [](const QString& text) {
      std::printf("%s\n", qPrintable(text));
      std::fflush(stdout);
    });
    QObject::connect(&upload, &OutboxUpload::sendFailed, &loop_, [this](const QString& text) {
      std::fprintf(stderr, "vonel: %s\n", qPrintable(text));
      failed_ = true;
    });
    QObject::connect(&upload, &OutboxUpload::sendEnded, &loop_, &QEventLoop::quit);
  }
  // False when spooling or sending failed.
  bool wait() {
    if (upload_.running()) loop_.exec();
    return !failed_;
  }

 private:
  OutboxUpload& upload_;
  QEventLoop loop_;
  bool failed_ = false;
};

// Spools a mail merge into the outbox; its boxes go to the error stream.
bool merge(MailController& controller, AppContext& context, const CommandLine& line) {
  const std::filesystem::path data = line.mergeData.toStdU16String();
  const std::filesystem::path templateFile = line.mergeTemplate.toStdU16String();
  if (!send::acceptMergeFiles(context, data, templateFile)) return false;
  SilentProgress progress;
  send::mergeIntoOutbox(context, controller.outbox()->sender(), progress, data, templateFile);
  return true;
}

// Shows the certificate of one server of the account and trusts it when the
// answer on the input is "y". Nothing is trusted without that answer.
bool askToTrust(AppContext& context, int account, MailService service) {
  CertificateProbe probe(context, account, service);
  const ProbeResult result = probe.run();
  if (!result.shown) {
    std::fprintf(stderr, "vonel: no certificate from the %s server of account %d: %s\n",
                 std::string(serviceName(service)).c_str(), account, text::cp1252ToUtf8(result.error).c_str());
    return false;
  }
  std::printf("%s\n", text::cp1252ToUtf8(result.certificate.details).c_str());
  if (result.trusted) {
    std::printf("The certificate of %s is trusted already.\n", result.certificate.host.c_str());
    return true;
  }
  std::printf("Trust this certificate for account %d (%s)? [y/N] ", account, result.certificate.host.c_str());
  std::fflush(stdout);
  char answer[16] = {};
  if (!std::fgets(answer, sizeof answer, stdin) || (answer[0] != 'y' && answer[0] != 'Y')) {
    std::printf("Not trusted.\n");
    return false;
  }
  trustCertificate(context, result.certificate);
  std::printf("Trusted.\n");
  return true;
}

}  // namespace

int runHeadless(const CommandLine& line) {
  const auto home = resolveHome(line.home);
  const std::unique_ptr<Clock> clock = platformClock();
  ConsolePrompt prompt;
  AppContext context(*clock, prompt, platformAppInfo(home), platformLocaleFacts());
  context.popLockstep = line.lockstep;
  HeadlessWindows windows;
  TerminalPasswordPrompt passwords;
  MailController controller(context, windows, passwords);
  if (controller.startup() == StartupResult::NoAccount) {
    std::fprintf(stderr,
                 "vonel: no account is set up: %s has no Vonel.ini; start Vonel with its window to set one up\n",
                 home.string().c_str());
    return 2;
  }
  // Only the daemon runs passes on the timer; every other command runs its own.
  if (!line.daemon) controller.autoScan().stop();
  if (line.trustCertificate) {
    const bool trusted = askToTrust(context, line.trustCertificate->first, line.trustCertificate->second);
    return controller.exitProgram() && trusted ? 0 : 1;
  }
  UploadWatch upload(*controller.outbox());
  const bool merged = !line.merge || merge(controller, context, line);
  const bool trained = !line.train || train(controller, context);
  bool passesWent = true;
  if (line.scan || line.download) passesWent = pass(controller, windows, context, line);
  else if (line.daemon) passesWent = daemon(controller, windows, context);
  else if (line.send) controller.sendOutbox();
  const bool sent = !line.send || upload.wait();
  const bool scored = !line.score || score(controller, context, line);
  return controller.exitProgram() && scored && merged && sent && trained && passesWent ? 0 : 1;
}

}  // namespace vonel
