#include "app/runner_commands.h"

#include "app/qtext.h"
#include "core/files/file_info.h"
#include "core/log/log_places.h"
#include "core/runner/runner_command.h"
#include "core/text/cp1252.h"

namespace vonel {

RunnerCommands::RunnerCommands(AppContext& context, AppWindows& windows) : ctx_(context), windows_(windows) {}

void RunnerCommands::logAction(const std::string& text) { ctx_.log.addAction(text); }

void RunnerCommands::onCommandArrived(const QString& command) {
  ctx_.log.logEvent("Command passed in: " + fromQString(command));
  guardedStep(ctx_.log, log_places::kTimerRunner, log_places::kRunnerModule, [&] {
    if (runner::showsWindow(command.toStdString())) {
      showWindow();
    } else {
      showMail(command);
    }
  });
  // A hand-over is rare and a user may be watching the log for it.
  ctx_.log.writeActionsToLog();
}

void RunnerCommands::showWindow() {
  if (windows_.mailerLoaded()) {
    logAction("Mailer loaded - showing it");
    windows_.showMailer();
    return;
  }
  logAction("Mailer not loaded - showing main form instead");
  if (windows_.mainVisible()) {
    logAction("Main window visible - doing nothing");
  } else {
    logAction("Main window NOT visible - showing it");
    windows_.showMain();
  }
}

void RunnerCommands::showMail(const QString& command) {
  const runner::MailCommand mail = runner::readMailCommand(command.toStdString());
  switch (mail.kind) {
    case runner::MailCommandKind::None:
      return;
    case runner::MailCommandKind::Compose:
      windows_.openComposer(mail.compose);
      return;
    case runner::MailCommandKind::OpenFile: {
      const std::string path = text::utf8ToCp1252(mail.path);
      logAction("Opening " + path);
      const std::filesystem::path file(std::u8string(mail.path.begin(), mail.path.end()));
      if (!files::fileExists(file)) return;
      logAction("Loading message " + path);
      logAction("Displaying " + path);
      windows_.showMessageFile(file);
      return;
    }
  }
}

}  // namespace vonel
