// What the toolbar's buttons and their drop-down entries do.
#include <QApplication>
#include <QMenu>
#include <QToolButton>

#include "app/mail_controller.h"
#include "ui/scanner/scanner_toolbar.h"
#include "ui/scanner/scanner_window.h"

namespace vonel {
namespace {

void run(const std::function<void()>& hook) {
  if (hook) hook();
}

}  // namespace

void ScannerWindow::onToolbarButton(const QString& key) {
  if (!controller_) return;
  if (key == "sendrcvdel") controller_->toolbarSendReceiveDelete();
  else if (key == "upanddown") controller_->toolbarSendReceive();
  else if (key == "scan") controller_->toolbarScan();
  else if (key == "delete") controller_->toolbarScanAndDelete();
  else if (key == "stop") controller_->stopPass();
  else if (key == "newmail") openComposer({});
  else if (key == "mailer") switchToMailer();
  else if (key == "filters" && host_.openBayesWindow) host_.openBayesWindow();
  else if (key == "filters") toolbar_->button("filters")->showMenu();
  else if (key == "settings") showSettings();
  else if (key == "contacts") run(host_.openContacts);
  else if (key == "cms") run(host_.openTickets);
  else if (key == "close") closeToTray();
  else if (key == "help") toolbar_->button("help")->showMenu();
}

void ScannerWindow::onToolbarMenuEntry(const QString& buttonKey, const QString& entryKey) {
  if (!controller_) return;
  if (const auto account = accountOfEntry(entryKey, "Account")) {
    // A pass in the way is stopped first, so the chosen account is polled now.
    if (controller_->passRunning() && (buttonKey == "scan" || buttonKey == "delete")) controller_->stopPass();
    if (buttonKey == "scan") controller_->scanFrom(*account);
    else if (buttonKey == "delete") controller_->scanAndDeleteFrom(*account);
    else if (buttonKey == "sendrcvdel") controller_->downloadAndDeleteFrom(*account);
  } else if (const auto download = accountOfEntry(entryKey, "DLM")) {
    controller_->downloadFrom(*download);
  } else if (const auto erase = accountOfEntry(entryKey, "DELALL")) {
    controller_->deleteAllFromAccount(*erase);
  } else if (entryKey == "upload") {
    controller_->sendOutbox();
  } else if (entryKey == "download") {
    controller_->downloadOnly();
  } else if (entryKey == "updownwithclear") {
    controller_->downloadDeleteAndSend();
  } else if (entryKey == "quit") {
    onExitTriggered();
  } else if (entryKey == "localfilters") {
    run(host_.openLocalRules);
  } else if (entryKey == "serverfilters") {
    run(host_.openServerRules);
  } else if (entryKey == "reinforce") {
    askToReinforce();
  } else if (entryKey == "checkupdate") {
    controller_->autoScan().stop();
    run(host_.checkForUpdate);
  }
}

void ScannerWindow::askToReinforce() {
  if (!host_.reinforce) return;
  if (ctx_.prompt.ask("This will allocate all orange messages to 'spam', and all green messages to 'good'. Check "
                      "them carefully first! Are you sure?",
                      Buttons::YesNo, "Vonel") == Answer::Yes) {
    host_.reinforce();
  }
}

}  // namespace vonel
