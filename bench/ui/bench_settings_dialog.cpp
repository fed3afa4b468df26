// The settings dialog with twenty filled accounts: from the command to the
// dialog on screen, and OK with its writes of both files: the first run, and
// the best of several.
#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

#include "app/platform.h"
#include "core/settings/accounts.h"
#include "core/settings/scramble.h"
#include "ui/settings/settings_dialog.h"

using namespace vonel;

namespace {

constexpr int kRuns = 10;

double milliseconds(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

void fillAccounts(AppContext& context) {
  for (int n = 0; n < kAccountCount; ++n) {
    const std::string number = std::to_string(n);
    Account a;
    a.index = n;
    a.title = "Account of department " + number;
    a.server = "pop" + number + ".example.org";
    a.userName = "user" + number;
    a.password = "p\xE4ssword " + number;
    a.smtp = "smtp" + number + ".example.org";
    a.smtpAuth = true;
    a.smtpUserName = a.userName;
    a.smtpPassword = a.password;
    a.replyAddress = "user" + number + "@example.org";
    a.displayName = "User " + number;
    a.exclusive0 = "*@example.org";
    writeAccount(context.settings, a);
  }
  context.settings.saveSettings(context.settingsFile());
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, platformAppInfo(home), platformLocaleFacts());
  context.folders.readMessageFolder();
  context.folders.readFilterFolder();
  context.folders.readDataFolder();
  fillAccounts(context);

  double firstOpen = 0;
  double open = 1e9;
  double ok = 1e9;
  for (int run = 0; run < kRuns; ++run) {
    QElapsedTimer timer;
    timer.start();
    SettingsDialog dialog(context);
    dialog.show();
    QCoreApplication::processEvents();
    if (run == 0) firstOpen = milliseconds(timer);
    open = std::min(open, milliseconds(timer));

    timer.restart();
    dialog.accept();
    ok = std::min(ok, milliseconds(timer));
  }
  std::printf("settings dialog, 20 accounts: opens in %.1f ms (first time %.1f ms)\n", open, firstOpen);
  std::printf("settings dialog, 20 accounts: OK writes in %.1f ms\n", ok);
  return prompt.questions == 0 ? 0 : 1;
}
