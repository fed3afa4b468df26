// The controller around the settings dialog.
#include "app/mail_controller.h"

namespace vonel {

bool MailController::openSettingsAllowed() const { return !passRunning_; }

void MailController::settingsOpening() { autoScan_.stop(); }

void MailController::settingsClosed(bool accepted) {
  showUpdateStatus();
  if (!accepted) {
    autoScan_.restart();
    return;
  }
  windows_.setupMenus();
  readSettings();
  ctx_.readBayesSettings();
  // The one key turns on both the scan at start and the repeating scan; a
  // user who just switched it on expects the first pass now.
  if (ctx_.settings.get("ScanOnStart", Value(false)).flag()) {
    scan();
  } else {
    autoScan_.restart();
  }
}

}  // namespace vonel
